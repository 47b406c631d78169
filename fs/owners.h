#pragma once

// Owners of Windows resources: those that files and texts need here, others in the owners.h of the
// layer that uses them. Each releases what it holds exactly once; the functions that release
// (CloseHandle and its kin) are called nowhere else in the program.

#include <windows.h>

#include <utility>

namespace launcher {

// A move-only owner. Traits name the value's type, the value that means "nothing owned", and how
// to release any other.
template <class Traits>
class Owner {
  public:
    using Value = typename Traits::Value;

    Owner() noexcept : value_(Traits::None()) {}
    explicit Owner(Value value) noexcept : value_(value) {}
    Owner(Owner&& other) noexcept : value_(std::exchange(other.value_, Traits::None())) {}
    Owner& operator=(Owner&& other) noexcept {
        if (this != &other) {
            Reset();
            value_ = std::exchange(other.value_, Traits::None());
        }
        return *this;
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() { Reset(); }

    explicit operator bool() const noexcept { return value_ != Traits::None(); }
    Value Get() const noexcept { return value_; }
    Value operator->() const noexcept { return value_; }

    // Releases what is held and returns where a Windows function may write a new value.
    Value* Put() noexcept {
        Reset();
        return &value_;
    }

    void Reset() noexcept {
        if (*this) Traits::Release(std::exchange(value_, Traits::None()));
    }

  private:
    Value value_;
};

struct FileTraits {
    using Value = HANDLE;
    static Value None() { return INVALID_HANDLE_VALUE; }
    static void Release(Value value) { CloseHandle(value); }
};

struct FindTraits {
    using Value = HANDLE;
    static Value None() { return INVALID_HANDLE_VALUE; }
    static void Release(Value value) { FindClose(value); }
};

template <class T>
struct LocalMemoryTraits {
    using Value = T*;
    static Value None() { return nullptr; }
    static void Release(Value value) { LocalFree(value); }
};

using FileHandle = Owner<FileTraits>;  // CreateFileW
using FindHandle = Owner<FindTraits>;  // FindFirstFileW

template <class T>
using LocalMemory = Owner<LocalMemoryTraits<T>>;  // CommandLineToArgvW, FormatMessageW

}  // namespace launcher
