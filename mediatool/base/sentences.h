#pragma once

#include <cstddef>
#include <string>

#include "fs/path.h"

namespace launcher::mediatool {

// Parts of the sentences that mediatool says. Texts are UTF-8.

// In double quotes.
std::string Quoted(const std::string& text);
std::string Quoted(const Path& path);

// "1 file", "3 files"
std::string Counted(std::size_t count, const std::string& what);

}  // namespace launcher::mediatool
