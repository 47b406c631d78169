// The copy into the temporary folder: looks at every source and at the place of every destination,
// and fails as the real one does, but writes nothing.

#include "fs/copy.h"

#include <windows.h>

#include <cerrno>
#include <utility>

#include "fs/create_dir.h"
#include "fs/directory_enumerator.h"
#include "fs/encoding.h"
#include "fs/exceptions.h"
#include "fs/file_type.h"
#include "fs/open_file.h"
#include "fs/path.h"
#include "mediatool/base/files.h"
#include "mediatool/base/names.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"

namespace launcher {
namespace {

using mediatool::CurrentRehearsal;
using mediatool::PretendedCopy;

bool IsPretended(const Path& folder) {
    return CurrentRehearsal()->HasFolder(folder);
}

// Asks for the right to make a folder in an existing one, and makes none.
DWORD ErrorOfMakingFolderIn(const Path& folder) {
    const std::wstring name = ToWide(folder.Text()) + (folder.Text().ends_with(':') ? L"\\" : L"");
    const FileHandle handle(CreateFileW(
        name.c_str(), FILE_ADD_SUBDIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return handle ? ERROR_SUCCESS : GetLastError();
}

bool HasForbiddenCharacter(const Path& full) {
    const auto afterRoot = static_cast<std::size_t>(full.RootEnd() + 1);
    return full.Text().find_first_of("<>\"|?*", afterRoot) != std::string::npos;
}

// The error of CreateDirectoryW, as far as it can be told without calling it; 0 for none.
DWORD ErrorOfMaking(const Path& folder) {
    if (mediatool::LengthInRun(folder.Text()) > mediatool::kLongestFolder)
        return ERROR_FILENAME_EXCED_RANGE;
    // Windows drops dots and blanks at the end of a path, but not before a backslash.
    const Path full = mediatool::FullPath(folder.Text());
    if (IsPretended(full)) return ERROR_ALREADY_EXISTS;
    if (HasForbiddenCharacter(full)) return ERROR_INVALID_NAME;
    const Path parent = Parent(full);
    // Not by CopyKey, which would drop its blanks.
    if (CurrentRehearsal()->pretendedFolders.contains(mediatool::InLowerCase(parent.Text())))
        return mediatool::IsUsableName(FileName(full)) ? ERROR_SUCCESS : ERROR_INVALID_NAME;
    // A look at the folder fails as its creation would, for its name or for what leads to it,
    // unless it is but missing.
    const std::wstring name = ToWide(folder.Text());
    const bool isThere = GetFileAttributesW(name.c_str()) != INVALID_FILE_ATTRIBUTES;
    const DWORD error = GetLastError();
    if (!isThere && error != ERROR_FILE_NOT_FOUND) return error;
    return ErrorOfMakingFolderIn(parent);
}

void PretendToCreate(const Path& folder) {
    const DWORD error = ErrorOfMaking(folder);
    if (error == ERROR_SUCCESS) {
        CurrentRehearsal()->pretendedFolders.insert(mediatool::CopyKey(folder));
        return;
    }
    SetLastError(error);
    ThrowLastError("CreateDirectory - ", folder.Text());
}

// CreateDir, on folders of which some are only pretended.
void PretendToCreateDir(const std::string& path) {
    const Path folder(path);
    const std::string& text = folder.Text();
    if (text.empty()) throw ZEPInsException("CreateDir - empty path");
    if (IsPretended(folder)) return;
    const DWORD attributes = GetFileAttributesW(ToWide(text).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return;
        throw ZEPInsException("CreateDir - " + text + " is not a directory.");
    }
    const Path parent = Parent(folder);
    if (IsEmpty(parent)) return;
    try {
        PretendToCreateDir(parent.Text());
    } catch (const std::exception&) {  // recurs with the child
    }
    if (FileName(folder) != ".") PretendToCreate(folder);
}

std::optional<std::uint64_t> RoomAt(const std::string& path) {
    for (Path folder(path); !IsEmpty(folder); folder = Parent(folder)) {
        ULARGE_INTEGER room{};
        const std::wstring name = ToWide(folder.Text()) + L"\\";
        if (GetDiskFreeSpaceExW(name.c_str(), &room, nullptr, nullptr)) return room.QuadPart;
    }
    return std::nullopt;
}

void ThrowUnreadable(const std::string& source, DWORD error) {
    if (!OpenForAttributes(ToWide(source)))
        throw ZEPInsExceptionErrno("Cannot stat " + source, ENOENT);
    SetLastError(error);
    ThrowLastErrorAsErrno("Cannot read ", source);
}

void PretendToCopyFile(const std::string& source, const std::string& destination) {
    const FileHandle file = OpenSharedFile(ToWide(source), GENERIC_READ, OPEN_EXISTING);
    const DWORD error = GetLastError();
    if (!file) ThrowUnreadable(source, error);
    LARGE_INTEGER size{};
    GetFileSizeEx(file.Get(), &size);
    if (mediatool::LengthInRun(destination) > mediatool::kLongestPath) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        ThrowLastErrorAsErrno("Cannot write into ", destination);
    }
    PretendedCopy& copy = CurrentRehearsal()->journal.copy;
    // A file that is copied over another takes the room of one.
    const auto bytes = static_cast<std::uint64_t>(size.QuadPart);
    mediatool::PretendedFile& copied = copy.contents[mediatool::CopyKey(Path(destination))];
    copied.source = source;
    copy.bytes += bytes - std::exchange(copied.bytes, bytes);
    copy.files = copy.contents.size();
    if (copy.room && copy.bytes > *copy.room)
        throw ZEPInsExceptionErrno("Cannot write into " + destination, ENOSPC);
}

void PretendToCreateParent(const std::string& path) {
    const Path parent = Parent(Path(path));
    if (!IsEmpty(parent)) PretendToCreateDir(parent.Text());
}

void PretendToCopyTree(const std::string& source, const std::string& destination) {
    const auto entries = DirectoryEnumerator::Open(source, DirectoryEnumerator::kEverything);
    if (entries->AtEnd()) PretendToCreateDir(destination);
    for (; !entries->AtEnd(); entries->Next()) {
        const std::string target = destination + kBackslash + entries->Name();
        if (IsDirectory(entries->Type())) {
            PretendToCopyTree(entries->FullPath(), target);
            continue;
        }
        PretendToCreateParent(target);
        PretendToCopyFile(entries->FullPath(), target);
    }
}

}  // namespace

void Copy(const std::string& source, const std::string& destination) {
    if (source.empty()) throw ZEPInsException("Copy - empty source path");
    if (destination.empty()) throw ZEPInsException("Copy - empty destination path");
    PretendedCopy& copy = CurrentRehearsal()->journal.copy;
    if (!copy.room) copy.room = RoomAt(destination);
    if (IsDirectory(GetType(source))) {
        PretendToCopyTree(source, destination);
    } else {
        PretendToCreateParent(destination);
        PretendToCopyFile(source, destination);
    }
}

}  // namespace launcher
