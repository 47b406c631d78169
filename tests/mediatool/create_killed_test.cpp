// mediatool create, killed at any moment: the set is as it was, or whole, or validate says that it
// is not; and the next run makes it whole.

#include <windows.h>

#include <cstdlib>
#include <random>

#include "fs/encoding.h"
#include "installer/installer_process.h"
#include "tests/e2e/support/launcher_run.h"
#include "tests/mediatool/command.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

constexpr unsigned kSeed = 20270101;

constexpr int kFiles = 15;  // in each volume

// CREATE_KILLS sets how often.
int Kills() {
    wchar_t text[16] = {};
    const DWORD length = GetEnvironmentVariableW(L"CREATE_KILLS", text, 16);
    return length > 0 && length < 16 ? std::max(1, _wtoi(text)) : 3;
}

class KilledCreate : public Command {
  protected:
    KilledCreate() {
        std::mt19937 random(kSeed);
        for (const std::string volume : {"one", "two"})
            for (int i = 0; i < kFiles; ++i)
                scratch.Write(volume + "/data/" + std::to_string(i) + ".bin",
                              std::string(random() % 400000, static_cast<char>('a' + i % 26)));
        scratch.Write("one/setup.exe", ProgramBytes(kX64));
        scratch.Write("one/inst/win_b64/code/bin/ZEPInsAppliGUI.exe", ProgramBytes(kX64));
    }

    std::vector<std::string> Arguments() const {
        return {"create",           "--force",           "--id",      "SET",
                "--layout",         "siblings",          "--volumes", "2",
                "--from",           scratch.Text("one"), "--from",    scratch.Text("two"),
                scratch.Text("out")};
    }

    // Kills a run so many milliseconds after its first change.
    void RunAndKill(DWORD milliseconds) const {
        std::vector<std::string> line = {ToUtf8(BuiltFile(MEDIATOOL_PROGRAM))};
        const std::vector<std::string> arguments = Arguments();
        line.insert(line.end(), arguments.begin(), arguments.end());
        std::wstring text = ToWide(QuoteArguments(line));
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        ProcessInformation process;
        ASSERT_TRUE(CreateProcessW(nullptr, text.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                                   nullptr, scratch.Dir().c_str(), &startup, &process));
        const std::wstring mark = ToWide(scratch.Text("out\\1\\mediatool-unfinished.txt"));
        while (GetFileAttributesW(mark.c_str()) == INVALID_FILE_ATTRIBUTES)
            if (WaitForSingleObject(process.hProcess, 0) == WAIT_OBJECT_0) return;
        if (WaitForSingleObject(process.hProcess, milliseconds) == WAIT_OBJECT_0) return;
        ++killed;
        TerminateProcess(process.hProcess, 9);
        WaitForSingleObject(process.hProcess, INFINITE);
    }

    Tree Out() const { return TreeBelow(scratch.Dir() / "out"); }

    // Is it an error, or no media at all?
    bool IsReported() const {
        const MediatoolRun run = Run({"validate", scratch.Text("out\\1"), "--json"});
        if (run.exitCode == 2) return true;
        return run.exitCode == 1 && run.output.find("set-unfinished") != std::string::npos;
    }

    void ExpectNothingLost(const Tree& before) {
        const ULONGLONG begin = GetTickCount64();
        ASSERT_EQ(Run(Arguments()).exitCode, 0u);
        const auto whole = static_cast<unsigned>(GetTickCount64() - begin);
        const Tree after = Out();
        std::mt19937 random(kSeed);
        int reported = 0;
        // A busy machine may let each run end before it is killed: then some more, each at once.
        const int most = Kills() + 20;
        for (int i = 0; i < Kills() || (reported == 0 && i < most); ++i) {
            RemoveAll(scratch.Dir() / "out");
            for (const auto& [name, content] : before)
                if (content != "/") scratch.Write("out/" + name, content);
            const DWORD moment = i == 0 || i >= Kills() ? 0 : random() % (whole + 1);
            RunAndKill(moment);
            const Tree now = Out();
            if (now != before && now != after) {
                EXPECT_TRUE(IsReported()) << "killed after " << moment << " ms of " << whole;
                ++reported;
            }
            EXPECT_EQ(Run(Arguments()).exitCode, 0u);
            EXPECT_EQ(Out(), after) << "killed after " << moment << " ms";
        }
        RecordProperty("killed", killed);
        RecordProperty("reported", reported);
        EXPECT_GT(reported, 0) << "no kill came while it was writing";
    }

    mutable int killed = 0;
};

TEST_F(KilledCreate, OfANewSet) {
    ExpectNothingLost({});
}

TEST_F(KilledCreate, OverAnOlderSet) {
    Tree before = {{"1/inst/volumes.txt", "2\r\n"},
                   {"1/1.txt", "MTBDIR=SET\r\n"},
                   {"2/2.txt", "MTBDIR=SET\r\n"},
                   {"1/setup.exe", "old"}};
    for (int i = 0; i < kFiles; ++i)
        before["2/data/" + std::to_string(i) + ".bin"] = "old";
    for (const auto& [name, content] : before)
        scratch.Write("out/" + name, content);
    ExpectNothingLost(Out());
}

}  // namespace
}  // namespace launcher::test
