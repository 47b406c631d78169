#pragma once

#include <map>
#include <string>

namespace launcher::test {

// An environment for CreateProcessW: that of this process without the variables that the launcher
// or the stand-in installer reads, and with `changes` (UTF-8; an empty value removes a variable).
std::wstring EnvironmentBlock(const std::map<std::string, std::string>& changes);

}  // namespace launcher::test
