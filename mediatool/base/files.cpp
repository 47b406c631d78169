#include "mediatool/base/files.h"

#include <windows.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "fs/encoding.h"
#include "fs/exceptions.h"
#include "fs/open_file.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {
namespace {

// Of any of the records in which Windows tells of a file.
template <class Data>
Entry EntryFrom(const std::string& name, const Data& data) {
    const auto joined = [](DWORD high, DWORD low) { return (std::uint64_t{high} << 32) | low; };
    const bool isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return {
        .name = name,
        .isFolder = isFolder,
        .isLink = (data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0,
        .size = isFolder ? 0 : joined(data.nFileSizeHigh, data.nFileSizeLow),
        .modified = joined(data.ftLastWriteTime.dwHighDateTime, data.ftLastWriteTime.dwLowDateTime),
        .attributes = data.dwFileAttributes};
}

// Of a file or folder, links followed; nothing when it cannot be asked.
std::optional<BY_HANDLE_FILE_INFORMATION> InformationOf(const std::string& path) {
    const FileHandle file = OpenForAttributes(Extended(path));
    BY_HANDLE_FILE_INFORMATION data{};
    if (!file || !GetFileInformationByHandle(file.Get(), &data)) return std::nullopt;
    return data;
}

// A file, from its start on, also while others are about to delete it.
FileHandle OpenToRead(const std::string& path) {
    return FileHandle(CreateFileW(Extended(path).c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
}

}  // namespace

void AskNobodyForDiscs() {
    SetThreadErrorMode(SEM_FAILCRITICALERRORS, nullptr);
}

Path FullPath(const std::string& text) {
    const std::wstring wide = ToWide(Path(text).Text());
    // A bare drive means its root here, not the current folder of that drive.
    const std::wstring asked = wide.ends_with(L':') ? wide + L'\\' : wide;
    std::wstring full(32768, L'\0');
    full.resize(
        GetFullPathNameW(asked.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return Path(ToNarrow(full.c_str()));
}

bool IsFull(const Path& path) {
    const std::string& text = path.Text();
    if (path.RootEnd() == 1) return text.size() == 2 || text[2] == '\\';
    return path.RootEnd() != Path::kRelative;
}

std::wstring Extended(const std::string& path) {
    std::wstring wide = ToWide(path);
    if (wide.starts_with(L"\\\\?\\")) return wide;
    if (wide.starts_with(L"\\\\")) return L"\\\\?\\UNC\\" + wide.substr(2);
    return L"\\\\?\\" + wide + (wide.ends_with(L':') ? L"\\" : L"");
}

std::optional<Entry> Look(const Path& path) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (IsEmpty(path) ||
        !GetFileAttributesExW(Extended(path.Text()).c_str(), GetFileExInfoStandard, &data))
        return std::nullopt;
    return EntryFrom(FileName(path), data);
}

std::optional<Entry> LookThrough(const Path& path) {
    const auto data = InformationOf(path.Text());
    if (!data) return std::nullopt;
    return EntryFrom(FileName(path), *data);
}

bool IsFile(const Path& path) {
    const std::optional<Entry> entry = Look(path);
    return entry && !entry->isFolder;
}

bool IsFolder(const Path& path) {
    const std::optional<Entry> entry = Look(path);
    return entry && entry->isFolder;
}

std::optional<std::vector<Entry>> List(const Path& folder) {
    std::wstring pattern = Extended(folder.Text());
    if (!pattern.ends_with(L'\\')) pattern += L'\\';
    pattern += L'*';
    WIN32_FIND_DATAW data{};
    FindHandle search(FindFirstFileW(pattern.c_str(), &data));
    std::vector<Entry> entries;
    // Only the root of an empty drive has no entry at all; any other folder has ".".
    if (!search && GetLastError() == ERROR_FILE_NOT_FOUND) return entries;
    if (!search) return std::nullopt;
    do {
        Entry entry = EntryFrom(ToNarrow(data.cFileName), data);
        if (entry.name != "." && entry.name != "..") entries.push_back(std::move(entry));
    } while (FindNextFileW(search.Get(), &data));
    const DWORD end = GetLastError();
    search = FindHandle();
    SetLastError(end);
    if (end != ERROR_NO_MORE_FILES) return std::nullopt;  // broken off, by a bad disc for instance
    std::ranges::sort(entries, std::ranges::less(), &Entry::name);
    return entries;
}

std::vector<Entry> EntriesOf(const Path& folder) {
    return List(folder).value_or(std::vector<Entry>());
}

std::optional<std::string> ReadStart(const Path& path, std::size_t limit) {
    const FileHandle file = OpenToRead(path.Text());
    if (!file) return std::nullopt;
    std::string bytes(limit, '\0');
    DWORD count = 0;
    if (!ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr))
        return std::nullopt;
    bytes.resize(count);
    return bytes;
}

void ReadWhole(const Path& file, const std::function<void(std::string_view)>& take,
               const std::string& what) {
    constexpr DWORD kPiece = 256 * 1024;  // bytes
    const FileHandle handle = OpenToRead(file.Text());
    if (!handle) RefuseFor(file, what);
    const auto piece = std::make_unique_for_overwrite<char[]>(kPiece);
    for (DWORD count = 0;;) {
        if (!ReadFile(handle.Get(), piece.get(), kPiece, &count, nullptr)) RefuseFor(file, what);
        if (count == 0) return;
        take({piece.get(), count});
    }
}

bool CanBeRead(const std::string& path) {
    return static_cast<bool>(OpenToRead(path));
}

// A new file takes the place of another by a rename, which fails while anybody has the other open.
// That it can be opened for writing as well shows that it is no program that is running. Windows
// opens a hidden file so, but does not put a new one in its place.
bool CanBeOverwritten(const std::string& path) {
    constexpr DWORD kKept = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    const std::wstring name = Extended(path);
    const DWORD attributes = GetFileAttributesW(name.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    if ((attributes & kKept) != 0) {
        SetLastError(ERROR_ACCESS_DENIED);
        return false;
    }
    const FileHandle file(CreateFileW(name.c_str(), GENERIC_WRITE | DELETE, 0, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(file);
}

std::optional<FileIdentity> IdentityOf(const std::string& path) {
    const auto data = InformationOf(path);
    if (!data) return std::nullopt;
    const std::uint64_t index = (std::uint64_t{data->nFileIndexHigh} << 32) | data->nFileIndexLow;
    if (index == 0) return std::nullopt;
    return FileIdentity{data->dwVolumeSerialNumber, index};
}

Path FinalPath(const Path& path) {
    const FileHandle file = OpenForAttributes(Extended(path.Text()));
    const Path parent = Parent(path);
    if (!file) return IsEmpty(parent) ? path : Join(FinalPath(parent), FileName(path));
    std::wstring name(32768, L'\0');
    name.resize(
        GetFinalPathNameByHandleW(file.Get(), name.data(), static_cast<DWORD>(name.size()), 0));
    if (name.starts_with(L"\\\\?\\UNC\\"))
        name.replace(0, 7, L"\\");
    else if (name.find(L':') == 5)
        name.erase(0, 4);
    return name.empty() ? path : Path(ToNarrow(name.c_str()));
}

std::string ErrorText(std::uint32_t error) {
    std::string text = SystemErrorText(error);
    while (text.ends_with('.') || text.ends_with(' '))
        text.pop_back();
    return text;
}

std::string LastErrorText() {
    return ErrorText(GetLastError());
}

std::string WhyNot(const Path& path, const std::string& what) {
    const std::string reason = LastErrorText();
    return Quoted(path) + " cannot be " + what + ": " + reason + ".";
}

void RefuseFor(const Path& path, const std::string& what) {
    throw Refused(WhyNot(path, what));
}

std::size_t WideLength(const std::string& text) {
    return ToWide(text).size();
}

bool AreLongPathsEnabled() {
    DWORD enabled = 0;
    DWORD size = sizeof enabled;
    return RegGetValueW(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\FileSystem",
                        L"LongPathsEnabled", RRF_RT_REG_DWORD, nullptr, &enabled,
                        &size) == ERROR_SUCCESS &&
           enabled == 1;
}

bool SameName(const std::string& left, const std::string& right) {
    const std::wstring a = ToWide(left);
    const std::wstring b = ToWide(right);
    return CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(),
                                static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

bool SameName(const Path& left, const Path& right) {
    return SameName(left.Text(), right.Text());
}

bool IsAmong(const Path& path, const std::vector<Path>& paths) {
    return std::ranges::any_of(paths, [&path](const Path& each) { return SameName(each, path); });
}

bool IsWithin(const Path& path, const Path& folder) {
    return InLowerCase(path.Text() + kBackslash)
        .starts_with(InLowerCase(folder.Text() + kBackslash));
}

std::string InLowerCase(const std::string& text) {
    std::wstring wide = ToWide(text);
    CharLowerBuffW(wide.data(), static_cast<DWORD>(wide.size()));
    return ToNarrow(wide.c_str());
}

}  // namespace launcher::mediatool
