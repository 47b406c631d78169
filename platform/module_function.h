#pragma once

#include <windows.h>

namespace launcher {

// A function of a library that is loaded already (`module`, "kernel32" for instance), looked up
// because an older system lacks it or the library is not always needed. Null when it is not there.
template <class Function>
Function ModuleFunction(const wchar_t* module, const char* name) {
    // Through void*: compilers warn about a direct cast between function types.
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(module), name)));
}

}  // namespace launcher
