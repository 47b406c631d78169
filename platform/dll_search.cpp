#include "platform/dll_search.h"

#include <windows.h>

#include "platform/kernel32_function.h"

namespace launcher {

void RestrictDllSearch() {
    const auto setDefaultDllDirectories =
        Kernel32Function<decltype(&SetDefaultDllDirectories)>("SetDefaultDllDirectories");
    if (setDefaultDllDirectories != nullptr) setDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
}

}  // namespace launcher
