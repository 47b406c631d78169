// Memory with checks, linked into every program of tools/check-undefined.sh in place of the
// compiler's own: each block is looked at when it is given back, and all of them now and then. Wine
// could look at all of them in every call (FLG_HEAP_VALIDATE_ALL): then the tests take seven times
// as long.

#include <windows.h>

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr unsigned kCallsBetweenChecksOfAll = 1024;

// `block`: null for all of them. What is wrong with it, Wine has said.
void Check(const void* block) {
    if (HeapValidate(GetProcessHeap(), 0, block) == FALSE) {
        std::abort();
    }
}

// What was written to after it was given back is seen here, too.
void CheckAllNowAndThen() {
    static LONG calls = 0;
    if (InterlockedIncrement(&calls) % kCallsBetweenChecksOfAll == 0) {
        Check(nullptr);
    }
}

// The last blocks, before the process ends.
struct AtTheEnd {
    ~AtTheEnd() { Check(nullptr); }
} at_the_end;

}  // namespace

void* operator new(std::size_t size) {
    CheckAllNowAndThen();
    if (void* const block = HeapAlloc(GetProcessHeap(), 0, size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    if (block != nullptr) {
        Check(block);
        HeapFree(GetProcessHeap(), 0, block);
    }
}

void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
