#pragma once

#include <cstdint>
#include <string>

namespace launcher::mediatool {

// "90m" in milliseconds: a whole number from 1 on, with s, m, h or d for seconds, minutes, hours or
// days behind it; seconds when there is none. Throws BadInput for anything else, and for more than
// a year.
std::uint64_t TimeLimitOf(const std::string& text);

}  // namespace launcher::mediatool
