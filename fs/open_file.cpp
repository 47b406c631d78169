#include "fs/open_file.h"

namespace launcher {

FileHandle OpenSharedFile(const std::wstring& path, DWORD access, DWORD disposition) {
    return FileHandle(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                  disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace launcher
