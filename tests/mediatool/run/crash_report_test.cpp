// A report of the launcher's crash, which Windows shows from a process of its own: WerFault.exe,
// which is told the number of the process that it is about. Here another program has its name.

// windows.h first: this header needs it.
#include <windows.h>

#include <winternl.h>

#include <map>
#include <string_view>

#include "fs/encoding.h"
#include "mediatool/run/box_watcher.h"
#include "mediatool/run/family.h"
#include "mediatool/run/processes.h"
#include "tests/e2e/support/launcher_run.h"
#include "tests/mediatool/run/support/watched_process.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/wine.h"

namespace launcher::mediatool {
namespace {

namespace stdfs = std::filesystem;

// What the system tells in the place of a Wine that does not: by process.
std::map<DWORD, std::wstring> startedWith;

LONG NTAPI TellCommandLine(HANDLE process, int, void* information, ULONG, ULONG*) {
    std::wstring& line = startedWith[GetProcessId(process)];
    const auto bytes = static_cast<USHORT>(line.size() * sizeof(wchar_t));
    *static_cast<UNICODE_STRING*>(information) = {bytes, bytes, line.data()};
    return 0;
}

class CrashReport : public test::IsolatedTest {
  protected:
    CrashReport() {
        stdfs::copy_file(test::BuiltFile(ACTING_INSTALLER), folder_.Dir() / "WerFault.exe");
    }
    ~CrashReport() override {
        event_.Set();
        EXPECT_TRUE(test::NoneRunsBelow(folder_.Dir()));
    }

    Member Start(const std::string& arguments) {
        SetEnvironmentVariableW(
            L"STANDIN_ACTS", ToWide("box The program has stopped|wait " + event_.Name()).c_str());
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION process{};
        std::wstring line =
            ToWide(test::QuoteArguments({folder_.Text("WerFault.exe")}) + " " + arguments);
        const std::wstring whole = line;
        while (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                               &startup, &process))
            if (GetLastError() != ERROR_INTERNAL_ERROR) throw std::runtime_error("not started");
        const KernelObject thread(process.hThread);
        startedWith[process.dwProcessId] = whole;
        return {process.dwProcessId, KernelObject(process.hProcess)};
    }

    // This process, as a launcher.
    static Family OwnFamily() {
        const DWORD id = GetCurrentProcessId();
        return Family({id, KernelObject(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE,
                                                    FALSE, id))});
    }

    static std::string About(DWORD processId) {
        return "-u -p " + std::to_string(processId) + " -s 1234";
    }

    test::TemporaryFolder folder_;
    test::NamedEvent event_;
};

TEST_F(CrashReport, IsKnownByTheProcessThatItIsAbout) {
    const Member other = Start(About(GetCurrentProcessId() + 1));
    const Member own = Start(About(GetCurrentProcessId()));
    if (StartedWith(own.process.Get()).empty())
        GTEST_SKIP() << "needs a Windows that tells the command lines of others";
    EXPECT_EQ(OwnFamily().CrashReporters(), std::vector<DWORD>{own.id});
}

TEST_F(CrashReport, IsKnownByTheCommandLineThatTheSystemTells) {
    const test::Hook<decltype(&GetProcAddress)> functions(
        "GetProcAddress", [](auto real, HMODULE library, LPCSTR name) {
            if (std::string_view(name) != "NtQueryInformationProcess") return real(library, name);
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&TellCommandLine));
        });
    const Member other = Start(About(GetCurrentProcessId() + 1));
    const Member own = Start(About(GetCurrentProcessId()));
    EXPECT_EQ(StartedWith(own.process.Get()),
              "\"" + folder_.Text("WerFault.exe") + "\" " + About(GetCurrentProcessId()));
    EXPECT_EQ(OwnFamily().CrashReporters(), std::vector<DWORD>{own.id});
}

TEST_F(CrashReport, IsNoInstaller) {
    const Member own = Start(About(GetCurrentProcessId()));
    Family family = OwnFamily();
    EXPECT_FALSE(family.LookForInstaller());
}

TEST_F(CrashReport, IsTakenDownAndClosed) {
    const Member reporter = Start(About(1));
    BoxWatcher watcher(GetCurrentProcessId());
    std::vector<SeenBox> boxes;
    for (int i = 0; i < 500 && boxes.empty(); ++i) {
        Sleep(20);
        boxes = watcher.Look({});
        EXPECT_TRUE(boxes.empty());
        boxes = watcher.Look({reporter.id});
    }
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_EQ(boxes[0].text, "The program has stopped");
    EXPECT_FALSE(boxes[0].dialog);
}

}  // namespace
}  // namespace launcher::mediatool
