// Texts that a thread hands on, and what a log and a screen make of it when nobody takes them.

#include "mediatool/run/outbox.h"

#include <nlohmann/json.hpp>
#include <sstream>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/json.h"
#include "mediatool/base/owners.h"
#include "mediatool/run/reporter.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/temporary_folder.h"

namespace launcher::mediatool {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// Something that does not go on until it is let.
class Gate {
  public:
    Gate() : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    void Open() const { SetEvent(event_.Get()); }
    // False when nobody opened it: a test in which somebody waits who should not fails, and ends.
    bool Pass() const { return WaitForSingleObject(event_.Get(), 30000) == WAIT_OBJECT_0; }

  private:
    KernelObject event_;
};

TEST(OutboxTest, HandsOnInOrder) {
    std::string taken;
    Outbox outbox;
    const Outbox::Take take = [&taken](const std::string& text) { taken += text; };
    for (int i = 0; i < 100; ++i)
        outbox.Add(take, std::to_string(i) + "\n");
    EXPECT_EQ(outbox.Finish(), 0u);
    EXPECT_THAT(taken, StartsWith("0\n1\n2\n"));
    EXPECT_THAT(taken, EndsWith("\n98\n99\n"));
    EXPECT_EQ(outbox.Waiting(), 0u);
}

TEST(OutboxTest, DoesNotWaitToBeTaken) {
    const Gate gate;
    bool passed = false;
    Outbox outbox;
    outbox.Add([&](const std::string&) { passed = gate.Pass(); }, "one\n");
    EXPECT_EQ(outbox.Waiting(), 4u);
    gate.Open();
    EXPECT_EQ(outbox.Finish(), 0u);
    EXPECT_TRUE(passed);
}

TEST(OutboxTest, GivesUpOnWhatIsNotTaken) {
    const auto gate = std::make_shared<Gate>();
    {
        Outbox outbox;
        outbox.Add([gate](const std::string&) { gate->Pass(); }, "one\ntwo\n");
        outbox.Add([gate](const std::string&) {}, "three\n");
        EXPECT_EQ(outbox.Finish(100), 3u);
    }
    gate->Open();
}

TEST(OutboxTest, KeepsLinesWholeInPieces) {
    std::vector<std::string> pieces;
    {
        Outbox outbox;
        const std::string line = std::string(40'000, 'x') + "\n";
        outbox.Add([&pieces](const std::string& text) { pieces.push_back(text); },
                   line + line + std::string(65'535, 'y') + "ü\n");
        EXPECT_EQ(outbox.Finish(), 0u);
    }
    std::vector<std::size_t> sizes;
    for (const std::string& piece : pieces)
        sizes.push_back(piece.size());
    EXPECT_THAT(sizes, ElementsAre(40'001, 40'001, 65'537, 1));
}

TEST(OutboxTest, LosesNothingWithoutAThread) {
    const test::Hook<decltype(&CreateThread)> hook(
        "CreateThread", test::FailsWith<HANDLE>(ERROR_NOT_ENOUGH_MEMORY, nullptr));
    std::string taken;
    Outbox outbox;
    outbox.Add([&taken](const std::string& text) { taken += text; }, "one\n");
    EXPECT_EQ(taken, "one\n");
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
        return std::vector<SeenLine>(count, {text, Origin::InstallerOutput, Now()});
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
        reporter.Conclude({}, {});
    }
    EXPECT_THAT(Text("errors"),
                StartsWith("mediatool: The log \"" + LogName() + "\" can no longer be written: "));
    EXPECT_EQ(std::ranges::count(Text("errors"), '\n'), 1);
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

// Nobody reads the pipe; then somebody does.
TEST_F(ReporterTest, LeavesOutWhatNobodyReads) {
    const Gate gate;
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
        gate.Open();
        reporter.Conclude({}, {});
    }
    const std::string output = Text("output");
    const auto shown = static_cast<std::size_t>(std::ranges::count(output, 'x')) / 100;
    EXPECT_LT(shown, 100'000u);
    EXPECT_THAT(output, HasSubstr("  mediatool  " + std::to_string(200'000 - shown) +
                                  " lines left out here: nobody read them. The log has them all.\n"
                                  "Exit code\n"));
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
    const Moment at = 134'596'373'487'650'000;
    const std::string clock = ClockText(at);
    {
        Reporter reporter(LogName(), false);
        reporter.Begin("setup.exe -wait");
        reporter.Started({});
        reporter.Saw({{" INFO: one", Origin::LauncherOutput, at},
                      {"ERROR: two", Origin::LauncherErrors, at},
                      {"three", Origin::InstallerOutput, at},
                      {"four", Origin::InstallerErrors, at}});
        reporter.Saw(AnsweredBox{{"A box\r\nof two lines\r\n", false}, at});
        reporter.Saw(AnsweredBox{{"Where is it?", true}, at});
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
    EXPECT_EQ(line.size(), 5 + DateAndClockText(at).size() + end.size());
    std::string rest;
    while (std::getline(log, line)) {
        EXPECT_THAT(line, AllOf(StartsWith(number + "  "), EndsWith("\r")));
        rest += line.substr(number.size() + 2, line.size() - number.size() - 3) + "\n";
    }
    EXPECT_EQ(rest.substr(clock.size()), "  mediatool  " + warning + seen + summary);
}

// The last line of a terminal goes on saying what was last said.
TEST_F(ReporterTest, ShowsEmptyLinesButNotAsTheLastMessage) {
    const test::Hook<decltype(&GetConsoleScreenBufferInfo)> hook(
        "GetConsoleScreenBufferInfo", [](auto, HANDLE, CONSOLE_SCREEN_BUFFER_INFO* info) -> BOOL {
            *info = {};
            info->srWindow.Right = 79;
            return TRUE;
        });
    {
        Reporter reporter(LogName(), false);
        reporter.Begin("setup.exe");
        for (const char* line : {"one", "", "  "})
            reporter.Saw(Lines(1, line));
        reporter.TimePassed(1000);
    }
    EXPECT_THAT(Text("output"), HasSubstr("  installer  one\n"));
    EXPECT_THAT(Text("output"), HasSubstr("  installer  \n"));
    EXPECT_THAT(Text("errors"), StartsWith("\r0:00:01  one"));
}

}  // namespace
}  // namespace launcher::mediatool
