#pragma once

namespace launcher {

// From here on, this process looks for libraries that are named without a folder in the system's
// folder only: a library of the same name beside the program, on a disc or in a folder of
// downloads, is never loaded. Child processes are not affected. Windows 7 without its update
// KB2533623 lacks the function and keeps the ordinary search.
// https://learn.microsoft.com/windows/win32/api/libloaderapi/nf-libloaderapi-setdefaultdlldirectories
void RestrictDllSearch();

}  // namespace launcher
