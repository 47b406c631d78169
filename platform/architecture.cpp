#include "platform/architecture.h"

#include <windows.h>

#include "platform/kernel32_function.h"

namespace launcher {

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
