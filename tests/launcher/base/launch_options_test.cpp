#include "launcher/base/launch_options.h"

#include <windows.h>

#include "fs/environment.h"
#include "platform/module_path.h"
#include "tests/launcher/base/options_fields.h"
#include "tests/launcher/fake_messages.h"
#include "tests/launcher/isolated_test.h"
#include "tests/launcher/journal.h"

namespace launcher {
namespace {

using test::Fields;
using test::FieldsOf;
using test::ParseOptions;
using testing::ElementsAre;

class LaunchOptionsTest : public test::IsolatedTest {
  protected:
    LaunchOptionsTest() { test::ClearJournal(); }
};

Fields Defaults() {
    return {{"wait", "no"},
            {"useGui", "yes"},
            {"interactiveSession", "yes"},
            {"lastMessageWasProblem", "no"},
            {"installerArgs", ""},
            {"installerPath", ""},
            {"softMgt", "no"},
            {"softMgtReadOnly", "no"},
            {"skipTemporaryCopy", "no"},
            {"temporaryCopyMade", "no"},
            {"uninstall", "no"},
            {"softMgtAction", ""},
            {"mediaDir", GetModuleDirectory()},
            {"mediaInstDir", ""},
            {"installerExeName", "ZEPInsAppliGUI.exe"},
            {"installerExePath", ""},
            {"osFolder", ""}};
}

TEST_F(LaunchOptionsTest, HasTheDefaultsWithoutArguments) {
    EXPECT_EQ(FieldsOf(ParseOptions({})), Defaults());
}

TEST_F(LaunchOptionsTest, HasTheDefaultsWithoutEvenAProgramName) {
    const wchar_t* const argv[] = {nullptr};
    EXPECT_EQ(FieldsOf(LaunchOptions(0, argv, "ZEPInsAppliGUI.exe", true, false)), Defaults());
}

TEST_F(LaunchOptionsTest, HasTheDefaultsWhenTheCommandLineCouldNotBeSplit) {
    EXPECT_EQ(FieldsOf(LaunchOptions(3, nullptr, "ZEPInsAppliGUI.exe", true, false)), Defaults());
}

TEST_F(LaunchOptionsTest, TakesWhatTheEntryPointGives) {
    const LaunchOptions options(0, nullptr, "other.exe", false, true);
    EXPECT_EQ(options.installerExeName, "other.exe");
    EXPECT_FALSE(options.useGui);
    EXPECT_TRUE(options.wait);
}

TEST_F(LaunchOptionsTest, TakesNoNoticeOfTheProgramsName) {
    const wchar_t* const argv[] = {L"-wait", L"--mgt"};
    EXPECT_EQ(FieldsOf(LaunchOptions(1, argv, "ZEPInsAppliGUI.exe", true, false)), Defaults());
}

// Each command line changes exactly these fields. With "--odt" the variable "CurrentMediaDir" is
// "E:/media/" in double quotes.
struct FieldsCase {
    std::vector<std::string> arguments;
    Fields changes;
};

void PrintTo(const FieldsCase& row, std::ostream* out) {
    *out << testing::PrintToString(row.arguments);
}

class LaunchOptionsFields : public LaunchOptionsTest,
                            public testing::WithParamInterface<FieldsCase> {};

const FieldsCase kSingleOptions[] = {
    {{"-wait"}, {{"wait", "yes"}}},
    {{"-UI"}, {}},
    {{"-env", "LAUNCHER_TEST=1"}, {}},
    {{"-installerPath", "D:\\dir"}, {{"installerPath", "D:\\dir"}}},
    {{"-SoftMgt", "-List"},
     {{"softMgt", "yes"}, {"softMgtAction", "List"}, {"softMgtReadOnly", "yes"}}},
    {{"-SoftMgt", "-Check"},
     {{"softMgt", "yes"}, {"softMgtAction", "Check1"}, {"softMgtReadOnly", "yes"}}},
    {{"-SoftMgt", "-Commit"}, {{"softMgt", "yes"}, {"softMgtAction", "Commit"}}},
    {{"-SoftMgt", "-Rollback"}, {{"softMgt", "yes"}, {"softMgtAction", "Rollback"}}},
    {{"--pipeserver"},
     {{"skipTemporaryCopy", "yes"},
      {"interactiveSession", "no"},
      {"wait", "yes"},
      {"installerExeName", "ZEPInsPipeServer.exe"}}},
    {{"--odt"},
     {{"wait", "yes"}, {"installerExeName", "ZEPInsAppliODT.exe"}, {"mediaDir", "E:\\media"}}},
    {{"--mgt"}, {{"skipTemporaryCopy", "yes"}, {"installerArgs", "[--mgt]"}}},
    {{"--uninst"},
     {{"skipTemporaryCopy", "yes"}, {"uninstall", "yes"}, {"installerArgs", "[--uninst]"}}},
    {{"anything"}, {{"installerArgs", "[anything]"}}},
};

const FieldsCase kCombinations[] = {
    // A later occurrence overwrites an earlier one; only `softMgtReadOnly` stays.
    {{"-installerPath", "a", "-installerPath", "b"}, {{"installerPath", "b"}}},
    {{"-Check", "-Commit", "-SoftMgt"},
     {{"softMgt", "yes"}, {"softMgtAction", "Commit"}, {"softMgtReadOnly", "yes"}}},
    {{"--uninst", "--mgt"}, {{"skipTemporaryCopy", "yes"}, {"installerArgs", "[--uninst][--mgt]"}}},
    {{"--mgt", "--uninst"},
     {{"skipTemporaryCopy", "yes"}, {"uninstall", "yes"}, {"installerArgs", "[--mgt][--uninst]"}}},
    {{"--odt", "--pipeserver"},
     {{"wait", "yes"},
      {"skipTemporaryCopy", "yes"},
      {"interactiveSession", "no"},
      {"mediaDir", "E:\\media"},
      {"installerExeName", "ZEPInsPipeServer.exe"}}},
    // Words are compared whole and with their case; whatever is no option is handed on in order.
    {{"-WAIT", "-ui", "-Wait", "--ODT", "-list", "wait", "--wait", "-UI=1", "/?"},
     {{"installerArgs", "[-WAIT][-ui][-Wait][--ODT][-list][wait][--wait][-UI=1][/?]"}}},
    {{"", "a b", "c\"d", "\xC3\xA4\xF0\x9F\x98\x80"},
     {{"installerArgs", "[][a b][c\"d][\xC3\xA4\xF0\x9F\x98\x80]"}}},
    // The value of an option is taken as it is, also when it looks like an option or is empty.
    {{"-installerPath", "-wait"}, {{"installerPath", "-wait"}}},
    {{"-installerPath", "\"D:/a b/\"", "x"},
     {{"installerPath", "\"D:/a b/\""}, {"installerArgs", "[x]"}}},
    {{"-installerPath", "", "-wait"}, {{"wait", "yes"}}},
    {{"-env", "-SoftMgt"}, {}},
};

TEST_P(LaunchOptionsFields, ChangeAsTheArgumentsSay) {
    SetEnvVar("CurrentMediaDir", "\"E:/media/\"");
    Fields expected = Defaults();
    for (const auto& [field, value] : GetParam().changes)
        expected[field] = value;
    EXPECT_EQ(FieldsOf(ParseOptions(GetParam().arguments)), expected);
    EXPECT_THAT(test::Journal(), ElementsAre());
}

INSTANTIATE_TEST_SUITE_P(SingleOptions, LaunchOptionsFields, testing::ValuesIn(kSingleOptions));
INSTANTIATE_TEST_SUITE_P(Combinations, LaunchOptionsFields, testing::ValuesIn(kCombinations));

TEST_F(LaunchOptionsTest, TurnsBoxesOnWhereTheyAreOff) {
    EXPECT_FALSE(ParseOptions({}, false).useGui);
    EXPECT_TRUE(ParseOptions({"-UI"}, false).useGui);
}

TEST_F(LaunchOptionsTest, HasNoMediaWithOdtAndWithoutItsVariable) {
    SetEnvVar("CurrentMediaDir", "");
    EXPECT_TRUE(IsEmpty(ParseOptions({"--odt"}).mediaDir));
}

TEST_F(LaunchOptionsTest, AppliesAssignmentsBeforeTheOptionsThatFollow) {
    const LaunchOptions options =
        ParseOptions({"-env", "CurrentMediaDir=F:\\x", "--odt", "-env", "CurrentMediaDir=G:\\y"});
    EXPECT_EQ(options.mediaDir.Text(), "F:\\x");
}

// The variable that an assignment sets, and its value. It was "old" before.
struct AssignmentCase {
    std::string assignment;
    std::string name;
    std::string value;
};

void PrintTo(const AssignmentCase& row, std::ostream* out) {
    *out << testing::PrintToString(row.assignment);
}

class LaunchOptionsAssignment : public LaunchOptionsTest,
                                public testing::WithParamInterface<AssignmentCase> {};

TEST_P(LaunchOptionsAssignment, SetsTheVariableAtOnce) {
    SetEnvVar(GetParam().name, "old");
    ParseOptions({"-env", GetParam().assignment});
    EXPECT_EQ(GetEnvVar(GetParam().name), GetParam().value);
}

const AssignmentCase kAssignments[] = {
    {"LAUNCHER_TEST=B", "LAUNCHER_TEST", "B"},
    {"LAUNCHER_TEST=B=C", "LAUNCHER_TEST", "B=C"},
    {"LAUNCHER_TEST==", "LAUNCHER_TEST", "="},
    {"LAUNCHER_TEST", "LAUNCHER_TEST", "1"},
    {"LAUNCHER_TEST= a \"b\" ", "LAUNCHER_TEST", " a \"b\" "},
    {"LAUNCHER_\xC3\x84=\xE2\x82\xAC", "LAUNCHER_\xC3\x84", "\xE2\x82\xAC"},
    {"=LAUNCHER_TEST", "=LAUNCHER_TEST", "1"},
    {"L=1", "L", "1"},
};

INSTANTIATE_TEST_SUITE_P(All, LaunchOptionsAssignment, testing::ValuesIn(kAssignments));

TEST_F(LaunchOptionsTest, RemovesTheVariableWithAnEmptyValue) {
    SetEnvVar("LAUNCHER_TEST", "old");
    ParseOptions({"-env", "LAUNCHER_TEST="});
    EXPECT_EQ(GetEnvironmentVariableW(L"LAUNCHER_TEST", nullptr, 0), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
}

TEST_F(LaunchOptionsTest, AssignsNothingForAnEmptyText) {
    EXPECT_EQ(FieldsOf(ParseOptions({"-env", ""})), Defaults());
}

TEST_F(LaunchOptionsTest, ReportsAMissingValueAtANullArgument) {
    const wchar_t* const argv[] = {L"setup.exe", L"-installerPath", nullptr, nullptr};
    EXPECT_THROW(LaunchOptions(3, argv, "ZEPInsAppliGUI.exe", true, false), test::ProcessExit);
    EXPECT_THAT(test::Journal(), ElementsAre("error: Bad -installerPath argument"));
}

TEST_F(LaunchOptionsTest, KeepsTheAssignmentsInFrontOfABadArgument) {
    EXPECT_THROW(ParseOptions({"-env", "LAUNCHER_TEST=kept", "-env"}), test::ProcessExit);
    EXPECT_EQ(GetEnvVar("LAUNCHER_TEST"), "kept");
}

TEST_F(LaunchOptionsTest, ReportsAMissingValueBeforeABadCombination) {
    EXPECT_THROW(ParseOptions({"-List", "-env"}), test::ProcessExit);
    EXPECT_THAT(test::Journal(), ElementsAre("error: Bad -env argument"));
}

}  // namespace
}  // namespace launcher
