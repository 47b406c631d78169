#pragma once

#include <windows.h>

#include <functional>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace launcher::test {

// Calls `visit` with each function that this program imports by its name, and with the place in its
// import table that holds the address. One function may have several such places.
void ForEachImport(const std::function<void(std::string_view name, void** slot)>& visit);

// Makes the program call `value` through that place from now on.
void WriteImport(void** slot, void* value);

// Replaces a Windows function for everything linked into this test program while it lives, by
// changing the program's own import table: the way to see how the code takes a call that fails
// only on other machines. The code under test stays as it is.
//
// Throws std::runtime_error when the program does not import the function, so that a test cannot
// pass because its patch went nowhere. A runtime that is linked statically is part of the program:
// its own file calls are caught too, so end the patch before a test reads files itself.
class ImportPatch {
  public:
    ImportPatch(const char* function, void* replacement);
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;
    ~ImportPatch();

    // The real function, for a replacement that calls on.
    void* Original() const { return original_; }

  private:
    void** slot_;
    void* original_;
};

// An ImportPatch whose stand-in is a lambda, which sees the test's own variables. It takes the real
// function before the call's arguments:
//
//   const Hook<decltype(&DeleteFileW)> hook("DeleteFileW", [&](auto real, LPCWSTR name) {
//       deleted.push_back(name);
//       return real(name);
//   });
//
// Two hooks of the same function type cannot live at the same time.
template <class Function>
class Hook;

template <class Result, class... Arguments>
class Hook<Result(WINAPI*)(Arguments...)> {
  public:
    using Function = Result(WINAPI*)(Arguments...);
    using Body = std::function<Result(Function, Arguments...)>;

    Hook(const char* name, Body body) : patch_(name, reinterpret_cast<void*>(&Call)) {
        if (body_) throw std::logic_error("a function of this type is hooked already");
        body_ = std::move(body);
        real_ = reinterpret_cast<Function>(patch_.Original());
    }
    Hook(const Hook&) = delete;
    Hook& operator=(const Hook&) = delete;
    ~Hook() { body_ = nullptr; }

  private:
    static Result WINAPI Call(Arguments... arguments) { return body_(real_, arguments...); }

    static inline Body body_;
    static inline Function real_ = nullptr;
    ImportPatch patch_;
};

// A body that does nothing but fail: answers `result` with the last error set to `error`.
template <class Result>
auto FailsWith(DWORD error, Result result) {
    return [error, result](auto&&...) {
        SetLastError(error);
        return result;
    };
}

}  // namespace launcher::test
