#pragma once

#include <cstdint>
#include <string>

namespace launcher::mediatool {

// What CreateProcessW would say to a command line in UTF-8, found out by looking at the files that
// it may mean: the system's error code, 0 when the process would start. Nothing is started. A
// program in the copy that is only pretended is judged by its source.
//
// Not foreseen: what is decided while a process starts, such as a policy, a virus scanner or a
// manifest that asks for elevation. The codes are those of Windows; Wine has 2 (not found) for a
// program in a missing folder too, where Windows has 3.
// https://learn.microsoft.com/windows/win32/api/processthreadsapi/nf-processthreadsapi-createprocessw
std::uint32_t StartError(const std::string& commandLine);

}  // namespace launcher::mediatool
