// What is foreseen of a start: which file a command line means, and what Windows makes of that.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/owners.h"
#include "mediatool/base/files.h"
#include "mediatool/dry_run/rehearsal/process_start.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"
#include "tests/e2e/support/media.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/temporary_folder.h"

namespace launcher::mediatool {
namespace {

using test::CopyStandIn;
using test::FromUtf8;
using test::IsolatedTest;
using test::TemporaryFolder;

// In a folder of its own as the current one; the launcher's is another.
class ProcessStartTest : public IsolatedTest {
  protected:
    ProcessStartTest() {
        GetCurrentDirectoryW(MAX_PATH, before_);
        SetCurrentDirectoryW(here_.Dir().c_str());
        rehearsal_.machine.launcherPath = media_.Text("setup.exe");
        SetEnvVar("PATH", "");
    }
    ~ProcessStartTest() override { SetCurrentDirectoryW(before_); }

    void Program(const TemporaryFolder& folder, const std::string& name) const {
        CopyStandIn(FromUtf8(folder.Text(name)));
    }

    // The line that a process gets, or the code that keeps it from being started.
    std::string Start(const std::string& line) {
        const RehearsalScope scope(rehearsal_);
        const ProcessStart start = ForeseeStart(line);
        return start.error == ERROR_SUCCESS ? start.commandLine : std::to_string(start.error);
    }

