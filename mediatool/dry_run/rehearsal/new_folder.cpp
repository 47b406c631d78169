// The folders of the copy: looks at the place of each and fails as Windows does, but makes none.

#include "fs/new_folder.h"

#include <windows.h>

#include "fs/encoding.h"
#include "fs/open_file.h"
#include "fs/owners.h"
#include "mediatool/base/files.h"
#include "mediatool/base/names.h"
#include "mediatool/dry_run/rehearsal/pretended_copy.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"

namespace launcher {
namespace {

// Asks for the right to make a folder in an existing one, and makes none.
DWORD ErrorOfMakingFolderIn(const Path& folder) {
    const std::wstring name = ToWide(folder.Text()) + (folder.Text().ends_with(':') ? L"\\" : L"");
    const FileHandle handle(CreateFileW(
        name.c_str(), FILE_ADD_SUBDIRECTORY, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return handle ? ERROR_SUCCESS : GetLastError();
}

// The error of CreateDirectoryW, as far as it can be told without calling it; 0 for none.
DWORD ErrorOfMaking(const Path& folder) {
    if (mediatool::IsTooLong(mediatool::WideLength(folder.Text()), mediatool::kLongestFolder))
        return ERROR_FILENAME_EXCED_RANGE;
    // Windows drops dots and blanks at the end of a path, but not before a backslash.
    const Path full = mediatool::FullPath(folder.Text());
    const mediatool::PretendedCopy& copy = mediatool::CopyBelow(folder);
    if (copy.HasFolder(full)) return ERROR_ALREADY_EXISTS;
    const Path parent = Parent(full);
    // Not by CopyKey, which would drop its blanks.
    if (copy.folders.contains(mediatool::InLowerCase(parent.Text())))
        return mediatool::IsUsableName(FileName(full)) ? ERROR_SUCCESS : ERROR_INVALID_NAME;
    // A look at the folder fails as its creation would, for its name or for what leads to it,
    // unless it is only missing.
    const std::wstring name = ToWide(folder.Text());
    const bool isThere = static_cast<bool>(OpenForAttributes(name));
    const DWORD error = GetLastError();
    if (!isThere && error != ERROR_FILE_NOT_FOUND) return error;
    return ErrorOfMakingFolderIn(parent);
}

}  // namespace

std::optional<FileType> WhatIsAt(const std::wstring& path) {
    const Path folder(ToNarrow(path.c_str()));
    const mediatool::PretendedCopy& copy = mediatool::CopyBelow(folder);
    if (copy.HasFolder(folder)) return FileType::Directory;
    if (copy.HasFile(folder)) return FileType::File;
    return TypeBehindLinks(path);
}

bool MakeFolder(const std::wstring& path) {
    const Path folder(ToNarrow(path.c_str()));
    const DWORD error = ErrorOfMaking(folder);
    if (error == ERROR_SUCCESS)
        mediatool::CopyBelow(folder).folders.insert(mediatool::CopyKey(folder));
    SetLastError(error);
    return error == ERROR_SUCCESS;
}

}  // namespace launcher
