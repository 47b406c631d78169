#include "fs/copy.h"

#include <windows.h>

#include <cerrno>
#include <cstdint>
#include <utility>

#include "fs/copied_file.h"
#include "fs/create_dir.h"
#include "fs/directory_enumerator.h"
#include "fs/encoding.h"
#include "fs/errno_code.h"
#include "fs/exceptions.h"
#include "fs/file_type.h"
#include "fs/open_file.h"
#include "fs/owners.h"
#include "fs/path.h"

namespace launcher {
namespace {

constexpr char kCannotWrite[] = "Cannot write into ";

void CreateParent(const std::string& path) {
    const Path parent = Parent(Path(path));
    if (!IsEmpty(parent)) CreateDir(parent.Text());
}

// For a source that could not be opened. The last error is why. One that cannot even be looked at
// counts as missing, whatever the reason, as it does to the C runtime's status functions.
[[noreturn]] void ThrowUnreadable(const std::string& source, const std::wstring& widePath) {
    const DWORD error = GetLastError();
    if (!OpenForAttributes(widePath)) throw ZEPInsExceptionErrno("Cannot stat " + source, ENOENT);
    SetLastError(error);
    ThrowLastErrorAsErrno("Cannot read ", source);
}

SourceFile OpenSource(const std::string& source) {
    SourceFile file;
    file.path = ToWide(source);
    file.handle = OpenSharedFile(file.path, GENERIC_READ, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN);
    if (!file.handle) ThrowUnreadable(source, file.path);
    GetFileTime(file.handle.Get(), nullptr, &file.accessed, &file.modified);
    return file;
}

bool IsSameFile(const BY_HANDLE_FILE_INFORMATION& a, const BY_HANDLE_FILE_INFORMATION& b) {
    return a.dwVolumeSerialNumber == b.dwVolumeSerialNumber &&
           a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow &&
           a.nFileSizeHigh == b.nFileSizeHigh && a.nFileSizeLow == b.nFileSizeLow &&
           CompareFileTime(&a.ftLastWriteTime, &b.ftLastWriteTime) == 0;
}

// True when `path` is the open source, under this or another name (a hard link, another drive
// letter, a share).
bool IsSource(const std::wstring& path, const SourceFile& source) {
    const FileHandle other = OpenSharedFile(path, GENERIC_READ, OPEN_EXISTING);
    BY_HANDLE_FILE_INFORMATION theirs{};
    BY_HANDLE_FILE_INFORMATION ours{};
    return GetFileInformationByHandle(other.Get(), &theirs) &&
           GetFileInformationByHandle(source.handle.Get(), &ours) && IsSameFile(theirs, ours);
}

// Most destinations do not exist yet: one call then creates the file, which cannot be the source.
CopiedFile OpenDestination(const std::string& destination, const std::string& sourcePath,
                           const SourceFile& source) {
    CopiedFile file(ToWide(destination));
    if (file.Open(CREATE_NEW)) return file;
    CreateParent(destination);  // a folder that has disappeared meanwhile is created again
    if (IsSource(file.Name(), source))
        throw ZEPInsException("Cannot copy " + sourcePath + " to itself.");
    if (!file.Open(CREATE_ALWAYS)) ThrowLastErrorAsErrno(kCannotWrite, destination);
    return file;
}

// As the C runtime's write: access denied means to it that the file is not open for writing.
[[noreturn]] void ThrowWriteError(const std::string& destination) {
    const DWORD error = GetLastError();
    const int value = error == ERROR_ACCESS_DENIED ? EBADF : ErrnoFromWindowsError(error);
    throw ZEPInsExceptionErrno(kCannotWrite + destination, value);
}

std::uint64_t Ticks(const FILETIME& time) {
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

// True for the first second of 1970, which counts as "no time known".
bool IsUnknownTime(const FILETIME& time) {
    constexpr std::uint64_t kTicksPerSecond = 10'000'000;  // of 100 ns
    constexpr std::uint64_t kUnixEpoch = 11'644'473'600;   // seconds from 1601 to 1970
    return Ticks(time) / kTicksPerSecond == kUnixEpoch;
}

void SetTime(CopiedFile& file, const SourceFile& source, const std::string& destination) {
    // File systems without access times (discs) give zero: use the modification time.
    const FILETIME& accessed = Ticks(source.accessed) == 0 ? source.modified : source.accessed;
    if (IsUnknownTime(accessed)) return;
    // The C runtime's time function has this one errno value for every failure.
    if (!file.SetTimes(accessed, source.modified))
        throw ZEPInsExceptionErrno("SetTime - " + destination, EINVAL);
}

// CopyOneFile into a folder that was there a moment ago.
void CopyIntoExistingFolder(const std::string& source, const std::string& destination) {
    const SourceFile from = OpenSource(source);
    CopiedFile to = OpenDestination(destination, source, from);
    if (!to.Fill(from)) ThrowWriteError(destination);
    SetTime(to, from, destination);
}

}  // namespace

void Copy(const std::string& source, const std::string& destination) {
    if (source.empty()) throw ZEPInsException("Copy - empty source path");
    if (destination.empty()) throw ZEPInsException("Copy - empty destination path");
    if (IsDirectory(GetType(source)))
        CopyDirectory(source, destination);
    else
        CopyOneFile(source, destination);
}

void CopyOneFile(const std::string& source, const std::string& destination) {
    CreateParent(destination);
    CopyIntoExistingFolder(source, destination);
}

void CopyDirectory(const std::string& source, const std::string& destination) {
    const auto entries = DirectoryEnumerator::Open(source, DirectoryEnumerator::kEverything);
    if (entries->AtEnd()) {
        CreateDir(destination);
        return;
    }
    bool folderMade = false;  // by the first file; checking again for every other would be slow
    for (; !entries->AtEnd(); entries->Next()) {
        const std::string target = destination + kBackslash + entries->Name();
        if (IsDirectory(entries->Type())) {
            CopyDirectory(entries->FullPath(), target);
            continue;
        }
        if (!std::exchange(folderMade, true)) CreateParent(target);
        CopyIntoExistingFolder(entries->FullPath(), target);
    }
}

}  // namespace launcher
