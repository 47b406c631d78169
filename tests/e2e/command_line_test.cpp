// The launcher's own command line: what it takes, what it hands on, what it refuses.

#include <string>
#include <vector>

#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

using testing::IsEmpty;

using Arguments = std::vector<std::string>;

struct BadRow : Row {
    Arguments arguments;
    const char* box;
};

class BadCommandLine : public LauncherTableTest<BadRow> {};

TEST_P(BadCommandLine, IsRefusedAndLeavesNothingBehind) {
    const LauncherRun run = Run(MediaToCopy(), GetParam().arguments);
    EXPECT_THAT(run, IsRefusedWith(GetParam().box));
    EXPECT_EQ(run.output + run.errors, "");
    EXPECT_THAT(run.LeftInTemp(), IsEmpty());
}

// A value that is missing at the end, a software-management switch without an action, and an
// action without the switch; of several actions the last one is named.
INSTANTIATE_TEST_SUITE_P(
    Table, BadCommandLine,
    testing::Values(
        BadRow{{"EnvAlone"}, {"-env"}, "Bad -env argument"},
        BadRow{{"EnvLast"}, {"-wait", "x", "-env"}, "Bad -env argument"},
        BadRow{{"EnvBehindEnv"}, {"-env", "-env", "-env"}, "Bad -env argument"},
        BadRow{{"InstallerPathAlone"}, {"-installerPath"}, "Bad -installerPath argument"},
        BadRow{{"InstallerPathTakesTheOption"},
               {"-installerPath", "-env", "-installerPath"},
               "Bad -installerPath argument"},
        BadRow{{"SoftMgtAlone"},
               {"-SoftMgt"},
               "-SoftMgt must be used with another flag (either -List, -Check, -Commit or "
               "-Rollback)."},
        BadRow{{"SoftMgtWithAWordOfAnotherCase"},
               {"-SoftMgt", "-list"},
               "-SoftMgt must be used with another flag (either -List, -Check, -Commit or "
               "-Rollback)."},
        BadRow{{"List"}, {"-List"}, "-List must be used with the -SoftMgt flag."},
        BadRow{{"Check"}, {"-Check"}, "-Check must be used with the -SoftMgt flag."},
        BadRow{{"Commit"}, {"-Commit"}, "-Commit must be used with the -SoftMgt flag."},
        BadRow{{"Rollback"}, {"-Rollback"}, "-Rollback must be used with the -SoftMgt flag."},
        BadRow{{"TheLastAction"},
               {"-List", "-Check", "-Commit"},
               "-Commit must be used with the -SoftMgt flag."}),
    RowName);

struct HandedOnRow : Row {
    Arguments arguments;
    Arguments handedOn;
};

class CommandLine : public LauncherTableTest<HandedOnRow> {};

TEST_P(CommandLine, HandsOnWhatIsNotForTheLauncher) {
    const Media media = UsualMedia();
    Arguments expected = {"-CDpath", media.Text()};
    expected.insert(expected.end(), GetParam().handedOn.begin(), GetParam().handedOn.end());
    EXPECT_EQ(Run(media, GetParam().arguments).Installer().Arguments(), expected);
}

// Options are consumed, words of another case are no options, "--mgt" and "--uninst" are both
// acted on and handed on, and the order stays.
INSTANTIATE_TEST_SUITE_P(
    Table, CommandLine,
    testing::Values(HandedOnRow{{"Nothing"}, {}, {}},
                    HandedOnRow{
                        {"Options"}, {"-wait", "-UI", "-env", "A=B", "-installerPath", "x"}, {}},
                    HandedOnRow{{"OtherCase"},
                                {"-WAIT", "-ui", "-Env", "--ODT", "/wait", "-wait "},
                                {"-WAIT", "-ui", "-Env", "--ODT", "/wait", "-wait "}},
                    HandedOnRow{{"Maintenance"},
                                {"a", "--uninst", "b", "--mgt", "c"},
                                {"a", "--uninst", "b", "--mgt", "c"}},
                    HandedOnRow{{"AValueThatLooksLikeAnOption"}, {"-env", "-wait", "x"}, {"x"}},
                    HandedOnRow{{"Empty"}, {"", "x", ""}, {"", "x", ""}}),
    RowName);

struct AssignmentRow : Row {
    Arguments arguments;
    const char* variable;
    std::optional<std::string> value;
};

class EnvOption : public LauncherTableTest<AssignmentRow> {};

TEST_P(EnvOption, SetsAVariableForTheInstaller) {
    variables["EARLIER"] = "before";
    const LauncherRun run = Run(UsualMedia(), GetParam().arguments);
    EXPECT_EQ(run.Installer().Variable(GetParam().variable), GetParam().value);
}

// The first "=" that is not at the front ends the name; without one the value is "1"; an empty
// value removes the variable; the last assignment counts.
INSTANTIATE_TEST_SUITE_P(
    Table, EnvOption,
    testing::Values(AssignmentRow{{"Plain"}, {"-env", "A=B"}, "A", "B"},
                    AssignmentRow{{"TwoEqualSigns"}, {"-env", "A=B=C"}, "A", "B=C"},
                    AssignmentRow{{"NameAlone"}, {"-env", "A"}, "A", "1"},
                    AssignmentRow{{"EqualSignInFront"}, {"-env", "=X"}, "=X", "1"},
                    AssignmentRow{{"EmptyValue"}, {"-env", "EARLIER="}, "EARLIER", std::nullopt},
                    AssignmentRow{{"Blanks"}, {"-env", "A= b c "}, "A", " b c "},
                    AssignmentRow{{"NonAscii"}, {"-env", "A=été 漢字 😀"}, "A", "été 漢字 😀"},
                    AssignmentRow{{"Twice"}, {"-env", "A=1st", "-env", "A=2nd"}, "A", "2nd"}),
    RowName);

}  // namespace
}  // namespace launcher::test
