#include "platform/owners.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <type_traits>

#include "tests/support/handle_count.h"

namespace launcher {
namespace {

// Where files answer INVALID_HANDLE_VALUE, a token answers null: mixing them up must not compile.
TEST(PlatformOwners, AreTypesOfTheirOwnAndATokenIsClosed) {
    static_assert(!std::is_same_v<FileHandle, TokenHandle>);
    EXPECT_EQ(TokenHandle().Get(), nullptr);
    const std::size_t before = test::OpenHandleCount();
    {
        const TokenHandle token(CreateEventW(nullptr, FALSE, FALSE, nullptr));
        EXPECT_EQ(test::OpenHandleCount(), before + 1);
    }
    EXPECT_EQ(test::OpenHandleCount(), before);
}

}  // namespace
}  // namespace launcher
