#pragma once

#include <windows.h>

namespace launcher::mediatool {

// While it lives, Ctrl+C, the closing of the console window, a logoff and a shutdown do not end
// this process but are told by an event. Nothing of it is inherited. One at a time.
class Interruption {
  public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    HANDLE Event() const;  // set for good when it came
    bool HasCome() const { return WaitForSingleObject(Event(), 0) == WAIT_OBJECT_0; }
};

}  // namespace launcher::mediatool
