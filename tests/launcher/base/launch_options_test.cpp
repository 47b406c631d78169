#include "launcher/base/launch_options.h"

#include <windows.h>

#include <string>
#include <vector>

#include "fs/environment.h"
#include "platform/module_path.h"
#include "tests/support/fake_messages.h"
#include "tests/support/isolated_test.h"
#include "tests/support/options.h"

namespace launcher {
namespace {

using test::Fields;
using test::FieldsOf;
using test::ParseOptions;
using testing::ElementsAre;

class LaunchOptionsTest : public test::IsolatedTest {};

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
    // Without even a program's name, and for a command line that could not be split.
    const wchar_t* const none[] = {nullptr};
    EXPECT_EQ(FieldsOf(LaunchOptions(0, none, "ZEPInsAppliGUI.exe", true, false)), Defaults());
    EXPECT_EQ(FieldsOf(LaunchOptions(3, nullptr, "ZEPInsAppliGUI.exe", true, false)), Defaults());
}

TEST_F(LaunchOptionsTest, TakesWhatTheEntryPointGives) {
    const LaunchOptions options(0, nullptr, "other.exe", false, true);
    EXPECT_EQ(options.installerExeName, "other.exe");
    EXPECT_FALSE(options.useGui);
    EXPECT_TRUE(options.wait);
}

TEST_F(LaunchOptionsTest, IgnoresTheProgramsName) {
    const wchar_t* const argv[] = {L"-wait", L"--mgt"};
    EXPECT_EQ(FieldsOf(LaunchOptions(1, argv, "ZEPInsAppliGUI.exe", true, false)), Defaults());
}

// Each command line changes exactly these fields. With "--odt" the variable "CurrentMediaDir" is
// "E:/media/" in double quotes.
struct FieldsCase {
    std::vector<std::string> arguments;
    Fields changes;
};

const FieldsCase kCommandLines[] = {
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
    {{"--pipeserver", "--odt"},
     {{"wait", "yes"},
      {"skipTemporaryCopy", "yes"},
      {"interactiveSession", "no"},
      {"mediaDir", "E:\\media"},
      {"installerExeName", "ZEPInsAppliODT.exe"}}},
    // Words are compared whole and with their case; whatever is no option is handed on in order.
    {{"-WAIT", "-ui", "-Wait", "--ODT", "-list", "wait", "--wait", "-UI=1", "/?"},
     {{"installerArgs", "[-WAIT][-ui][-Wait][--ODT][-list][wait][--wait][-UI=1][/?]"}}},
    {{"", "a b", "c\"d", "\xC3\xA4\xF0\x9F\x98\x80"},
     {{"installerArgs", "[][a b][c\"d][\xC3\xA4\xF0\x9F\x98\x80]"}}},
    // The value of an option is taken as it is, even when it looks like an option or is empty.
    {{"-installerPath", "-wait"}, {{"installerPath", "-wait"}}},
    {{"-installerPath", "\"D:/a b/\"", "x"},
     {{"installerPath", "\"D:/a b/\""}, {"installerArgs", "[x]"}}},
    {{"-installerPath", "", "-wait"}, {{"wait", "yes"}}},
    {{"-env", "-SoftMgt"}, {}},
};

TEST_F(LaunchOptionsTest, ChangesAsTheArgumentsSay) {
    SetEnvVar("CurrentMediaDir", "\"E:/media/\"");
    for (const auto& [arguments, changes] : kCommandLines) {
        Fields expected = Defaults();
        for (const auto& [field, value] : changes)
            expected[field] = value;
        EXPECT_EQ(FieldsOf(ParseOptions(arguments)), expected) << testing::PrintToString(arguments);
    }
    EXPECT_THAT(test::journal, ElementsAre());
}

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

// The assignment, the variable that it sets, and its value.
TEST_F(LaunchOptionsTest, SetsAVariableAtOnce) {
    struct {
        std::string assignment;
        std::string name;
        std::string value;
    } const rows[] = {{"LAUNCHER_TEST=B", "LAUNCHER_TEST", "B"},
                      {"LAUNCHER_TEST=B=C", "LAUNCHER_TEST", "B=C"},
                      {"LAUNCHER_TEST==", "LAUNCHER_TEST", "="},
                      {"LAUNCHER_TEST", "LAUNCHER_TEST", "1"},
                      {"LAUNCHER_TEST= a \"b\" ", "LAUNCHER_TEST", " a \"b\" "},
                      {"LAUNCHER_\xC3\x84=\xE2\x82\xAC", "LAUNCHER_\xC3\x84", "\xE2\x82\xAC"},
                      {"=LAUNCHER_TEST", "=LAUNCHER_TEST", "1"},
                      {"L=1", "L", "1"}};
    for (const auto& row : rows) {
        SetEnvVar(row.name, "old");
        ParseOptions({"-env", row.assignment});
        EXPECT_EQ(GetEnvVar(row.name), row.value) << row.assignment;
    }
}

TEST_F(LaunchOptionsTest, RemovesTheVariableWithAnEmptyValue) {
    SetEnvVar("LAUNCHER_TEST", "old");
    ParseOptions({"-env", "LAUNCHER_TEST="});
    EXPECT_EQ(GetEnvironmentVariableW(L"LAUNCHER_TEST", nullptr, 0), 0u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
}

TEST_F(LaunchOptionsTest, AssignsNothingForAnEmptyText) {
    EXPECT_EQ(FieldsOf(ParseOptions({"-env", ""})), Defaults());
}

// Command lines that end the process after this message.
TEST_F(LaunchOptionsTest, RefusesABadCommandLine) {
    struct {
        std::vector<std::string> arguments;
        std::string text;
    } const rows[] = {
        {{"-env"}, "Bad -env argument"},
        {{"-wait", "-installerPath"}, "Bad -installerPath argument"},
        {{"-List", "-env"}, "Bad -env argument"},
        {{"-SoftMgt"},
         "-SoftMgt must be used with another flag (either -List, -Check, -Commit or -Rollback)."},
        {{"-List"}, "-List must be used with the -SoftMgt flag."},
        {{"-Check"}, "-Check must be used with the -SoftMgt flag."},
        {{"-Commit"}, "-Commit must be used with the -SoftMgt flag."},
        {{"-Check", "-Rollback"}, "-Rollback must be used with the -SoftMgt flag."},
    };
    for (const auto& [arguments, text] : rows) {
        test::journal.clear();
        EXPECT_THROW(ParseOptions(arguments), test::ProcessExit);
        EXPECT_THAT(test::journal, ElementsAre("error: " + text));
    }
}

TEST_F(LaunchOptionsTest, MissesAValueAtANullArgument) {
    const wchar_t* const argv[] = {L"setup.exe", L"-installerPath", nullptr, nullptr};
    EXPECT_THROW(LaunchOptions(3, argv, "ZEPInsAppliGUI.exe", true, false), test::ProcessExit);
    EXPECT_THAT(test::journal, ElementsAre("error: Bad -installerPath argument"));
}

TEST_F(LaunchOptionsTest, KeepsTheAssignmentsInFrontOfABadArgument) {
    EXPECT_THROW(ParseOptions({"-env", "LAUNCHER_TEST=kept", "-env"}), test::ProcessExit);
    EXPECT_EQ(GetEnvVar("LAUNCHER_TEST"), "kept");
}

}  // namespace
}  // namespace launcher
