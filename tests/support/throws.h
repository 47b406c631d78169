#pragma once

#include <gmock/gmock.h>

#include <cstdint>
#include <string>

#include "fs/exceptions.h"

namespace launcher::test {

// Matchers of callables that throw, by the exact text. They spell the texts out rather than build
// an exception of their own.

inline auto Throws(const std::string& message) {
    return testing::ThrowsMessage<ZEPInsException>(message + "\n");
}

inline auto ThrowsSystemError(const std::string& message, std::uint32_t code) {
    return testing::ThrowsMessage<ZEPInsException>(message + " - " + SystemErrorText(code) + "\n");
}

inline auto ThrowsErrno(const std::string& message, int value) {
    return testing::ThrowsMessage<ZEPInsExceptionErrno>(message + " - " + ErrnoText(value) + "\n");
}

}  // namespace launcher::test
