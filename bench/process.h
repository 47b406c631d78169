#pragma once

#include <windows.h>

#include <string>

namespace launcher::bench {

// Starts a process without output, waits for it and returns its exit code. Throws
// std::runtime_error when it cannot be started.
DWORD RunProcess(std::wstring commandLine);

}  // namespace launcher::bench
