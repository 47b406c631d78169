#include "tests/installer/delete_watch.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace launcher::test {
namespace {

const void* watched = nullptr;
bool deleted = false;

void Delete(void* memory) noexcept {
    if (memory != nullptr && memory == watched) deleted = true;
    std::free(memory);
}

}  // namespace

DeleteWatch::DeleteWatch(const void* object) {
    watched = object;
    deleted = false;
}

DeleteWatch::~DeleteWatch() {
    watched = nullptr;
}

bool DeleteWatch::Deleted() const {
    return deleted;
}

}  // namespace launcher::test

void* operator new(std::size_t size) {
    if (void* const memory = std::malloc(size)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    launcher::test::Delete(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    launcher::test::Delete(memory);
}
