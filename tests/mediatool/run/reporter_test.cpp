// What a run tells on the screen and in its log, and what both make of it when nobody takes that.

#include "mediatool/run/reporter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/json.h"
#include "tests/mediatool/run/support/gate.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/temporary_folder.h"

namespace launcher::mediatool {
namespace {

using test::Gate;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr Moment kAt = 134'596'373'487'650'000;
const std::string& Clock() {
    static const std::string clock = ClockText(kAt);
    return clock;
}

// What a reporter writes, with the standard streams of this process in files.
class ReporterTest : public test::IsolatedTest {
  protected:
    ReporterTest() {
        for (Stream* const stream : {&output_, &errors_}) {
            stream->file =
                FileHandle(CreateFileW((folder_.Dir() / stream->name).c_str(), GENERIC_WRITE,
                                       FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr));
            stream->before = GetStdHandle(stream->number);
            SetStdHandle(stream->number, stream->file.Get());
        }
    }
    ~ReporterTest() override {
        for (const Stream* const stream : {&output_, &errors_})
            SetStdHandle(stream->number, stream->before);
    }

    std::string LogName() const { return folder_.Text("log.txt"); }
    std::string Text(const std::string& name) const { return test::ReadFile(folder_.Dir() / name); }
    static std::vector<SeenLine> Lines(std::size_t count, const std::string& text) {
        return std::vector<SeenLine>(count, {text, Origin::InstallerOutput, kAt});
    }
    // As wide as this.
    static auto Terminal(SHORT columns) {
        return test::Hook<decltype(&GetConsoleScreenBufferInfo)>(
            "GetConsoleScreenBufferInfo",
            [columns](auto, HANDLE, CONSOLE_SCREEN_BUFFER_INFO* info) -> BOOL {
                *info = {};
                info->srWindow = {10, 0, static_cast<SHORT>(10 + columns), 24};
                return TRUE;
            });
    }

