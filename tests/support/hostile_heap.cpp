// Allocations that change the thread's last error, as a heap is free to do. With this file in a
// test program, code that reads GetLastError() too late reports the wrong error.

#include <windows.h>

#include <cstddef>
#include <cstdlib>
#include <new>

void* operator new(std::size_t size) {
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    SetLastError(ERROR_STACK_OVERFLOW);
    return memory;
}

void operator delete(void* memory) noexcept {
    std::free(memory);
    SetLastError(ERROR_STACK_OVERFLOW);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}
