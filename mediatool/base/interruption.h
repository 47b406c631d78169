#pragma once

#include <windows.h>

namespace launcher::mediatool {

// While it lives, Ctrl+C and the closing of the console window do not end this process but are told
// by an event; so is a logoff or a shutdown, where Windows tells a program of it. Nothing of it is
// inherited. One at a time.
class Interruption {
  public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    HANDLE Event() const;  // set while it lives once it came
    bool HasCome() const;
};

}  // namespace launcher::mediatool
