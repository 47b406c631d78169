#pragma once

#include <cstddef>

namespace launcher::test {

// How many handles this process has open: equal before and after an operation that releases all it
// acquired.
std::size_t OpenHandleCount();

}  // namespace launcher::test
