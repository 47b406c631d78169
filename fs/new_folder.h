#pragma once

#include <optional>
#include <string>

#include "fs/file_type.h"

namespace launcher {

// What CreateDir (fs/create_dir.h) asks and does, for one folder.

// What is in its place already: TypeBehindLinks (fs/file_type.h).
std::optional<FileType> WhatIsAt(const std::wstring& path);

// Makes it; its parent has to be there. When it returns false, GetLastError() says why.
// https://learn.microsoft.com/windows/win32/api/fileapi/nf-fileapi-createdirectoryw
bool MakeFolder(const std::wstring& path);

}  // namespace launcher
