#include "tests/support/handle_count.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <stdexcept>

#include "fs/exceptions.h"

namespace launcher::test {
namespace {

// Handles are multiples of 4, and a free low one is given out before a higher one: a long gap is
// the end of the table.
std::size_t CountByProbing() {
    constexpr int kLongGap = 200;
    std::size_t count = 0;
    int gap = 0;
    for (std::uintptr_t value = 4; gap < kLongGap; value += 4) {
        DWORD flags = 0;
        const bool open = GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) != FALSE;
        count += open ? 1 : 0;
        gap = open ? 0 : gap + 1;
    }
    return count;
}

// Some first uses open a handle for the rest of the process: the system's texts, the report of a
// failed expectation, and an exception.
void UseWhatKeepsHandles() {
    SystemErrorText(1);
    OutputDebugStringA("\n");
    try {
        throw std::runtime_error("");
    } catch (const std::runtime_error&) {
    }
}

}  // namespace

std::size_t OpenHandleCount() {
    // Wine answers 0, which is never true of a running process.
    DWORD count = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &count) && count != 0) return count;
    return CountByProbing();
}

SameHandlesAtTheEnd::SameHandlesAtTheEnd() {
    UseWhatKeepsHandles();
    before_ = OpenHandleCount();
}

SameHandlesAtTheEnd::~SameHandlesAtTheEnd() {
    EXPECT_EQ(OpenHandleCount(), before_) << "handles were left open";
}

}  // namespace launcher::test
