#include "platform/architecture.h"

#include <windows.h>

namespace launcher {
namespace {

// A function that the oldest systems lack; null there.
template <class Function>
Function Kernel32Function(const char* name) {
    // Through void*: a direct cast between function types is what compilers warn about.
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), name)));
}

}  // namespace

bool Is64BitWindows() {
    static const auto getNativeSystemInfo =
        Kernel32Function<decltype(&GetNativeSystemInfo)>("GetNativeSystemInfo");
    static const auto isWow64Process =
        Kernel32Function<decltype(&IsWow64Process)>("IsWow64Process");

    BOOL wow64 = FALSE;
    if (isWow64Process != nullptr) isWow64Process(GetCurrentProcess(), &wow64);
    SYSTEM_INFO information{};
    if (wow64 && getNativeSystemInfo != nullptr)
        getNativeSystemInfo(&information);
    else
        GetSystemInfo(&information);
    return information.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64;
}

}  // namespace launcher