    TemporaryFolder here_;
    TemporaryFolder media_;
    Rehearsal rehearsal_;
    wchar_t before_[MAX_PATH] = {};
};

TEST_F(ProcessStartTest, TakesTheShortestBeginningThatIsAProgram) {
    Program(here_, "a.exe");
    Program(here_, "b c.exe");
    Program(here_, "b c d.exe");
    for (const std::string line : {"a", "a.exe -x", "a\t-x", "a.exe", "\"a\"", "\"a.exe\" \"x\"",
                                   "\"b c\" d", "\"a\"x", "\"a"})
        EXPECT_EQ(Start(line), line);
    EXPECT_EQ(Start("b c"), "\"b c\"");
    EXPECT_EQ(Start("b c d e"), "\"b c\" d e");
    EXPECT_EQ(Start("b c\td"), "\"b c\"\td");
    EXPECT_EQ(Start("b"), "2");
    EXPECT_EQ(Start("\"b c d e\""), "2");
    EXPECT_EQ(Start(" a"), "2");
    Program(here_, " a.exe");
    EXPECT_EQ(Start(" a"), " a");
}

TEST_F(ProcessStartTest, LooksInTheFoldersOfTheSearchAlone) {
    const TemporaryFolder first;
    const TemporaryFolder second;
    Program(media_, "beside.exe");
    Program(here_, "here.exe");
    Program(first, "first.exe");
    Program(second, "second.exe");
    EXPECT_EQ(Start("beside"), "beside");
    EXPECT_EQ(Start("here"), "here");
    EXPECT_EQ(Start("cmd"), "cmd");
    for (const std::string name : {"first", "second"})
        EXPECT_EQ(Start(name), "2");
    for (const std::string& path :
         {first.Text() + ";" + second.Text(), ";;" + first.Text() + ";;" + second.Text() + ";"}) {
        SetEnvVar("PATH", path);
        for (const std::string name : {"first", "second", "first.exe", "second.exe -x"})
            EXPECT_EQ(Start(name), name) << path;
    }
    // Relative to the current folder alone.
    for (const std::string name : {".\\here", "./here.exe"})
        EXPECT_EQ(Start(name), name);
    for (const std::string name : {".\\beside", "./first.exe", "..\\beside.exe", "../first"})
        EXPECT_EQ(Start(name), "2");
    here_.MakeDir("sub");
    SetCurrentDirectoryW(FromUtf8(here_.Text("sub")).c_str());
    for (const std::string name : {"..\\here", "../here.exe"})
        EXPECT_EQ(Start(name), name);
    for (const char* name : {"sub/below.exe", ".x/below.exe", "x/below.exe", "xy.exe"})
        Program(media_, name);
    for (const std::string name : {"sub\\below", "sub/below", ".x\\below.exe", "x\\below", "xy"})
        EXPECT_EQ(Start(name), name);
}

// Which lies beside mediatool here, not beside the launcher.
TEST_F(ProcessStartTest, DoesNotLookBesideMediatool) {
    wchar_t own[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    const std::string name = FileName(Path(ToNarrow(own)));
    for (const char* path : {"", ";", "C:\\;", ";;C:\\"}) {
        SetEnvVar("PATH", path);
        EXPECT_EQ(Start(name), "2") << path;
    }
}

TEST_F(ProcessStartTest, LooksInTheFoldersOfWindows) {
    const TemporaryFolder windows;
    Program(windows, "old.exe");
    Program(windows, "system/older.exe");
    const test::Hook<decltype(&GetWindowsDirectoryW)> folder(
        "GetWindowsDirectoryW", [&windows](auto, LPWSTR text, UINT size) {
            const std::wstring name = windows.Dir().wstring();
            EXPECT_LT(name.size(), size);
            name.copy(text, name.size());
            return static_cast<UINT>(name.size());
        });
    for (const std::string name : {"old", "older", "cmd"})
        EXPECT_EQ(Start(name), name);
}

TEST_F(ProcessStartTest, EndsTheSearchAtAFolder) {
    const TemporaryFolder path;
    Program(path, "tool.exe");
    SetEnvVar("PATH", path.Text());
    EXPECT_EQ(Start("tool.exe"), "tool.exe");
    here_.MakeDir("tool.exe");
    EXPECT_EQ(Start("tool.exe"), "2");
}

TEST_F(ProcessStartTest, OfAFullPathTellsWhyNot) {
    Program(here_, "a.exe");
    here_.MakeDir("folder");
    const std::string full = here_.Text("a");
    EXPECT_EQ(Start("\"" + full + "\""), "\"" + full + "\"");
    EXPECT_EQ(Start(full + ".exe -x"), full + ".exe -x");
    const std::string rooted = full.substr(2);
    EXPECT_EQ(Start("\"" + rooted + "\""), "\"" + rooted + "\"");
    EXPECT_EQ(Start(here_.Text("none")), "2");
    EXPECT_FALSE(std::filesystem::exists(here_.Dir() / "none"));
    EXPECT_EQ(Start(here_.Text("none\\none")), "3");
    EXPECT_EQ(Start(here_.Text("folder")), "5");
    EXPECT_EQ(Start(here_.Write("text.exe", "text")), "193");
    // The first reason, not that of the whole line.
    EXPECT_EQ(Start(here_.Text("folder x\\none")), "5");
    EXPECT_EQ(Start(here_.Text("none x")), "2");
    // It has come to be there since it was looked for.
    const test::Hook<decltype(&SearchPathW)> search(
        "SearchPathW", test::FailsWith(ERROR_FILE_NOT_FOUND, DWORD{0}));
    EXPECT_EQ(Start(full + ".exe"), "2");
}

TEST_F(ProcessStartTest, TellsOfWhatIsTooLong) {
    Program(here_, "a b.exe");
    // With the quotes that it gets.
    EXPECT_EQ(Start("\"a b\" " + std::string(kLongestCommandLine - 6, 'x')).size(),
              kLongestCommandLine);
    EXPECT_EQ(Start("\"a b\" " + std::string(kLongestCommandLine - 5, 'x')), "206");
    EXPECT_EQ(Start("a b " + std::string(kLongestCommandLine - 6, 'x')).size(),
              kLongestCommandLine);
    EXPECT_EQ(Start("a b " + std::string(kLongestCommandLine - 5, 'x')), "206");
    here_.Write("text.exe", "text");
    EXPECT_EQ(Start("text.exe " + std::string(kLongestCommandLine, 'x')), "193");
    const std::string base = here_.Text() + "\\";
    rehearsal_.machine.longPaths = false;
    EXPECT_EQ(Start("\"" + base + std::string(259 - base.size(), 'x') + "\""), "2");
    EXPECT_FALSE(rehearsal_.journal.metLongPaths);
    EXPECT_EQ(Start("\"" + base + std::string(260 - base.size(), 'x') + "\""), "3");
    EXPECT_TRUE(rehearsal_.journal.metLongPaths);
}

// Of the pretended one only what it is copied from is there.
class StartInCopyTest : public ProcessStartTest {
  protected:
    StartInCopyTest() {
        Program(here_, "source.exe");
        here_.Write("source.txt", "text");
        Add("inst.exe", "source.exe");
        Add("noext", "source.exe");
        Add("text.exe", "source.txt");
        for (const char* folder : {"", "\\folder"})
            rehearsal_.journal.copy.folders.insert(CopyKey(Path(copy_ + folder)));
    }
    void Add(const std::string& name, const std::string& source) {
        const std::string path = copy_ + "\\" + name;
        rehearsal_.journal.copy.contents[CopyKey(Path(path))] = {path, here_.Text(source), 1};
    }

    const std::string copy_ = here_.Text(kPretendedUuid);
};

TEST_F(StartInCopyTest, IsJudgedByTheSource) {
    const auto quoted = [this](const std::string& name) { return "\"" + copy_ + name + "\""; };
    EXPECT_EQ(Start(quoted("\\inst.exe")), quoted("\\inst.exe"));
    EXPECT_EQ(Start(quoted("\\INST.EXE")), quoted("\\INST.EXE"));
    EXPECT_EQ(Start(quoted("\\text.exe")), "193");
    EXPECT_EQ(Start(quoted("\\folder")), "5");
    EXPECT_EQ(Start(quoted("\\none.exe")), "2");
    EXPECT_EQ(Start(quoted("\\none\\none.exe")), "3");
}

TEST_F(StartInCopyTest, IsFoundByTheSearch) {
    EXPECT_EQ(Start("inst"), "2");
    SetEnvVar("PATH", copy_ + ";" + copy_ + "\\folder");
    EXPECT_EQ(Start("inst"), "inst");
    EXPECT_EQ(Start("inst.exe -x"), "inst.exe -x");
    EXPECT_EQ(Start("text"), "193");
    EXPECT_EQ(Start("noext"), "2");
    EXPECT_EQ(Start("folder"), "2");
    // Relative to the current folder alone.
    for (const std::string name : {".\\inst", "./inst", "..\\inst", "../inst"})
        EXPECT_EQ(Start(name), "2");
    Program(media_, "last.exe");
    Program(here_, "after/last2.exe");
    SetEnvVar("PATH", copy_ + ";" + here_.Text("after"));
    EXPECT_EQ(Start("last2"), "last2");
}

}  // namespace
}  // namespace launcher::mediatool
