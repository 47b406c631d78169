#include "platform/libraries.h"

namespace launcher {

void RestrictDllSearch() {
    const auto setDefaultDllDirectories = ModuleFunction<decltype(&SetDefaultDllDirectories)>(
        L"kernel32", "SetDefaultDllDirectories");
    if (setDefaultDllDirectories != nullptr) setDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
}

}  // namespace launcher
