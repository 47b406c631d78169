#pragma once

#include <windows.h>

#include "mediatool/base/owners.h"

namespace launcher::test {

// Something that does not go on until it is let.
class Gate {
  public:
    Gate() : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    void Open() const { SetEvent(event_.Get()); }
    // False when nobody opened it: a test in which somebody waits who should not fails, and ends.
    bool Pass() const { return WaitForSingleObject(event_.Get(), 30000) == WAIT_OBJECT_0; }

  private:
    mediatool::KernelObject event_;
};

}  // namespace launcher::test
