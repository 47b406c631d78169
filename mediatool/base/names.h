#pragma once

#include <string>

namespace launcher::mediatool {

// What Windows takes as the name of a file or folder. Names are UTF-8.

// "con", "nul.txt": Windows opens a device instead.
bool IsReservedName(const std::string& name);

// It ends with a dot or a blank, which Windows drops.
bool EndsInDotOrBlank(const std::string& name);

// A new file or folder may have it.
bool IsUsableName(const std::string& name);

}  // namespace launcher::mediatool
