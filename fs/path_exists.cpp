#include "fs/path_exists.h"

#include <windows.h>

#include "fs/encoding.h"

namespace launcher {

bool PathExists(const std::string& path) {
    return !path.empty() && GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

}  // namespace launcher
