#include "tests/mediatool/run/support/watched_process.h"

// windows.h first: this header needs it.
#include <tlhelp32.h>

#include <stdexcept>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/e2e/support/environment_block.h"
#include "tests/e2e/support/launcher_run.h"
#include "tests/support/wine.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

namespace {

constexpr DWORD kPatience = 120000;  // milliseconds
constexpr DWORD kBetweenLooks = 20;  // milliseconds

FileHandle InheritableStream(const stdfs::path& path) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    return FileHandle(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  &attributes, CREATE_ALWAYS, 0, nullptr));
}

stdfs::path ProgramOf(DWORD processId) {
    const HANDLE process =
        OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE, FALSE, processId);
    if (process == nullptr) return {};
    std::wstring path(32768, L'\0');
    auto length = static_cast<DWORD>(path.size());
    const bool runs = WaitForSingleObject(process, 0) == WAIT_TIMEOUT &&
                      QueryFullProcessImageNameW(process, 0, path.data(), &length) != 0;
    CloseHandle(process);
    return runs ? path.substr(0, length) : std::wstring();
}

}  // namespace

MediatoolProcess::MediatoolProcess(const std::vector<std::string>& arguments,
                                   const stdfs::path& folder,
                                   const std::map<std::string, std::string>& variables,
                                   HANDLE output) {
    const FileHandle file = InheritableStream(streams_.Dir() / "output");
    const FileHandle errors = InheritableStream(streams_.Dir() / "errors");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output != nullptr ? output : file.Get();
    startup.hStdError = errors.Get();
    std::vector<std::string> line = {ToUtf8(BuiltFile(MEDIATOOL_PROGRAM))};
    line.insert(line.end(), arguments.begin(), arguments.end());
    std::wstring commandLine = ToWide(QuoteArguments(line));
    std::wstring environment = EnvironmentBlock(variables);
    while (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE,
                           CREATE_UNICODE_ENVIRONMENT | CREATE_NO_WINDOW, environment.data(),
                           folder.c_str(), &startup, &process_))
        if (GetLastError() != ERROR_INTERNAL_ERROR)  // 1359, which Wine now and then has
            throw std::runtime_error("cannot start mediatool");
}

bool MediatoolProcess::EndsWithin(DWORD milliseconds) const {
    return WaitForSingleObject(process_.hProcess, milliseconds) == WAIT_OBJECT_0;
}

bool MediatoolProcess::Interrupt() const {
    const std::vector<std::string> line = {ToUtf8(BuiltFile(INTERRUPTER_PROGRAM)),
                                           std::to_string(Id())};
    return RunCommandLine(QuoteArguments(line), streams_.Dir()).exitCode == 0;
}

void MediatoolProcess::Kill() const {
    TerminateProcess(process_.hProcess, 1);
    WaitForSingleObject(process_.hProcess, kPatience);
}

MediatoolRun MediatoolProcess::Finish() const {
    if (!EndsWithin(kPatience)) {
        Kill();
        throw std::runtime_error("mediatool does not end; it wrote: " + Output());
    }
    MediatoolRun run;
    GetExitCodeProcess(process_.hProcess, &run.exitCode);
    run.output = Output();
    run.errors = ReadFile(streams_.Dir() / "errors");
    return run;
}

std::string MediatoolProcess::Output() const {
    return ReadFile(streams_.Dir() / "output");
}

NamedEvent::NamedEvent() {
    static unsigned count = 0;
    name_ = "mediatool-run-test-" + std::to_string(GetCurrentProcessId()) + "-" +
            std::to_string(++count);
    event_ = CreateEventW(nullptr, TRUE, FALSE, ToWide(name_).c_str());
}

NamedEvent::~NamedEvent() {
    Set();
    CloseHandle(event_);
}

void NamedEvent::Set() const {
    SetEvent(event_);
}

void NamedEvent::Reset() const {
    ResetEvent(event_);
}

std::vector<DWORD> RunningBelow(const stdfs::path& folder) {
    const std::string start = ToUtf8(folder) + "\\";
    std::vector<DWORD> ids;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more;
         more = Process32NextW(snapshot, &entry))
        if (ToUtf8(ProgramOf(entry.th32ProcessID)).starts_with(start))
            ids.push_back(entry.th32ProcessID);
    CloseHandle(snapshot);
    return ids;
}

bool NoneRunsBelow(const stdfs::path& folder) {
    const ULONGLONG end = GetTickCount64() + kPatience;
    while (!RunningBelow(folder).empty()) {
        if (GetTickCount64() > end) return false;
        Sleep(kBetweenLooks);
    }
    return true;
}

}  // namespace launcher::test
