#include "fs/owners.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/handle_count.h"
#include "tests/support/hook.h"

namespace launcher {
namespace {

// A resource that is a number; -1 is none.
struct NumberTraits {
    using Value = int;
    static Value None() { return -1; }
    static void Release(Value value) { released.push_back(value); }
    static inline std::vector<int> released;
};
using Number = Owner<NumberTraits>;
using Released = std::vector<int>;

class OwnerTest : public testing::Test {
  protected:
    OwnerTest() { NumberTraits::released.clear(); }
    static const Released& AllReleased() { return NumberTraits::released; }
};

TEST_F(OwnerTest, HoldsNothingByDefault) {
    {
        const Number none;
        EXPECT_FALSE(none);
        EXPECT_EQ(none.Get(), -1);
    }
    EXPECT_EQ(AllReleased(), Released{});
}

TEST_F(OwnerTest, ReleasesOnceAtTheEnd) {
    {
        const Number owner(0);
        EXPECT_TRUE(owner);
        EXPECT_EQ(owner.Get(), 0);
        EXPECT_EQ(AllReleased(), Released{});
    }
    EXPECT_EQ(AllReleased(), Released{0});
}

TEST_F(OwnerTest, ResetReleasesAtOnceAndNotAgain) {
    {
        Number owner(1);
        owner.Reset();
        EXPECT_FALSE(owner);
        EXPECT_EQ(AllReleased(), Released{1});
        owner.Reset();
    }
    EXPECT_EQ(AllReleased(), Released{1});
}

TEST_F(OwnerTest, MovesWithoutReleasing) {
    {
        Number first(1);
        const Number second(std::move(first));
        EXPECT_FALSE(first);
        EXPECT_EQ(second.Get(), 1);
        EXPECT_EQ(AllReleased(), Released{});
    }
    EXPECT_EQ(AllReleased(), Released{1});
}

TEST_F(OwnerTest, AssignmentReleasesWhatItReplaces) {
    {
        Number first(1);
        Number second(2);
        second = std::move(first);
        EXPECT_FALSE(first);
        EXPECT_EQ(second.Get(), 1);
        EXPECT_EQ(AllReleased(), Released{2});
    }
    EXPECT_EQ(AllReleased(), (Released{2, 1}));
}

TEST_F(OwnerTest, SurvivesAMoveOntoItself) {
    Number owner(1);
    Number& same = owner;
    owner = std::move(same);
    EXPECT_EQ(owner.Get(), 1);
    EXPECT_EQ(AllReleased(), Released{});
}

TEST_F(OwnerTest, PutReleasesBeforeANewValueIsWritten) {
    {
        Number owner(1);
        int* const place = owner.Put();
        EXPECT_EQ(*place, -1);
        EXPECT_EQ(AllReleased(), Released{1});
        *place = 2;
        EXPECT_EQ(owner.Get(), 2);
    }
    EXPECT_EQ(AllReleased(), (Released{1, 2}));
}

TEST(Owners, OfFilesAndSearchesAreDifferentTypesThatOnlyMove) {
    static_assert(!std::is_same_v<FileHandle, FindHandle>);
    static_assert(!std::is_convertible_v<HANDLE, FileHandle>);
    static_assert(!std::is_copy_constructible_v<FileHandle>);
    static_assert(!std::is_copy_assignable_v<FileHandle>);
    EXPECT_EQ(FileHandle().Get(), INVALID_HANDLE_VALUE);
    EXPECT_EQ(FindHandle().Get(), INVALID_HANDLE_VALUE);
}

HANDLE NewHandle() {
    return CreateEventW(nullptr, FALSE, FALSE, nullptr);
}

TEST(Owners, OfAFileClosesIt) {
    const std::size_t before = test::OpenHandleCount();
    {
        const FileHandle file(NewHandle());
        EXPECT_EQ(test::OpenHandleCount(), before + 1);
    }
    EXPECT_EQ(test::OpenHandleCount(), before);
}

TEST(Owners, OfASearchClosesIt) {
    std::vector<HANDLE> closed;
    const test::Hook<decltype(&FindClose)> hook("FindClose", [&](auto real, HANDLE search) {
        closed.push_back(search);
        return real(search);
    });
    WIN32_FIND_DATAW data{};
    const HANDLE search = FindFirstFileW(L"*", &data);
    ASSERT_NE(search, INVALID_HANDLE_VALUE);
    { const FindHandle owner(search); }
    EXPECT_EQ(closed, std::vector<HANDLE>{search});
}

}  // namespace
}  // namespace launcher
