#include "mediatool/media/checksums.h"

#include <algorithm>

#include "mediatool/base/files.h"
#include "mediatool/base/sha256.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kHashLength = 64;  // of a checksum

bool IsSystemFolder(const std::string& name) {
    return SameName(name, "System Volume Information") || SameName(name, "$RECYCLE.BIN");
}

// The name of a file below the volume's root, or at it.
bool IsListed(const std::string& name, bool atRoot) {
    if (SameName(name, kUnfinishedFile)) return false;
    return !atRoot || (!SameName(name, kChecksumsName) && !SameName(name, kUnfinishedMark));
}

// `prefix` is the folder's name in the list, with a "/" at the end.
void AddFiles(const Path& folder, const std::string& prefix, const std::vector<Path>& volumes,
              const std::function<void(const Path&)>& unlisted, SizesByName& files) {
    const auto entries = List(folder);
    if (!entries) return unlisted(folder);
    const auto isOfVolume = [&](const std::string& name) {
        const bool isSystems = IsEmpty(Parent(folder)) && IsSystemFolder(name);
        return !isSystems && !IsAmong(Join(folder, name), volumes);
    };
    for (const Entry& entry : *entries) {
        if (!entry.isFolder && IsListed(entry.name, prefix.empty()))
            files[prefix + entry.name] = entry.size;
        else if (entry.isFolder && !entry.isLink && isOfVolume(entry.name))
            AddFiles(Join(folder, entry.name), prefix + entry.name + "/", volumes, unlisted, files);
    }
}

std::string Unescaped(std::string_view name) {
    std::string text;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool isEscape = name[i] == '\\' && i + 1 < name.size();
        const char c = isEscape ? name[++i] : name[i];
        text += !isEscape ? c : c == 'n' ? '\n' : c == 'r' ? '\r' : c;
    }
    return text;
}

bool IsChecksum(std::string_view text) {
    return text.size() == kHashLength &&
           text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

// Nothing in `file` for a line of another kind.
bool ParseLine(std::string_view line, ChecksumList::File& file) {
    const bool isEscaped = line.starts_with('\\');
    if (isEscaped) line.remove_prefix(1);
    if (line.size() <= kHashLength + 2 || !IsChecksum(line.substr(0, kHashLength)) ||
        line[kHashLength] != ' ' || (line[kHashLength + 1] != ' ' && line[kHashLength + 1] != '*'))
        return false;
    std::string_view name = line.substr(kHashLength + 2);
    if (name.starts_with("./")) name.remove_prefix(2);
    file.name = isEscaped ? Unescaped(name) : std::string(name);
    file.hash = InLowerCase(std::string(line.substr(0, kHashLength)));
    return true;
}

}  // namespace

std::string ChecksumOf(const Path& file, const std::function<void(std::uint64_t)>& progress) {
    Sha256 hash;
    const auto take = [&](std::string_view bytes) {
        hash.Add(bytes);
        if (progress) progress(bytes.size());
    };
    ReadWhole(file, take, "read");
    return hash.Digits();
}

std::string ChecksumLine(const std::string& hash, const std::string& name) {
    std::string escaped;
    for (const char c : name)
        escaped += c == '\\' ? "\\\\" : c == '\n' ? "\\n" : c == '\r' ? "\\r" : std::string(1, c);
    return (escaped == name ? "" : "\\") + hash + "  " + escaped + "\n";
}

ChecksumList ParseChecksums(std::string_view text) {
    if (text.starts_with(kUtf8Mark)) text.remove_prefix(sizeof kUtf8Mark - 1);
    ChecksumList list;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        ChecksumList::File file;
        if (ParseLine(line, file))
            list.files.push_back(file);
        else if (!line.empty() && list.badLine == 0)
            list.badLine = number;
    }
    return list;
}

std::vector<Path> FoldersOf(const std::vector<Path>& given, const std::vector<std::string>& found) {
    std::vector<Path> folders;
    const auto add = [&folders](const Path& folder) {
        if (!IsAmong(folder, folders)) folders.push_back(folder);
    };
    for (const std::string& folder : found)
        add(FullPath(folder));
    for (const Path& folder : given)
        add(folder);
    return folders;
}

SizesByName FilesOfVolume(const Path& volume, const std::vector<Path>& volumes,
                          const std::function<void(const Path&)>& unlisted) {
    SizesByName files;
    AddFiles(volume, "", volumes, unlisted, files);
    return files;
}

}  // namespace launcher::mediatool
