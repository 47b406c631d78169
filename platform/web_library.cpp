#include "platform/web_library.h"

#include <windows.h>

#include "platform/owners.h"

namespace launcher {

bool DetectRequiredWebLibrary() {
    const Library library(LoadLibraryExW(L"wininet.dll", nullptr, DONT_RESOLVE_DLL_REFERENCES));
    return !library || GetProcAddress(library.Get(), "HttpWebSocketReceive") != nullptr;
}

}  // namespace launcher
