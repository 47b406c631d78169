#pragma once

#include <windows.h>

namespace launcher {

// A function of kernel32 that the oldest supported systems lack; null there.
template <class Function>
Function Kernel32Function(const char* name) {
    // Through void*: a direct cast between function types is what compilers warn about.
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), name)));
}

}  // namespace launcher
