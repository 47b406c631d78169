#include <gmock/gmock.h>

#include "tests/launcher/base/message_boxes.h"
#include "tests/launcher/base/options_fields.h"

namespace launcher {
namespace {

using test::ParseOptions;

// A command line that is refused, and the text.
struct Refusal {
    std::vector<std::string> arguments;
    std::string text;
};

void PrintTo(const Refusal& row, std::ostream* out) {
    *out << testing::PrintToString(row.arguments);
}

class LaunchOptionsDeathTest : public testing::TestWithParam<Refusal> {};

const Refusal kRefusals[] = {
    {{"-env"}, "Bad -env argument"},
    {{"-wait", "-installerPath"}, "Bad -installerPath argument"},
    {{"-SoftMgt"},
     "-SoftMgt must be used with another flag (either -List, -Check, -Commit or -Rollback)."},
    {{"-List"}, "-List must be used with the -SoftMgt flag."},
    {{"-Check"}, "-Check must be used with the -SoftMgt flag."},
    {{"-Commit"}, "-Commit must be used with the -SoftMgt flag."},
    {{"-Rollback"}, "-Rollback must be used with the -SoftMgt flag."},
    {{"-Check", "-Rollback"}, "-Rollback must be used with the -SoftMgt flag."},
};

TEST_P(LaunchOptionsDeathTest, EndsTheProcessWithExitCode1AfterTheMessage) {
    EXPECT_EXIT(ParseOptions(GetParam().arguments, false), testing::ExitedWithCode(1),
                testing::StrEq("ERROR: " + GetParam().text + "\n"));
}

INSTANTIATE_TEST_SUITE_P(All, LaunchOptionsDeathTest, testing::ValuesIn(kRefusals));

TEST(LaunchOptionsBoxDeathTest, ShowsTheMessageInABoxWhereBoxesAreOn) {
    EXPECT_EXIT(
        {
            const test::MessageBoxPrinter printer;
            ParseOptions({"-env"}, true);
        },
        testing::ExitedWithCode(1), testing::StrEq("box: Bad -env argument\n"));
}

}  // namespace
}  // namespace launcher
