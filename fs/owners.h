#pragma once

// Owners of Windows resources. Each releases what it holds exactly once; the functions that
// release (CloseHandle and its kin) are called nowhere else in the program.

#include <windows.h>
// windows.h first: the COM headers need it.
#include <objbase.h>

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

    // Releases what is held; then the place for a Windows function to write a new value to.
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

struct TokenTraits {
    using Value = HANDLE;
    static Value None() { return nullptr; }
    static void Release(Value value) { CloseHandle(value); }
};

struct SidTraits {
    using Value = PSID;
    static Value None() { return nullptr; }
    static void Release(Value value) { FreeSid(value); }
};

struct LibraryTraits {
    using Value = HMODULE;
    static Value None() { return nullptr; }
    static void Release(Value value) { FreeLibrary(value); }
};

template <class T>
struct LocalMemoryTraits {
    using Value = T*;
    static Value None() { return nullptr; }
    static void Release(Value value) { LocalFree(value); }
};

template <class T>
struct ComMemoryTraits {
    using Value = T*;
    static Value None() { return nullptr; }
    static void Release(Value value) { CoTaskMemFree(value); }
};

template <class Interface>
struct ComTraits {
    using Value = Interface*;
    static Value None() { return nullptr; }
    static void Release(Value value) { value->Release(); }
};

using FileHandle = Owner<FileTraits>;    // CreateFileW
using FindHandle = Owner<FindTraits>;    // FindFirstFileW
using TokenHandle = Owner<TokenTraits>;  // OpenProcessToken
using Sid = Owner<SidTraits>;            // AllocateAndInitializeSid
using Library = Owner<LibraryTraits>;    // LoadLibraryExW

template <class T>
using LocalMemory = Owner<LocalMemoryTraits<T>>;  // CommandLineToArgvW, FormatMessageW
template <class T>
using ComMemory = Owner<ComMemoryTraits<T>>;  // what COM methods allocate for the caller
template <class Interface>
using ComPtr = Owner<ComTraits<Interface>>;  // one counted reference

// Both handles of a child process, where CreateProcessW writes them.
struct ProcessInformation : PROCESS_INFORMATION {
    ProcessInformation() noexcept
        : PROCESS_INFORMATION{INVALID_HANDLE_VALUE, INVALID_HANDLE_VALUE, 0, 0} {}
    ProcessInformation(const ProcessInformation&) = delete;
    ProcessInformation& operator=(const ProcessInformation&) = delete;
    ~ProcessInformation() {
        if (hProcess != INVALID_HANDLE_VALUE) CloseHandle(hProcess);
        if (hThread != INVALID_HANDLE_VALUE) CloseHandle(hThread);
    }
};

// COM for this thread while it lives: a single-threaded apartment without OLE1 DDE.
class ComApartment {
  public:
    ComApartment() noexcept
        : initialised_(SUCCEEDED(
              CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {}
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    ~ComApartment() {
        if (initialised_) CoUninitialize();
    }

  private:
    bool initialised_;
};

}  // namespace launcher
