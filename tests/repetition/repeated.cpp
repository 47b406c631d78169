#include "tests/repetition/repeated.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

#include "fs/environment.h"
#include "tests/support/handle_count.h"

namespace launcher::test {
namespace {

constexpr int kDefaultRepetitions = 50;
constexpr int kFewest = 20;
// A cache of the system's may still grow by a block or two; a leak grows by one each time.
constexpr std::ptrdiff_t kToleratedBlocks = 4;
// Newer Wines keep small blocks in groups and show each group as one block.
constexpr std::ptrdiff_t kToleratedBytes = 16384;

struct Held {
    std::size_t handles = 0;
    std::size_t blocks = 0;  // in all heaps of the process
    std::size_t bytes = 0;
};

void AddHeap(HANDLE heap, Held& held) {
    if (!HeapLock(heap)) return;
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heap, &entry)) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
        ++held.blocks;
        held.bytes += entry.cbData;
    }
    HeapUnlock(heap);
}

Held Count() {
    Held held;
    held.handles = OpenHandleCount();
    HANDLE heaps[100];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(100, heaps), 100);
    for (DWORD i = 0; i < count; ++i)
        AddHeap(heaps[i], held);
    return held;
}

int Repetitions(double share) {
    const std::string text = GetEnvVar("REPETITIONS");
    const int all = text.empty() ? kDefaultRepetitions : std::atoi(text.c_str());
    return std::max(kFewest, static_cast<int>(all * share));
}

std::ptrdiff_t Growth(std::size_t before, std::size_t after) {
    return static_cast<std::ptrdiff_t>(after) - static_cast<std::ptrdiff_t>(before);
}

}  // namespace

void Repeat(const std::function<void()>& operation, double share) {
    const int repetitions = Repetitions(share);
    for (int i = 0; i < kFewest; ++i)
        operation();
    Count();  // what it needs itself is there from now on
    const Held before = Count();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < repetitions; ++i)
        operation();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    const Held after = Count();

    const std::ptrdiff_t handles = Growth(before.handles, after.handles);
    const std::ptrdiff_t blocks = Growth(before.blocks, after.blocks);
    const std::ptrdiff_t bytes = Growth(before.bytes, after.bytes);
    std::printf("    %6d times, %8.3f ms each: handles %+td, blocks %+td, bytes %+td\n",
                repetitions, time.count() / repetitions, handles, blocks, bytes);
    EXPECT_GT(before.blocks, 100u) << "the heaps cannot be walked";
    EXPECT_LE(handles, 0) << "handles were left open";
    EXPECT_TRUE(blocks <= kToleratedBlocks && bytes <= kToleratedBytes)
        << "memory was left allocated";
}

}  // namespace launcher::test
