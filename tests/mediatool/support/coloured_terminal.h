#pragma once

// A terminal that shows colours, and their codes.

#include <windows.h>

#include <string>

#include "tests/support/hook.h"

namespace launcher::test {

namespace colours {

inline const std::string kBold = "\x1b[1m";
inline const std::string kRed = "\x1b[1;31m";
inline const std::string kYellow = "\x1b[33m";
inline const std::string kGreen = "\x1b[32m";
inline const std::string kCyan = "\x1b[36m";
inline const std::string kFaint = "\x1b[2m";
inline const std::string kPlain = "\x1b[0m";

}  // namespace colours

// A process finds out once whether its terminal has colours: for a death test's.
class ColouredTerminal {
  public:
    ColouredTerminal() { SetEnvironmentVariableW(L"NO_COLOR", nullptr); }

  private:
    Hook<decltype(&GetConsoleMode)> terminal_{"GetConsoleMode", [](auto&&...) { return TRUE; }};
    Hook<decltype(&SetConsoleMode)> colours_{"SetConsoleMode", [](auto&&...) { return TRUE; }};
};

}  // namespace launcher::test
