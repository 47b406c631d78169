#include "tests/support/repeats.h"

#include <cstdio>

namespace launcher::test {

constexpr int kMost = 3;

bool Repeats::AreWorthIt(bool stumbled, const char* why) {
    if (!stumbled || count_ == kMost) return false;
    ++count_;
    // At the start of a line: cmake/TestSummary.cmake and tools/other-wines.sh count them.
    std::printf("[ REPEATED ] %s\n", why);
    return true;
}

}  // namespace launcher::test
