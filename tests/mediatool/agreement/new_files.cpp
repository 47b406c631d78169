#include "tests/mediatool/agreement/new_files.h"

#include <windows.h>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

namespace {

std::uint64_t Joined(DWORD high, DWORD low) {
    return (std::uint64_t{high} << 32) | low;
}

// By names that Windows takes as they are: a launcher may have made a folder "one " or "dots..".
void AddBelow(const std::wstring& folder, Snapshot& snapshot) {
    WIN32_FIND_DATAW data{};
    const FindHandle search(FindFirstFileW((L"\\\\?\\" + folder + L"\\*").c_str(), &data));
    if (!search) return;
    do {
        const std::wstring name = data.cFileName;
        const std::wstring path = folder + L"\\" + name;
        if (name == L"." || name == L".." ||
            (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
            continue;
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
            AddBelow(path, snapshot);
        else
            snapshot[SnapshotName(ToNarrow(path.c_str()))] = {
                Joined(data.nFileSizeHigh, data.nFileSizeLow),
                Joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime)};
    } while (FindNextFileW(search.Get(), &data));
}

}  // namespace

std::string SnapshotName(const std::string& path) {
    std::wstring text = ToWide(path);
    CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return ToNarrow(text.c_str());
}

std::string FullPath(const std::string& path, const stdfs::path& folder) {
    const bool isFull = path.starts_with("\\\\") || path.find(':') == 1;
    const std::wstring text = ToWide(isFull ? path : ToUtf8(folder) + "\\" + path);
    wchar_t full[32768] = {};
    GetFullPathNameW(text.c_str(), 32768, full, nullptr);
    return ToNarrow(full);
}

Snapshot TakeSnapshot(const std::vector<stdfs::path>& folders) {
    Snapshot snapshot;
    for (stdfs::path folder : folders)
        AddBelow(folder.make_preferred().native(), snapshot);
    return snapshot;
}

std::vector<std::string> NewFiles(const Snapshot& before, const Snapshot& after) {
    std::vector<std::string> names;
    for (const auto& [name, state] : after) {
        const auto known = before.find(name);
        if (known == before.end() || known->second != state) names.push_back(name);
    }
    return names;
}

}  // namespace launcher::test
