#include "tests/mediatool/support/mediatool_run.h"

#include <windows.h>

#include <stdexcept>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "installer/installer_process.h"
#include "tests/e2e/support/environment_block.h"
#include "tests/e2e/support/launcher_run.h"
#include "tests/support/repeats.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

constexpr DWORD kPatience = 60000;  // milliseconds

FileHandle InheritableFile(const std::filesystem::path& path) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    return FileHandle(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  &attributes, CREATE_ALWAYS, 0, nullptr));
}

void Start(std::wstring commandLine, const std::filesystem::path& folder, std::wstring environment,
           STARTUPINFOW& startup, PROCESS_INFORMATION& process) {
    const auto create = [&] {
        return CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE,
                              CREATE_UNICODE_ENVIRONMENT, environment.data(), folder.c_str(),
                              &startup, &process);
    };
    for (Repeats repeats; !create();) {
        const DWORD error = GetLastError();
        if (!repeats.AreWorthIt(IsWine() && error == ERROR_INTERNAL_ERROR))
            throw std::runtime_error("cannot start mediatool: " + std::to_string(error));
    }
}

}  // namespace

MediatoolRun RunCommandLine(const std::string& commandLine, const std::filesystem::path& folder,
                            const std::map<std::string, std::string>& variables) {
    const TemporaryFolder streams;
    MediatoolRun run;
    {
        const FileHandle output = InheritableFile(streams.Dir() / "output");
        const FileHandle errors = InheritableFile(streams.Dir() / "errors");
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = output.Get();
        startup.hStdError = errors.Get();
        ProcessInformation process;
        Start(ToWide(commandLine), folder, EnvironmentBlock(variables), startup, process);
        if (WaitForSingleObject(process.hProcess, kPatience) != WAIT_OBJECT_0) {
            TerminateProcess(process.hProcess, 1);
            throw std::runtime_error("the program does not end: " + commandLine);
        }
        GetExitCodeProcess(process.hProcess, &run.exitCode);
    }
    run.output = ReadFile(streams.Dir() / "output");
    run.errors = ReadFile(streams.Dir() / "errors");
    return run;
}

MediatoolRun RunMediatool(const std::vector<std::string>& arguments,
                          const std::filesystem::path& folder,
                          const std::map<std::string, std::string>& variables) {
    std::vector<std::string> line = {ToUtf8(BuiltFile(MEDIATOOL_PROGRAM))};
    line.insert(line.end(), arguments.begin(), arguments.end());
    return RunCommandLine(QuoteArguments(line), folder, variables);
}

}  // namespace launcher::test
