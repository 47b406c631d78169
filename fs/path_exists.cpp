#include "fs/file_type.h"

namespace launcher {

bool PathExists(const std::string& path) {
    return IsThere(path);
}

}  // namespace launcher
