#include "tests/support/handle_count.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include "fs/exceptions.h"
#include "tests/support/handle_type.h"

namespace launcher::test {
namespace {

// Windows' own threads for loading libraries and for tracing come and go when they like, and these
// are what they hold.
bool IsOfWindowsOwnThreads(HANDLE handle) {
    constexpr std::wstring_view kTypes[] = {L"EtwRegistration", L"IRTimer", L"IoCompletion",
                                            L"TpWorkerFactory", L"WaitCompletionPacket"};
    return std::ranges::find(kTypes, TypeOf(handle)) != std::end(kTypes);
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

// Handles are multiples of 4, and a free low one is given out before a higher one: a long gap is
// the end of the table.
std::size_t OpenHandleCount() {
    constexpr int kLongGap = 200;
    std::size_t count = 0;
    int gap = 0;
    for (std::uintptr_t value = 4; gap < kLongGap; value += 4) {
        DWORD flags = 0;
        const auto handle = reinterpret_cast<HANDLE>(value);
        const bool open = GetHandleInformation(handle, &flags) != FALSE;
        if (open && !IsOfWindowsOwnThreads(handle)) ++count;
        gap = open ? 0 : gap + 1;
    }
    return count;
}

SameHandlesAtTheEnd::SameHandlesAtTheEnd() {
    UseWhatKeepsHandles();
    before_ = OpenHandleCount();
}

SameHandlesAtTheEnd::~SameHandlesAtTheEnd() {
    EXPECT_EQ(OpenHandleCount(), before_) << "handles were left open";
}

}  // namespace launcher::test
