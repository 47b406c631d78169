// A report of the launcher's crash, which Windows shows from a process of its own: WerFault.exe,
// which is told the number of the process that it is about. Here another program has its name.

// windows.h first: this header needs it.
#include <windows.h>

#include <winternl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <optional>
#include <string_view>

#include "fs/encoding.h"
#include "mediatool/base/interruption.h"
#include "mediatool/run/box_watcher.h"
#include "mediatool/run/family.h"
#include "mediatool/run/processes.h"
#include "mediatool/run/run.h"
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
std::function<void(DWORD processId)> toldOf;

LONG NTAPI TellNothing(HANDLE, int, void*, ULONG, ULONG*) {
    return static_cast<LONG>(0xC0000003);  // STATUS_INVALID_INFO_CLASS
}

LONG NTAPI TellCommandLine(HANDLE process, int kind, void* information, ULONG, ULONG*) {
    if (kind != 60) return TellNothing(process, kind, information, 0, nullptr);
    const DWORD id = GetProcessId(process);
    if (toldOf) toldOf(id);
    static std::wstring memory;
    memory = startedWith[id] + L" what comes behind it";
    const auto bytes = static_cast<USHORT>(startedWith[id].size() * sizeof(wchar_t));
    *static_cast<UNICODE_STRING*>(information) = {bytes, bytes, memory.data()};
    return 0;
}

// Has this asked; without it, the system has no such function.
auto Asking(decltype(&TellCommandLine) query) {
    return test::Hook<decltype(&GetProcAddress)>(
        "GetProcAddress", [query](auto real, HMODULE library, LPCSTR name) {
            if (library != GetModuleHandleW(L"ntdll.dll") ||
                std::string_view(name) != "NtQueryInformationProcess")
                return real(library, name);
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(query));
        });
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

    Member Start(const std::string& arguments, const std::string& program = "WerFault.exe") {
        SetEnvironmentVariableW(
            L"STANDIN_ACTS", ToWide("box The program has stopped|wait " + event_.Name()).c_str());
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION process{};
        std::wstring line = ToWide(test::QuoteArguments({folder_.Text(program)}) + " " + arguments);
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
    const auto system = Asking(&TellCommandLine);
    stdfs::copy_file(folder_.Dir() / "WerFault.exe", folder_.Dir() / "Other.exe");
    const std::string number = std::to_string(GetCurrentProcessId());
    const Member others[] = {Start(About(GetCurrentProcessId() + 1)),
                             Start("-u -p " + number + "0"), Start("--p " + number),
                             Start(About(GetCurrentProcessId()), "Other.exe")};
    const Member own = Start(About(GetCurrentProcessId()));
    const Member atTheEnd = Start("-u -p " + number);
    EXPECT_EQ(StartedWith(own.process.Get()),
              "\"" + folder_.Text("WerFault.exe") + "\" " + About(GetCurrentProcessId()));
    EXPECT_THAT(OwnFamily().CrashReporters(), testing::UnorderedElementsAre(own.id, atTheEnd.id));
}

TEST_F(CrashReport, IsKnownToNobodyWhereTheSystemTellsNoCommandLine) {
    const Member own = Start(About(GetCurrentProcessId()));
    for (const auto query : {&TellNothing, static_cast<decltype(&TellNothing)>(nullptr)}) {
        const auto system = Asking(query);
        EXPECT_EQ(StartedWith(own.process.Get()), "");
        EXPECT_TRUE(OwnFamily().CrashReporters().empty());
    }
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

// Time passes here between two looks at the boxes: just not half a second, and the rest of it.
struct ReportWitness : Witness {
    void Started(const RunRequest&) override {}
    void Saw(const std::vector<SeenLine>&) override {}
    void Saw(const AnsweredBox& box) override { boxes.push_back(box.box.text); }
    void TimePassed(std::uint64_t milliseconds) override {
        passed = milliseconds;
        now += milliseconds % 500 == 0 ? 499 : 1;
        tick();
    }
    bool TakesMore() override { return true; }

    ULONGLONG now = 1'000'000;
    std::uint64_t passed = 0;
    std::vector<std::string> boxes;
    std::function<void()> tick;
};

TEST_F(CrashReport, IsLookedForEveryHalfSecondOfARun) {
    stdfs::copy_file(folder_.Dir() / "WerFault.exe", folder_.Dir() / "setup.exe");
    const auto system = Asking(&TellCommandLine);
    ReportWitness witness;
    DWORD launcher = 0;
    std::optional<Member> reporter;
    std::vector<std::uint64_t> looks;
    toldOf = [&](DWORD id) {
        if (reporter && id == reporter->id) looks.push_back(witness.now - 1'000'000);
    };
    RunRequest request;
    request.launcher = folder_.Text("setup.exe");
    witness.tick = [&] {
        if (!reporter) reporter = Start(About(launcher));
        if (!witness.boxes.empty() && !request.timeLimit) request.timeLimit = witness.passed + 1000;
    };
    SetEnvironmentVariableW(L"STANDIN_ACTS", ToWide("wait " + event_.Name()).c_str());
    WatchedRun run;
    {
        const test::Hook<decltype(&GetTickCount64)> clock("GetTickCount64",
                                                          [&](auto) { return witness.now; });
        const test::Hook<decltype(&CreateProcessW)> start(
            "CreateProcessW", [&launcher](auto real, auto program, auto line, auto process,
                                          auto thread, BOOL inherits, DWORD flags, auto environment,
                                          auto folder, auto startup, PROCESS_INFORMATION* created) {
                BOOL isStarted = FALSE;
                do
                    isStarted = real(program, line, process, thread, inherits, flags, environment,
                                     folder, startup, created);
                while (!isStarted && GetLastError() == ERROR_INTERNAL_ERROR);
                if (launcher == 0) launcher = created->dwProcessId;
                return isStarted;
            });
        const Interruption interruption;
        run = RunWatched(request, interruption, witness);
    }
    toldOf = nullptr;
    EXPECT_EQ(witness.boxes, std::vector<std::string>{"The program has stopped"});
    EXPECT_EQ(run.exitCode, 124u);
    EXPECT_EQ(run.milliseconds, *request.timeLimit);
    ASSERT_EQ(looks.size(), run.milliseconds / 500);
    for (std::size_t i = 0; i < looks.size(); ++i)
        EXPECT_EQ(looks[i], 500 * (i + 1));
}

}  // namespace
}  // namespace launcher::mediatool
