#pragma once

#include <cstddef>

namespace launcher::test {

// How many handles this process has open, without those of threads that Windows starts in it.
std::size_t OpenHandleCount();

// Fails the test when fewer or more handles are open at its end than at its beginning: as the
// first member of a fixture, when something of the test was left open.
class SameHandlesAtTheEnd {
  public:
    SameHandlesAtTheEnd();
    SameHandlesAtTheEnd(const SameHandlesAtTheEnd&) = delete;
    SameHandlesAtTheEnd& operator=(const SameHandlesAtTheEnd&) = delete;
    ~SameHandlesAtTheEnd();

  private:
    std::size_t before_;
};

}  // namespace launcher::test
