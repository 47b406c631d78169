#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace launcher::mediatool {

// A running process as the system lists it.
struct ProcessEntry {
    DWORD id = 0;
    DWORD parent = 0;     // which may have ended, and its number may be another's by now
    std::string program;  // file name, UTF-8
};

std::vector<ProcessEntry> RunningProcesses();

// The command line that a process was started with, UTF-8; empty when the system does not tell, as
// before Windows 8.1.
std::string StartedWith(HANDLE process);

// Whether `child` was started at the same time as `parent` or later: the test of what a list of
// processes says.
bool CanBeChildOf(HANDLE child, HANDLE parent);

bool IsRunning(HANDLE process);

}  // namespace launcher::mediatool
