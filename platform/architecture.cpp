#include "platform/architecture.h"

#include <windows.h>

#include "platform/libraries.h"

namespace launcher {

bool Detect64BitWindows() {
    static const auto getNativeSystemInfo =
        ModuleFunction<decltype(&GetNativeSystemInfo)>(L"kernel32", "GetNativeSystemInfo");
    static const auto isWow64Process =
        ModuleFunction<decltype(&IsWow64Process)>(L"kernel32", "IsWow64Process");

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
