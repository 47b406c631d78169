// The switch is read once per process: each case is a process of its own.

#include <gmock/gmock.h>

#include <cstdlib>

#include "fs/environment.h"
#include "launcher/base/message.h"
#include "tests/launcher/base/message_boxes.h"
#include "tests/launcher/base/options_fields.h"

namespace launcher {
namespace {

constexpr char kSwitch[] = "ZEP_TraceMsgBox";

// Traces with the switch at `value`, and ends the process.
[[noreturn]] void TraceAndExit(const std::string& value, Severity severity, bool useGui) {
    const test::MessageBoxPrinter printer;
    LaunchOptions options = test::ParseOptions({}, useGui);
    options.lastMessageWasProblem = true;  // plain messages go to the captured stream, too
    SetEnvVar(kSwitch, value);
    TraceMessage(options, "text", severity);
    std::exit(0);
}

// A value of the switch, and whether traces go to boxes: it is on when it is one byte long.
struct SwitchCase {
    std::string value;
    bool inBoxes;
};

void PrintTo(const SwitchCase& row, std::ostream* out) {
    *out << testing::PrintToString(row.value);
}

class TraceSwitchDeathTest : public testing::TestWithParam<SwitchCase> {};

TEST_P(TraceSwitchDeathTest, IsOnWithExactlyOneCharacter) {
    EXPECT_EXIT(TraceAndExit(GetParam().value, Severity::Warning, true), testing::ExitedWithCode(0),
                testing::StrEq(GetParam().inBoxes ? "box: text\n" : " WARN: text\n"));
}

const SwitchCase kSwitches[] = {{"", false}, {"0", true},   {"1", true},    {"x", true},
                                {" ", true}, {"10", false}, {"yes", false}, {"\xC3\xA4", false}};

INSTANTIATE_TEST_SUITE_P(All, TraceSwitchDeathTest, testing::ValuesIn(kSwitches));

TEST(TraceDeathTest, GoesToABoxAlsoWhereBoxesAreOffAndWhateverTheSeverity) {
    for (const Severity severity :
         {Severity::Plain, Severity::Info, Severity::Warning, Severity::Error})
        EXPECT_EXIT(TraceAndExit("1", severity, false), testing::ExitedWithCode(0),
                    testing::StrEq("box: text\n"));
}

TEST(TraceDeathTest, IsALineWithItsSeverityAlsoWhereBoxesAreOn) {
    EXPECT_EXIT(TraceAndExit("", Severity::Plain, true), testing::ExitedWithCode(0),
                testing::StrEq("       text\n"));
    EXPECT_EXIT(TraceAndExit("", Severity::Error, true), testing::ExitedWithCode(0),
                testing::StrEq("ERROR: text\n"));
}

// Traces once with the switch at `first` and once with it at `second`, and ends the process.
[[noreturn]] void TraceTwiceAndExit(const std::string& first, const std::string& second) {
    const test::MessageBoxPrinter printer;
    LaunchOptions options = test::ParseOptions({});
    for (const std::string& value : {first, second}) {
        SetEnvVar(kSwitch, value);
        TraceMessage(options, "text", Severity::Warning);
    }
    std::exit(0);
}

TEST(TraceDeathTest, KeepsToTheSwitchOfTheFirstMessage) {
    EXPECT_EXIT(TraceTwiceAndExit("1", ""), testing::ExitedWithCode(0),
                testing::StrEq("box: text\nbox: text\n"));
    EXPECT_EXIT(TraceTwiceAndExit("", "1"), testing::ExitedWithCode(0),
                testing::StrEq(" WARN: text\n WARN: text\n"));
}

TEST(TraceDeathTest, TellsTheStreamOfLaterMessages) {
    EXPECT_EXIT(
        {
            SetEnvVar(kSwitch, "");
            LaunchOptions options = test::ParseOptions({});
            options.lastMessageWasProblem = true;
            TraceMessage(options, "text", Severity::Info);
            std::exit(options.lastMessageWasProblem ? 1 : 0);
        },
        testing::ExitedWithCode(0), testing::StrEq(""));
}

}  // namespace
}  // namespace launcher
