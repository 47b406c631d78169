#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "fs/path.h"

namespace launcher::mediatool {

// Parts of the sentences that mediatool says. Texts are UTF-8.

// In double quotes.
std::string Quoted(const std::string& text);
std::string Quoted(const Path& path);

// "1234567" as "1,234,567"
std::string Grouped(std::uint64_t number);

// "1 file", "3 files"
std::string Counted(std::size_t count, const std::string& what);

}  // namespace launcher::mediatool
