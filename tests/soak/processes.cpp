#include "tests/soak/processes.h"

#include <windows.h>
// windows.h first: this header needs it.
#include <tlhelp32.h>

#include "fs/encoding.h"
#include "tests/support/temporary_folder.h"

namespace launcher::soak {
namespace {

// Empty for a process that has ended or is not this user's.
std::string ProgramOf(DWORD processId) {
    const HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId);
    if (process == nullptr) return {};
    std::wstring path(32768, L'\0');
    auto length = static_cast<DWORD>(path.size());
    DWORD exitCode = 0;
    const bool runs = GetExitCodeProcess(process, &exitCode) != 0 && exitCode == STILL_ACTIVE &&
                      QueryFullProcessImageNameW(process, 0, path.data(), &length) != 0;
    CloseHandle(process);
    return runs ? ToNarrow(path.substr(0, length).c_str()) : std::string();
}

}  // namespace

std::vector<std::string> RunningBelow(const std::filesystem::path& folder) {
    const std::string start = test::ToUtf8(folder) + "\\";
    std::vector<std::string> programs;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more;
         more = Process32NextW(snapshot, &entry))
        if (const std::string program = ProgramOf(entry.th32ProcessID); program.starts_with(start))
            programs.push_back(program);
    CloseHandle(snapshot);
    return programs;
}

}  // namespace launcher::soak
