// Which way a message takes. How it looks there: message_output_test.cpp. What is read once in a
// process, and what ends it, is tested in a process of its own.

#include "launcher/base/message.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cstdlib>
#include <string>
#include <utility>

#include "fs/environment.h"
#include "fs/exceptions.h"
#include "tests/support/hook.h"
#include "tests/support/message_boxes.h"
#include "tests/support/options.h"

namespace launcher {
namespace {

using testing::ElementsAre;
using testing::ExitedWithCode;
using testing::StrEq;

// What was written to the two console streams.
using Console = std::pair<std::string, std::string>;

Console Report(const LaunchOptions& options, Severity severity, bool noBox = true) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    ReportMessage(options, "text", severity, noBox);
    std::string error = testing::internal::GetCapturedStderr();
    return {testing::internal::GetCapturedStdout(), std::move(error)};
}

// Warnings and errors are problems, information is none; anything else leaves the state, and so
// the stream, as it was.
TEST(ReportMessage, ChoosesTheStreamBySeverity) {
    const LaunchOptions options = test::ParseOptions({});
    constexpr auto kOther = static_cast<Severity>(4);
    EXPECT_EQ(Report(options, Severity::Plain), (Console{"       text\n", ""}));
    EXPECT_EQ(Report(options, Severity::Error), (Console{"", "ERROR: text\n"}));
    EXPECT_EQ(Report(options, Severity::Plain), (Console{"", "       text\n"}));
    EXPECT_EQ(Report(options, kOther), (Console{"", "       text\n"}));
    EXPECT_EQ(Report(options, Severity::Info), (Console{" INFO: text\n", ""}));
    EXPECT_EQ(Report(options, kOther), (Console{"       text\n", ""}));
    EXPECT_EQ(Report(options, Severity::Warning), (Console{"", " WARN: text\n"}));
    EXPECT_TRUE(options.lastMessageWasProblem);
}

TEST(ReportMessage, IsALineWithoutUserInterfaceOrOnRequest) {
    const test::MessageBoxes boxes;
    for (const bool useGui : {false, true})
        EXPECT_EQ(Report(test::ParseOptions({}, useGui), Severity::Error, /*noBox=*/useGui),
                  (Console{"", "ERROR: text\n"}));
    EXPECT_THAT(boxes.texts, ElementsAre());
}

TEST(ReportMessage, IsOtherwiseABoxAndNothingElse) {
    const LaunchOptions options = test::ParseOptions({});
    for (const bool problemBefore : {false, true}) {
        const test::MessageBoxes boxes;
        options.lastMessageWasProblem = problemBefore;
        for (const Severity severity : {Severity::Info, Severity::Error})
            EXPECT_EQ(Report(options, severity, /*noBox=*/false), Console());
        EXPECT_THAT(boxes.texts, ElementsAre("text", "text"));
        EXPECT_EQ(options.lastMessageWasProblem, problemBefore);
    }
}

// Traces once for each value of the switch, and ends the process.
[[noreturn]] void TraceAndExit(const std::vector<std::string>& values, Severity severity,
                               bool useGui) {
    const test::MessageBoxes boxes(/*print=*/true);
    const LaunchOptions options = test::ParseOptions({}, useGui);
    options.lastMessageWasProblem = true;  // plain messages go to the error stream, too
    for (const std::string& value : values) {
        SetEnvVar("ZEP_TraceMsgBox", value);
        TraceMessage(options, "text", severity);
    }
    std::exit(options.lastMessageWasProblem ? 0 : 5);
}

TEST(TraceMessageDeathTest, IsABoxWhenTheSwitchIsExactlyOneCharacter) {
    for (const char* value : {"0", "1", " "})
        EXPECT_EXIT(TraceAndExit({value}, Severity::Warning, true), ExitedWithCode(0),
                    StrEq("box: text\n"))
            << value;
    for (const char* value : {"", "10", "\xC3\xA4"})
        EXPECT_EXIT(TraceAndExit({value}, Severity::Warning, true), ExitedWithCode(0),
                    StrEq(" WARN: text\n"))
            << value;
}

TEST(TraceMessageDeathTest, TakesItsWayWhateverTheSeverityAndTheUserInterface) {
    EXPECT_EXIT(TraceAndExit({"1"}, Severity::Plain, false), ExitedWithCode(0),
                StrEq("box: text\n"));
    EXPECT_EXIT(TraceAndExit({""}, Severity::Plain, true), ExitedWithCode(0),
                StrEq("       text\n"));
    // On the output, with the state of the stream changed.
    EXPECT_EXIT(TraceAndExit({""}, Severity::Info, true), ExitedWithCode(5), StrEq(""));
}

TEST(TraceMessageDeathTest, KeepsToTheSwitchOfTheFirstMessage) {
    EXPECT_EXIT(TraceAndExit({"1", ""}, Severity::Error, true), ExitedWithCode(0),
                StrEq("box: text\nbox: text\n"));
    EXPECT_EXIT(TraceAndExit({"", "1"}, Severity::Error, true), ExitedWithCode(0),
                StrEq("ERROR: text\nERROR: text\n"));
}

// Reports the last error `code` as the launch does, and ends the process.
[[noreturn]] void ReportFailure(DWORD code, bool useGui) {
    const test::MessageBoxes boxes(/*print=*/true);
    const LaunchOptions options = test::ParseOptions({}, useGui);
    SetLastError(code);
    ReportLastErrorAndExit(options, "\"setup.exe\" \"x\"", "Setup failed to create process");
}

TEST(ReportErrorDeathTest, EndsTheProcessWithExitCode1) {
    EXPECT_EXIT(ReportErrorAndExit(test::ParseOptions({}, false), "text"), ExitedWithCode(1),
                StrEq("ERROR: text\n"));
}

// The system's text has a line break at its end. (A stream in text mode doubles the CR of it when
// writing and takes one away when reading.)
TEST(ReportErrorDeathTest, ShowsAFailedCallWithItsCodeAndTheSystemsText) {
    const std::string text = SystemErrorText(ERROR_FILE_NOT_FOUND) + "\r\n";
    EXPECT_EXIT(ReportFailure(ERROR_FILE_NOT_FOUND, true), ExitedWithCode(1),
                StrEq("box: Setup failed to create process\n\"setup.exe\" \"x\"\nrc=2\nmsg=" +
                      text + "\n"));
}

using FormatMessageFunction = DWORD(WINAPI*)(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, char**);

TEST(ReportErrorDeathTest, AsksForTheTextOnceAndDoesWithoutIt) {
    EXPECT_EXIT(
        {
            const test::Hook<FormatMessageFunction> none(
                "FormatMessageW", [](auto, DWORD flags, LPCVOID, DWORD code, auto&&...) {
                    std::fprintf(stderr, "0x%lx %lu\n", flags, code);
                    return DWORD{0};
                });
            ReportFailure(0xE0000001, false);
        },
        ExitedWithCode(1),
        StrEq("0x1100 3758096385\n"
              "ERROR: Setup failed to create process\n"
              "       \"setup.exe\" \"x\"\n"
              "       rc=3758096385\n"
              "       msg=\n"));
}

}  // namespace
}  // namespace launcher
