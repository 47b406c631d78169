#pragma once

#include <windows.h>

#include <string>

#include "fs/owners.h"

namespace launcher {

// Opens or creates an ordinary file that every other program may go on reading and writing.
// `access` is GENERIC_READ or GENERIC_WRITE, `disposition` and `flags` as for CreateFileW. The
// handle is not inherited by child processes; it is empty when the file cannot be opened, and
// GetLastError() then says why.
// https://learn.microsoft.com/windows/win32/api/fileapi/nf-fileapi-createfilew
FileHandle OpenSharedFile(const std::wstring& path, DWORD access, DWORD disposition,
                          DWORD flags = FILE_ATTRIBUTE_NORMAL);

// Opens a file or folder only to look at it, as the C runtime's status functions do: behind links,
// and also while other programs keep it for themselves. Empty when that cannot be done.
FileHandle OpenForAttributes(const std::wstring& path);

}  // namespace launcher
