#pragma once

#include <string>

namespace launcher {

// A new random identifier in the form of a version-4 UUID: 36 characters, hexadecimal digits in
// groups of 8, 4, 4, 4 and 12, in upper case or not. For names that two runs must not share, not
// for secrets: the generator is seeded once with the clock.
std::string NewUuidText(bool upperCase);

}  // namespace launcher
