#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace launcher::soak {

// The programs below a folder that are running, one path for each process.
std::vector<std::string> RunningBelow(const std::filesystem::path& folder);

}  // namespace launcher::soak