    struct Stream {
        const wchar_t* name;
        DWORD number;
        FileHandle file;
        HANDLE before;
    };
    test::TemporaryFolder folder_;
    Stream output_{L"output", STD_OUTPUT_HANDLE, {}, nullptr};
    Stream errors_{L"errors", STD_ERROR_HANDLE, {}, nullptr};
};

TEST_F(ReporterTest, DoesNotWaitForAStalledLog) {
    const Gate gate;
    bool passed = true;
    bool stalls = false;
    {
        const test::Hook<decltype(&WriteFile)> hook(
            "WriteFile", [&](auto real, HANDLE file, auto... rest) {
                const bool isLog = file != output_.file.Get() && file != errors_.file.Get();
                if (isLog && stalls) passed = gate.Pass() && passed;
                return real(file, rest...);
            });
        Reporter reporter(LogName(), false);
        reporter.Begin("setup.exe");
        stalls = true;
        reporter.Saw(Lines(1, "one"));
        reporter.Saw(AnsweredBox{{"a box", false}, Now()});
        reporter.Saw(Lines(1, "two"));
        gate.Open();
        reporter.Conclude({}, {});
    }
    EXPECT_TRUE(passed);
    EXPECT_EQ(Text("errors"), "");
    const std::string log = Text("log.txt");
    for (const char* line : {"  installer  one\r\n", "  box        a box\r\n",
                             "  installer  two\r\n", "  Exit code\r\n"})
        EXPECT_THAT(log, HasSubstr(line));
}

TEST_F(ReporterTest, SaysWhatAStalledLogDidNotTake) {
    const Gate gate;
    const Gate passed;
    bool stalls = false;
    {
        const test::Hook<decltype(&WriteFile)> hook(
            "WriteFile", [&](auto real, HANDLE file, auto... rest) {
                const bool isStalled =
                    stalls && file != output_.file.Get() && file != errors_.file.Get();
                if (isStalled) gate.Pass();
                const BOOL written = real(file, rest...);
                if (isStalled) passed.Open();
                return written;
            });
        {
            Reporter reporter(LogName(), false);
            reporter.Begin("setup.exe");
            stalls = true;
            reporter.ConcludeWith("It is over.", 126);
        }
        // The thread that was given up, before the hook goes.
        gate.Open();
        passed.Pass();
        Sleep(100);
    }
    EXPECT_EQ(Text("errors"), "mediatool: It is over.\nmediatool: The log \"" + LogName() +
                                  "\" did not take everything: its disk does not answer; 1 line "
                                  "may be missing.\n");
}

TEST_F(ReporterTest, SaysOnceThatTheLogCanNoLongerBeWritten) {
    bool fails = false;
    const test::Hook<decltype(&WriteFile)> hook(
        "WriteFile", [&](auto real, HANDLE file, auto... rest) {
            const bool isLog = file != output_.file.Get() && file != errors_.file.Get();
            if (!isLog || !fails) return real(file, rest...);
            SetLastError(ERROR_DISK_FULL);
            return FALSE;
        });
    {
        Reporter reporter(LogName(), true);
        reporter.Begin("setup.exe");
        fails = true;
        for (int i = 0; i < 3; ++i)
            reporter.Saw(Lines(1, "one"));
        for (int i = 0; i < 500 && Text("errors").empty(); ++i, Sleep(20))
            reporter.TimePassed(1000);
        EXPECT_NE(Text("errors"), "");
        reporter.Conclude({}, {});
    }
    EXPECT_EQ(Text("errors"), "mediatool: The log \"" + LogName() +
                                  "\" can no longer be written: " + ErrorText(ERROR_DISK_FULL) +
                                  ".\n");
}

TEST_F(ReporterTest, RefusesALogThatIsNotWritten) {
    const test::Hook<decltype(&WriteFile)> hook("WriteFile",
                                                test::FailsWith<BOOL>(ERROR_DISK_FULL, FALSE));
    Reporter reporter(LogName(), false);
    EXPECT_THROW(reporter.Begin("setup.exe"), BadInput);
}

TEST_F(ReporterTest, TakesNoMoreThanTheLogCanWait) {
    const Gate gate;
    bool stalls = false;
    const test::Hook<decltype(&WriteFile)> hook("WriteFile",
                                                [&](auto real, HANDLE file, auto... rest) {
                                                    if (stalls) gate.Pass();
                                                    return real(file, rest...);
                                                });
    Reporter reporter(LogName(), true);
    reporter.Begin("setup.exe");
    stalls = true;
    EXPECT_TRUE(reporter.TakesMore());
    for (int i = 0; i < 100; ++i)
        reporter.Saw(Lines(1000, std::string(100, 'x')));
    EXPECT_FALSE(reporter.TakesMore());
    gate.Open();
    reporter.Conclude({}, {});
    EXPECT_TRUE(reporter.TakesMore());
}

TEST_F(ReporterTest, LetsEightMegabytesWaitForTheScreen) {
    const Gate gate;
    const test::Hook<decltype(&WriteFile)> hook("WriteFile", [&gate](auto real, auto... given) {
        gate.Pass();
        return real(given...);
    });
    Screen screen;
    screen.Out(std::string(8'388'608, 'x'));
    EXPECT_FALSE(screen.IsFull());
    screen.Out("x");
    EXPECT_TRUE(screen.IsFull());
    gate.Open();
}

// Nobody reads the pipe; then somebody does.
TEST_F(ReporterTest, LeavesOutWhatNobodyReads) {
    const Gate gate;
    const auto terminal = Terminal(79);
    const test::Hook<decltype(&WriteFile)> hook("WriteFile",
                                                [&](auto real, HANDLE file, auto... rest) {
                                                    if (file == output_.file.Get()) gate.Pass();
                                                    return real(file, rest...);
                                                });
    {
        Reporter reporter(LogName(), false);
        reporter.Begin("setup.exe");
        for (int i = 0; i < 200; ++i)
            reporter.Saw(Lines(1000, std::string(100, 'x')));
        reporter.TimePassed(1000);
        gate.Open();
        while (Text("output").size() < 1'000'000)
            Sleep(20);
        reporter.Saw(Lines(1, "seen again"));
        reporter.Conclude({}, {});
    }
    EXPECT_EQ(Text("errors"), "") << "no time either";
    const std::string output = Text("output");
    const auto shown = static_cast<std::size_t>(std::ranges::count(output, 'x')) / 100;
    EXPECT_LT(shown, 100'000u);
    EXPECT_THAT(output,
                HasSubstr("  mediatool  " + std::to_string(200'000 - shown) +
                          " lines left out here: nobody read them. The log has them all.\n" +
                          Clock() + "  installer  seen again\nExit code\n"));
    EXPECT_EQ(std::ranges::count(Text("log.txt"), 'x') / 100, 200'000);
}

TEST_F(ReporterTest, SaysHowManyLinesTheJsonLacks) {
    WatchedRun run;
    run.linesLeftOut = 7;
    run.bytesLeftOut = 12;
    Reporter(LogName(), true).Conclude(run, {});
    EXPECT_EQ(Text("errors"),
              "mediatool: The JSON holds 32 MB of lines; the last 7 are left out of it. The log "
              "has them all.\n"
              "mediatool: The last 12 bytes of output were not taken down: there was no time for "
              "them.\n");
    EXPECT_EQ(Json::parse(Text("output"))["linesLeftOut"], 7);
    EXPECT_EQ(Json::parse(Text("output"))["bytesLeftOut"], 12);
}

TEST_F(ReporterTest, ShowsControlCharactersInsteadOfSendingThem) {
    {
        Reporter reporter(LogName(), false);
        reporter.Begin("setup.exe \"\x1B[2J\"");
        reporter.Saw(Lines(1, "a\tb\x1B[2Jc\x7F"));
        reporter.Saw(AnsweredBox{{"one\r\ntwo\x07", false}, Now()});
        reporter.Say("three\nfour");
        reporter.Conclude({}, {});
    }
    const std::string output = Text("output");
    EXPECT_THAT(output, HasSubstr("  installer  a\tb\\x1B[2Jc\\x7F\n"));
    EXPECT_THAT(output, HasSubstr("  box        one\n" + std::string(21, ' ') + "two\\x07\n"));
    EXPECT_EQ(Text("errors"), "mediatool: three\\x0Afour\n");
    EXPECT_THAT(Text("log.txt"), HasSubstr("setup.exe \"\\x1B[2J\"\r\n"));
    EXPECT_THAT(Text("log.txt"), HasSubstr("a\tb\\x1B[2Jc\\x7F\r\n"));
}

TEST_F(ReporterTest, ShowsWhatItSawInColumns) {
    const std::string& clock = Clock();
    {
        Reporter reporter(LogName(), false);
        reporter.Begin("setup.exe -wait");
        reporter.Started({});
        reporter.Saw({{" INFO: one", Origin::LauncherOutput, kAt},
                      {"ERROR: two", Origin::LauncherErrors, kAt},
                      {"three", Origin::InstallerOutput, kAt},
                      {"four", Origin::InstallerErrors, kAt}});
        reporter.Saw(AnsweredBox{{"A box\r\nof two lines\r\n", false}, kAt});
        reporter.Saw(AnsweredBox{{"Where is it?", true}, kAt});
        WatchedRun run;
        run.milliseconds = 1000;
        reporter.Conclude(run, {});
    }
    const std::string seen =
        clock + "  output      INFO: one\n" + clock + "  errors     ERROR: two\n" + clock +
        "  installer  three\n" + clock + "  installer  four\n" + clock +
        "  box        A box\n                     of two lines\n" + clock +
        "  dialog     Where is it?\n" + clock +
        "             It was cancelled. Give the folder of the installer media with "
        "-installerPath FOLDER.\n";
    const std::string summary =
        "Exit code\n"
        "  0: The launcher has started the installer, and does not wait for it.\n"
        "Time\n"
        "  0:00:01\n";
    EXPECT_EQ(Text("output"), seen + summary);
    const std::string warning =
        "Without -wait, only the launcher is waited for, not the installer.\n";
    EXPECT_EQ(Text("errors"), "mediatool: " + warning);

    // The log has it too: with its process's number before each line but the first.
    const std::string number = std::to_string(GetCurrentProcessId());
    std::istringstream log(Text("log.txt"));
    std::string line;
    std::getline(log, line);
    const std::string end = "  process " + number + "  setup.exe -wait\r";
    EXPECT_THAT(line, AllOf(StartsWith("==== "), EndsWith(end)));
    EXPECT_EQ(line.size(), 5 + DateAndClockText(kAt).size() + end.size());
    std::string rest;
    while (std::getline(log, line)) {
        EXPECT_THAT(line, AllOf(StartsWith(number + "  "), EndsWith("\r")));
        rest += line.substr(number.size() + 2, line.size() - number.size() - 3) + "\n";
    }
    EXPECT_EQ(rest.substr(clock.size()), "  mediatool  " + warning + seen + summary);
}

// The last line of a terminal goes on saying what was last said.
TEST_F(ReporterTest, ShowsEmptyLinesButNotAsTheLastMessage) {
    const auto terminal = Terminal(79);
    {
        Reporter reporter(LogName(), false);
        reporter.Begin("setup.exe");
        for (const char* line : {"one", "", "  ", "\t"})
            reporter.Saw(Lines(1, line));
        reporter.TimePassed(1000);
    }
    EXPECT_THAT(Text("output"), HasSubstr("  installer  one\n"));
    EXPECT_THAT(Text("output"), HasSubstr("  installer  \n"));
    EXPECT_THAT(Text("errors"), StartsWith("\r0:00:01  one"));
}

// A line that is taken away: with as many blanks as it had cells.
std::string Gone(std::size_t cells) {
    return "\r" + std::string(cells, ' ') + "\r";
}

TEST_F(ReporterTest, KeepsTheTimeInTheLastLineOfATerminal) {
    const auto terminal = Terminal(79);
    SetStdHandle(STD_ERROR_HANDLE, output_.file.Get());  // a terminal shows both
    {
        Reporter reporter("", false);
        reporter.TimePassed(0);
        reporter.TimePassed(999);
        reporter.Saw(Lines(1, "one"));
        reporter.TimePassed(999);
        reporter.TimePassed(1000);
        reporter.TimePassed(1500);
        reporter.Saw(AnsweredBox{{"A box\r\nof two lines", false}, kAt});
        reporter.TimePassed(1000);
        reporter.Say("Said.");
        reporter.TimePassed(2000);
        reporter.Conclude({}, {});
    }
    EXPECT_EQ(Text("output"),
              "\r0:00:00  " + Gone(9) + Clock() + "  installer  one\n\r0:00:00  one\r0:00:01  one" +
                  Gone(12) + Clock() + "  box        A box\n" + std::string(21, ' ') +
                  "of two lines\n\r0:00:01  A box" + Gone(14) +
                  "mediatool: Said.\n\r0:00:02  A box" + Gone(14) +
                  "Exit code\n"
                  "  0: The launcher has started the installer, and does not wait for it.\n"
                  "Time\n"
                  "  0:00:00\n");
}

// With JSON nothing is printed between.
TEST_F(ReporterTest, WritesShorterMessagesOverLongerOnes) {
    const auto terminal = Terminal(79);
    {
        Reporter reporter("", true);
        reporter.Saw(Lines(1, "long message"));
        reporter.TimePassed(1000);
        reporter.Saw(Lines(1, "short"));
        reporter.TimePassed(2000);
        reporter.TimePassed(3000);
    }
    EXPECT_EQ(Text("errors"),
              "\r0:00:01  long message\r0:00:02  short       \r0:00:03  short" + Gone(14));
}

TEST_F(ReporterTest, ShowsNoTimeWhereThereIsNoRoom) {
    const auto terminal = Terminal(0);
    Reporter("", true).TimePassed(1000);
    EXPECT_EQ(Text("errors"), "");
}

TEST_F(ReporterTest, SaysThatTheWatchingFailed) {
    WatchedRun run;
    run.endedBy = EndedBy::Failure;
    run.failure = "no more memory";
    Reporter(LogName(), true).Conclude(run, {});
    const std::string sentence =
        "mediatool failed (no more memory) before the launcher was started.";
    EXPECT_EQ(Text("errors"), "mediatool: " + sentence + "\n");
    EXPECT_THAT(Text("log.txt"), HasSubstr("  mediatool  " + sentence + "\r\n"));
}

// What a terminal that has colours shows of a run with this exit code.
std::string SummaryInColours(std::uint32_t exitCode) {
    SetEnvironmentVariableW(L"NO_COLOR", nullptr);
    const test::Hook<decltype(&GetConsoleMode)> terminal("GetConsoleMode",
                                                         [](auto&&...) { return TRUE; });
    const test::Hook<decltype(&SetConsoleMode)> colours("SetConsoleMode",
                                                        [](auto&&...) { return TRUE; });
    std::wstring shown;
    const test::Hook<decltype(&WriteConsoleW)> write(
        "WriteConsoleW",
        [&shown](auto, HANDLE, const void* text, DWORD length, DWORD* written, void*) {
            shown.append(static_cast<const wchar_t*>(text), *written = length);
            return TRUE;
        });
    WatchedRun run;
    run.exitCode = exitCode;
    Reporter("", false).Conclude(run, {});
    return ToNarrow(shown.c_str());
}

// A process finds out once whether there are colours.
TEST(ReporterDeathTest, ShowsTheSummaryInColours) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto check = [] {
        const std::string bold = "\x1b[1m";
        const std::string plain = "\x1b[0m";
        const std::string time = bold + "Time" + plain + "\n  0:00:00\n";
        const std::string code = bold + "Exit code" + plain + "\n  ";
        const bool isRight =
            SummaryInColours(0) ==
                code + "\x1b[32m0" + plain +
                    ": The launcher has started the installer, and does not wait for it.\n" +
                    time &&
            SummaryInColours(5) == code + "\x1b[1;31m5" + plain +
                                       ": The launcher's; not one that it has of its own.\n" + time;
        std::exit(isRight ? 0 : 1);
    };
    EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace launcher::mediatool
