// Texts that a thread hands on.

#include "mediatool/run/outbox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

#include "mediatool/base/owners.h"
#include "tests/mediatool/run/support/gate.h"
#include "tests/support/hook.h"

namespace launcher::mediatool {
namespace {

using test::Gate;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

TEST(OutboxTest, HandsOnInOrder) {
    std::string taken;
    Outbox outbox;
    const Outbox::Take take = [&taken](const std::string& text) { taken += text; };
    for (int i = 0; i < 100; ++i)
        outbox.Add(take, std::to_string(i) + "\n");
    EXPECT_EQ(outbox.Finish(), 0u);
    EXPECT_THAT(taken, StartsWith("0\n1\n2\n"));
    EXPECT_THAT(taken, EndsWith("\n98\n99\n"));
    EXPECT_EQ(outbox.Waiting(), 0u);
}

TEST(OutboxTest, DoesNotWaitToBeTaken) {
    const Gate gate;
    bool passed = false;
    Outbox outbox;
    outbox.Add([&](const std::string&) { passed = gate.Pass(); }, "one\n");
    EXPECT_EQ(outbox.Waiting(), 4u);
    gate.Open();
    EXPECT_EQ(outbox.Finish(), 0u);
    EXPECT_TRUE(passed);
}

// Not only when the patience is over.
TEST(OutboxTest, IsFinishedAsSoonAsAllIsTaken) {
    const Gate gate;
    BOOL wasWoken = FALSE;
    const test::Hook<decltype(&SleepConditionVariableSRW)> wait(
        "SleepConditionVariableSRW",
        [&](auto real, auto* changed, auto* lock, DWORD time, ULONG flags) {
            if (time == INFINITE) return real(changed, lock, time, flags);
            gate.Open();
            return wasWoken = real(changed, lock, time, flags);
        });
    {
        Outbox outbox;
        outbox.Add([&gate](const std::string&) { gate.Pass(); }, "one\n");
        EXPECT_EQ(outbox.Finish(), 0u);
    }
    EXPECT_TRUE(wasWoken);
}

TEST(OutboxTest, GivesUpOnWhatIsNotTaken) {
    const auto gate = std::make_shared<Gate>();
    {
        Outbox outbox;
        outbox.Add([gate](const std::string&) { gate->Pass(); }, "one\ntwo\n");
        outbox.Add([gate](const std::string&) {}, "three\n");
        EXPECT_EQ(outbox.Finish(100), 3u);
    }
    gate->Open();
}

// Windows ends a program that gives back a lock which nobody holds.
TEST(OutboxTest, HoldsItsLockAndEndsItsThread) {
    KernelObject thread;
    std::atomic<int> notHeld = 0;
    const test::Hook<decltype(&CreateThread)> create("CreateThread", [&](auto real, auto... given) {
        const HANDLE created = real(given...);
        HANDLE own = nullptr;
        DuplicateHandle(GetCurrentProcess(), created, GetCurrentProcess(), &own, 0, FALSE,
                        DUPLICATE_SAME_ACCESS);
        thread = KernelObject(own);
        return created;
    });
    const test::Hook<decltype(&ReleaseSRWLockExclusive)> release(
        "ReleaseSRWLockExclusive", [&notHeld](auto real, SRWLOCK* lock) {
            if (TryAcquireSRWLockExclusive(lock)) ++notHeld;
            real(lock);
        });
    {
        Outbox outbox;
        outbox.Add([](const std::string&) {}, "one\n");
        EXPECT_EQ(outbox.Finish(), 0u);
    }
    EXPECT_EQ(WaitForSingleObject(thread.Get(), 30000), WAIT_OBJECT_0);
    EXPECT_EQ(notHeld, 0);
}

std::vector<std::size_t> PiecesOf(const std::string& text) {
    std::vector<std::size_t> sizes;
    Outbox outbox;
    outbox.Add([&sizes](const std::string& piece) { sizes.push_back(piece.size()); }, text);
    EXPECT_EQ(outbox.Finish(), 0u);
    return sizes;
}

TEST(OutboxTest, KeepsLinesWholeInPieces) {
    const std::string line = std::string(40'000, 'x') + "\n";
    EXPECT_THAT(PiecesOf(line + line + line), ElementsAre(40'001, 40'001, 40'001));
    EXPECT_THAT(PiecesOf(line + std::string(25'534, 'x') + "\nmore"), ElementsAre(65'536, 4));
    EXPECT_THAT(PiecesOf(line + std::string(25'535, 'x') + "\nmore"), ElementsAre(40'001, 25'540));
    EXPECT_THAT(PiecesOf(line + std::string(25'535, 'x')), ElementsAre(65'536));
}

TEST(OutboxTest, KeepsCharactersWholeInPiecesOfALine) {
    EXPECT_THAT(PiecesOf(std::string(65'535, 'x') + "\u00E9\n"), ElementsAre(65'537, 1));
    EXPECT_THAT(PiecesOf(std::string(65'535, 'x') + "\u00E9"), ElementsAre(65'537));
    EXPECT_THAT(PiecesOf(std::string(65'534, 'x') + "\u00E9\n"), ElementsAre(65'536, 1));
}

TEST(OutboxTest, LosesNothingWithoutAThread) {
    const test::Hook<decltype(&CreateThread)> hook(
        "CreateThread", test::FailsWith<HANDLE>(ERROR_NOT_ENOUGH_MEMORY, nullptr));
    std::string taken;
    Outbox outbox;
    outbox.Add([&taken](const std::string& text) { taken += text; }, "one\n");
    EXPECT_EQ(taken, "one\n");
}

}  // namespace
}  // namespace launcher::mediatool
