#include "tests/launcher/copy/script_run.h"

#include <array>
#include <stdexcept>

#include "fs/encoding.h"

namespace launcher::test {

ScriptRun::ScriptRun(const std::string& script) {
    std::array<wchar_t, MAX_PATH> systemFolder{};
    GetSystemDirectoryW(systemFolder.data(), MAX_PATH);
    const std::wstring processor = std::wstring(systemFolder.data()) + L"\\cmd.exe";
    // With /s, only the outer quotes go.
    std::wstring commandLine = L"cmd.exe /d /s /c \"\"" + ToWide(script) + L"\"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    if (!CreateProcessW(processor.c_str(), commandLine.data(), nullptr, nullptr, FALSE,
                        CREATE_NO_WINDOW, nullptr, nullptr, &startup, &process_))
        throw std::runtime_error("cannot start the command processor");
}

ScriptRun::~ScriptRun() {
    if (EndsWithin(0)) return;
    TerminateProcess(process_.hProcess, 1);
    WaitForSingleObject(process_.hProcess, 5000);
}

bool ScriptRun::EndsWithin(DWORD milliseconds) const {
    return WaitForSingleObject(process_.hProcess, milliseconds) == WAIT_OBJECT_0;
}

}  // namespace launcher::test
