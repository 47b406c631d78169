#pragma once

namespace launcher {

// Both: false when the system's web library (wininet.dll) lacks web sockets, which came with
// Internet Explorer 10. A system without the library passes. None of the library's code runs. The
// second asks the machine; the first is what the launcher goes by.
// https://learn.microsoft.com/windows/win32/api/libloaderapi/nf-libloaderapi-loadlibraryexw
bool HasRequiredWebLibrary();
bool DetectRequiredWebLibrary();

}  // namespace launcher
