#include "mediatool/media/checksums.h"

#include <windows.h>

#include <algorithm>
#include <vector>

#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/base/sha256.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

constexpr DWORD kBlock = 256 * 1024;  // bytes that are read at a time

bool IsListed(const Entry& entry, bool atRoot) {
    if (SameName(entry.name, kUnfinishedFile)) return false;
    return !atRoot ||
           (!SameName(entry.name, kChecksumsName) && !SameName(entry.name, kUnfinishedMark));
}

void Walk(const Path& folder, bool atRoot, const std::set<std::string>& volumes,
          SizesByPath& files) {
    const auto entries = List(folder);
    if (!entries) RefuseFor(folder, "listed");
    for (const Entry& entry : *entries) {
        const Path path = Join(folder, entry.name);
        if (entry.isFolder) {
            if (!volumes.contains(InLowerCase(path.Text()))) Walk(path, false, volumes, files);
        } else if (IsListed(entry, atRoot)) {
            files[path.Text()] = entry.size;
        }
    }
}

}  // namespace

void ReadWhole(const Path& file, const std::function<void(std::string_view)>& take,
               const std::string& what) {
    const FileHandle handle(CreateFileW(Extended(file.Text()).c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN,
                                        nullptr));
    if (!handle) RefuseFor(file, what);
    std::vector<char> block(kBlock);
    for (DWORD count = 0;;) {
        if (!ReadFile(handle.Get(), block.data(), kBlock, &count, nullptr)) RefuseFor(file, what);
        if (count == 0) return;
        take({block.data(), count});
    }
}

std::string ChecksumOf(const Path& file, const std::function<void(std::uint64_t)>& progress) {
    Sha256 hash;
    ReadWhole(file, [&](std::string_view bytes) {
        hash.Add(bytes);
        if (progress) progress(bytes.size());
    });
    return hash.Digits();
}

std::string ChecksumLine(const std::string& hash, const std::string& name) {
    std::string escaped;
    for (const char c : name)
        escaped += c == '\\' ? "\\\\" : c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string(1, c);
    return (escaped == name ? "" : "\\") + hash + "  " + escaped + "\n";
}

SizesByPath FilesOfVolume(const Path& volume, const std::set<std::string>& volumes) {
    SizesByPath files;
    Walk(volume, true, volumes, files);
    return files;
}

std::string ChecksumsText(const Path& volume, const SizesByPath& files,
                          const std::function<std::string(const Path& file)>& checksumOf) {
    std::string text;
    for (const auto& [path, size] : files) {
        std::string name = path.substr(volume.Text().size() + 1);
        std::ranges::replace(name, '\\', '/');
        text += ChecksumLine(checksumOf(Path(path)), name);
    }
    return text;
}

}  // namespace launcher::mediatool
