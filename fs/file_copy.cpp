#include "fs/file_copy.h"

#include <windows.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>

#include "fs/errno_code.h"
#include "fs/exceptions.h"
#include "fs/file_operations.h"
#include "fs/owners.h"
#include "fs/path.h"
#include "fs/text.h"

namespace launcher {
namespace {

constexpr DWORD kBufferSize = 65536;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

FileHandle Open(const std::wstring& path, DWORD access, DWORD disposition) {
    return FileHandle(CreateFileW(path.c_str(), access, kShareAll, nullptr, disposition,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
}

void CreateParent(const std::string& path) {
    const Path parent = Parent(Path(path));
    if (!IsEmpty(parent)) CreateDir(parent.Text());
}

// The open source and its times from before it was read.
struct SourceFile {
    FileHandle handle;
    FILETIME accessed{};
    FILETIME modified{};
};

// `error` is why the source could not be opened; a source that cannot even be looked at has a
// message of its own.
[[noreturn]] void ThrowUnreadable(const std::string& source, DWORD error) {
    const std::wstring widePath = ToWide(source);
    if (GetFileAttributesW(widePath.c_str()) == INVALID_FILE_ATTRIBUTES) {
        const DWORD statusError = GetLastError();
        throw ZEPInsExceptionErrno("Cannot stat " + source, ErrnoFromWindowsError(statusError));
    }
    throw ZEPInsExceptionErrno("Cannot read " + source, ErrnoFromWindowsError(error));
}

SourceFile OpenSource(const std::string& source) {
    const std::wstring widePath = ToWide(source);
    SourceFile file;
    file.handle = Open(widePath, GENERIC_READ, OPEN_EXISTING);
    if (!file.handle) ThrowUnreadable(source, GetLastError());
    GetFileTime(file.handle.Get(), nullptr, &file.accessed, &file.modified);
    return file;
}

bool IsSameFile(const BY_HANDLE_FILE_INFORMATION& a, const BY_HANDLE_FILE_INFORMATION& b) {
    return a.dwVolumeSerialNumber == b.dwVolumeSerialNumber &&
           a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow &&
           a.nFileSizeHigh == b.nFileSizeHigh && a.nFileSizeLow == b.nFileSizeLow &&
           CompareFileTime(&a.ftLastWriteTime, &b.ftLastWriteTime) == 0;
}

// True when `path` is the open source behind this or another name: a hard link, another drive
// letter, a share.
bool IsSource(const std::wstring& path, const SourceFile& source) {
    const FileHandle other = Open(path, GENERIC_READ, OPEN_EXISTING);
    BY_HANDLE_FILE_INFORMATION theirs{};
    BY_HANDLE_FILE_INFORMATION ours{};
    return GetFileInformationByHandle(other.Get(), &theirs) &&
           GetFileInformationByHandle(source.handle.Get(), &ours) && IsSameFile(theirs, ours);
}

// Most copies go where nothing is yet: then one call opens the file, and there is nothing to
// mistake for the source.
FileHandle OpenDestination(const std::string& destination, const std::string& sourcePath,
                           const SourceFile& source) {
    const std::wstring widePath = ToWide(destination);
    FileHandle file = Open(widePath, GENERIC_WRITE, CREATE_NEW);
    if (file) return file;
    CreateParent(destination);  // a folder that went away meanwhile is made again
    if (IsSource(widePath, source))
        throw ZEPInsException("Cannot copy " + sourcePath + " to itself.");
    file = Open(widePath, GENERIC_WRITE, CREATE_ALWAYS);
    if (!file) {
        const DWORD error = GetLastError();
        throw ZEPInsExceptionErrno("Cannot write into " + destination,
                                   ErrnoFromWindowsError(error));
    }
    return file;
}

void CopyBytes(const FileHandle& from, const FileHandle& to, const std::string& destination) {
    std::array<std::byte, kBufferSize> buffer;
    DWORD count = 0;
    // A failed read ends the copy like the end of the file, and a short write is not noticed: both
    // are meant.
    while (ReadFile(from.Get(), buffer.data(), kBufferSize, &count, nullptr) && count > 0) {
        DWORD written = 0;
        if (!WriteFile(to.Get(), buffer.data(), count, &written, nullptr)) {
            const DWORD error = GetLastError();
            throw ZEPInsExceptionErrno("Cannot write into " + destination,
                                       ErrnoFromWindowsError(error));
        }
        // Nothing written without an error is how some systems say that the disk is full.
        if (written == 0) throw ZEPInsExceptionErrno("Cannot write into " + destination, ENOSPC);
    }
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

void SetTime(const FileHandle& file, const SourceFile& source, const std::string& destination) {
    // A file system without access times, as on a disc, gives zero: the modification time serves.
    const FILETIME& accessed = Ticks(source.accessed) == 0 ? source.modified : source.accessed;
    if (IsUnknownTime(accessed)) return;
    if (!SetFileTime(file.Get(), nullptr, &accessed, &source.modified)) {
        const DWORD error = GetLastError();
        throw ZEPInsExceptionErrno("SetTime - " + destination, ErrnoFromWindowsError(error));
    }
}

}  // namespace

void CopyOneFile(const std::string& source, const std::string& destination) {
    CreateParent(destination);
    CopyIntoFolder(source, destination);
}

void CopyIntoFolder(const std::string& source, const std::string& destination) {
    const SourceFile from = OpenSource(source);
    const FileHandle to = OpenDestination(destination, source, from);
    CopyBytes(from.handle, to, destination);
    SetTime(to, from, destination);
}

}  // namespace launcher
