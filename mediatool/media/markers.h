#pragma once

#include <string>

namespace launcher::mediatool {

// The texts of the small files of a disc set, as the launcher reads them.
std::string CountFileText(int volumes);
std::string MarkerText(const std::string& id);

}  // namespace launcher::mediatool
