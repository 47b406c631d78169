#include "mediatool/create/new_file.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

// A virus scanner that looks at a file keeps it from being replaced or deleted for a moment. Tries
// until nobody holds it, two seconds at most; the last reason is in GetLastError().
template <class Attempt>
bool WithPatience(const Attempt& attempt) {
    constexpr int kAttempts = 20;
    constexpr DWORD kBetween = 100;  // milliseconds
    for (int i = 1; !attempt(); ++i) {
        const DWORD error = GetLastError();
        const bool isHeld = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
        if (!isHeld || i == kAttempts) return false;
        Sleep(kBetween);
    }
    return true;
}

// Gives an open file another name, which is free or may be replaced. `name` is a whole path.
// https://learn.microsoft.com/windows/win32/api/winbase/ns-winbase-file_rename_info
bool Rename(HANDLE file, const std::wstring& name, bool mayReplace) {
    const std::size_t bytes = name.size() * sizeof(wchar_t);
    std::vector<char> memory(sizeof(FILE_RENAME_INFO) + bytes);
    FILE_RENAME_INFO info{};
    info.ReplaceIfExists = mayReplace;
    info.FileNameLength = static_cast<DWORD>(bytes);
    std::memcpy(memory.data(), &info, sizeof info);
    std::memcpy(memory.data() + offsetof(FILE_RENAME_INFO, FileName), name.data(), bytes);
    return SetFileInformationByHandle(file, FileRenameInfo, memory.data(),
                                      static_cast<DWORD>(memory.size())) != FALSE;
}

FILETIME FileTime(std::uint64_t units) {
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

}  // namespace

bool Remove(const Path& path) {
    const std::wstring name = Extended(path.Text());
    SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (IsFolder(path)) return RemoveDirectoryW(name.c_str()) != FALSE;
    return WithPatience([&name] { return DeleteFileW(name.c_str()) != FALSE; });
}

NewFile::NewFile(const Path& path, DWORD attributes, const Path& blamed, const char* what)
    : path_(path),
      temporary_(Join(Parent(path), kUnfinishedFile)),
      blamed_(blamed),
      what_(what),
      file_(Open(attributes)) {
    // What a run that was killed has left.
    if (!file_ && GetLastError() == ERROR_FILE_EXISTS && Remove(temporary_))
        file_ = Open(attributes);
    if (!file_) RefuseFor(blamed_, what_);
}

NewFile::~NewFile() {
    file_.Reset();
    if (!isWhole_) Remove(temporary_);
}

FileHandle NewFile::Open(DWORD attributes) const {
    return FileHandle(CreateFileW(Extended(temporary_.Text()).c_str(), GENERIC_WRITE | DELETE, 0,
                                  nullptr, CREATE_NEW, attributes, nullptr));
}

void NewFile::Add(std::string_view bytes) {
    DWORD written = 0;
    if (!WriteFile(file_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr))
        RefuseFor(blamed_, what_);
}

void NewFile::SetModified(std::uint64_t time) {
    const FILETIME modified = FileTime(time);
    // A time that the disk cannot keep, as FAT none before 1980, is no reason to give up.
    if (!SetFileTime(file_.Get(), nullptr, nullptr, &modified) &&
        GetLastError() != ERROR_INVALID_PARAMETER)
        RefuseFor(blamed_, what_);
}

// While the file is still open, for this process alone: nobody else can hold it.
// Nothing waits for the disk here: what Windows has taken survives the end of this process, and to
// wait once for each of 50,000 files would take longer than to copy them.
void NewFile::GiveName(bool mayReplace) {
    const std::wstring name = Extended(path_.Text());
    isWhole_ = WithPatience([&] { return Rename(file_.Get(), name, mayReplace); });
    if (isWhole_) return;
    if (!mayReplace && GetLastError() == ERROR_ALREADY_EXISTS)
        throw Refused(Quoted(path_) +
                      " has come to be there meanwhile, or is the short name of another new file.");
    RefuseFor(blamed_, what_);
}

}  // namespace launcher::mediatool
