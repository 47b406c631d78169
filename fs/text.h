#pragma once

#include <cstddef>
#include <string>

namespace launcher {

// Replaces every occurrence of `find` (never empty) in `text` from index `start` on; the search
// goes on after each inserted replacement, so replacements are not searched again. Returns the
// number of replacements.
std::size_t ReplaceAll(std::string& text, const std::string& find, const std::string& replacement,
                       std::size_t start);

}  // namespace launcher
