#pragma once

#include <string>

namespace launcher::mediatool {

// What Windows takes as the name of a file or folder. Names are UTF-8.

// "con", "nul.txt": Windows opens a device instead.
bool IsReservedName(const std::string& name);

// It ends with a dot or a blank, which Windows drops.
bool EndsInDotOrBlank(const std::string& name);

// "setup.exe", "data.cab": a file that cannot be meant to be empty.
bool IsProgramName(const std::string& name);

// A file that other programs leave behind: "~1.tmp", "Thumbs.db", ".DS_Store".
bool IsLeftover(const std::string& name);

// A new file or folder may have it.
bool IsUsableName(const std::string& name);

}  // namespace launcher::mediatool
