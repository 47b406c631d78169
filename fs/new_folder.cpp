#include "fs/new_folder.h"

#include <windows.h>

namespace launcher {

std::optional<FileType> WhatIsAt(const std::wstring& path) {
    return TypeBehindLinks(path);
}

bool MakeFolder(const std::wstring& path) {
    return CreateDirectoryW(path.c_str(), nullptr) != 0;
}

}  // namespace launcher
