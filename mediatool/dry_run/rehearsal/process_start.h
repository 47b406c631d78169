#pragma once

#include <cstdint>
#include <string>

namespace launcher::mediatool {

struct ProcessStart {
    std::uint32_t error;      // the system's code; 0 when the process would start
    std::string commandLine;  // as the process gets it
};

// What CreateProcessW would make of a command line in UTF-8, found out by looking at the files that
// it may mean. Nothing is started. A program in the copy that is only pretended is judged by its
// source. A program's path that holds blanks and stands without quotes gets them.
//
// Not foreseen: what is decided while a process starts, such as a policy, a virus scanner or a
// manifest that asks for elevation. The codes are those of Windows; Wine has 2 (not found) for a
// program in a missing folder too, where Windows has 3.
// https://learn.microsoft.com/windows/win32/api/processthreadsapi/nf-processthreadsapi-createprocessw
ProcessStart ForeseeStart(const std::string& commandLine);

}  // namespace launcher::mediatool
