#pragma once

#include <functional>

namespace launcher::test {

// Repeats an operation, a few times first for what is made once and kept, and fails the test when
// handles or blocks of memory have come to be more by the end. The count is `share` of the
// environment variable "REPETITIONS", 100 without it, and at least 20. Prints what was done.
void Repeat(const std::function<void()>& operation, double share = 1);

}  // namespace launcher::test
