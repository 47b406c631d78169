#pragma once

#include <string>

namespace launcher::mediatool {

// The form of the launcher's console lines (launcher/base/message_output.cpp): a severity, or
// blanks in its place, and the text.

bool LooksLikeLaunchers(const std::string& line);

// The text of such a line.
std::string MessageOf(const std::string& line);

}  // namespace launcher::mediatool
