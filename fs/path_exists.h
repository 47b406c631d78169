#pragma once

#include <string>

namespace launcher {

// What the launcher goes by: IsThere (fs/file_type.h).
bool PathExists(const std::string& path);

}  // namespace launcher
