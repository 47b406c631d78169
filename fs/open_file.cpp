#include "fs/open_file.h"

namespace launcher {

FileHandle OpenSharedFile(const std::wstring& path, DWORD access, DWORD disposition, DWORD flags) {
    return FileHandle(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  disposition, flags, nullptr));
}

FileHandle OpenForAttributes(const std::wstring& path) {
    return FileHandle(CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
}

}  // namespace launcher
