#include "mediatool/run/processes.h"

// windows.h first: this header needs it.
#include <tlhelp32.h>

#include <cstddef>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/run/moment.h"
#include "platform/libraries.h"

namespace launcher::mediatool {
namespace {

Moment StartOf(HANDLE process) {
    FILETIME start{};
    FILETIME other{};
    GetProcessTimes(process, &start, &other, &other, &other);
    return MomentOf(start);
}

// What the query below writes: a text that points behind itself.
struct CommandLineInformation {
    USHORT bytes;
    USHORT room;
    wchar_t* text;
    wchar_t characters[32768];
};

}  // namespace

std::vector<ProcessEntry> RunningProcesses() {
    std::vector<ProcessEntry> processes;
    const FileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more;
         more = Process32NextW(snapshot.Get(), &entry))
        processes.push_back(
            {entry.th32ProcessID, entry.th32ParentProcessID, ToNarrow(entry.szExeFile)});
    return processes;
}

// https://learn.microsoft.com/windows/win32/api/winternl/nf-winternl-ntqueryinformationprocess
std::string StartedWith(HANDLE process) {
    constexpr int kCommandLine = 60;
    using Query = LONG(NTAPI*)(HANDLE, int, void*, ULONG, ULONG*);
    const auto query = ModuleFunction<Query>(L"ntdll.dll", "NtQueryInformationProcess");
    std::vector<CommandLineInformation> information(1);
    ULONG length = 0;
    if (query == nullptr || query(process, kCommandLine, information.data(),
                                  sizeof(CommandLineInformation), &length) < 0)
        return {};
    const CommandLineInformation& found = information.front();
    return ToNarrow(std::wstring(found.text, found.bytes / sizeof(wchar_t)).c_str());
}

bool CanBeChildOf(HANDLE child, HANDLE parent) {
    return StartOf(child) >= StartOf(parent);
}

bool IsRunning(HANDLE process) {
    return WaitForSingleObject(process, 0) == WAIT_TIMEOUT;
}

}  // namespace launcher::mediatool
