// Every word, blank and line of the output of dry-run for people, and every value of that for
// programs, each from a run in which all of it appears.

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "launcher/base/message.h"
#include "mediatool/dry_run/dry_run.h"
#include "tests/mediatool/seen_volumes.h"
#include "tests/mediatool/support/coloured_terminal.h"

namespace launcher::mediatool {
namespace {

DryRun Rehearsed() {
    DryRun run;
    run.launcher = "M:\\setup.exe";
    run.doubt = "It is older.";
    run.arguments = {"-wait", "a b"};
    run.machine = {"M:\\setup.exe", true, false, true, true, std::nullopt, "P:\\picked"};
    run.variables = {"TEMP", "ZEP_X"};
    run.setVariables = {{"TEMP", "T:", "the temporary folder"}, {"ZEP_X", "1", "does x"}};
    run.temp = "T:";
    run.workingFolder = "M:";
    run.journal.lookups = {{"M:\\inst\\volumes.txt", false},
                           {"M:\\a", true},
                           {"M:\\b", false},
                           {"M:\\c", false},
                           {"M:\\d", false},
                           {"M:\\e", false},
                           {"M:\\f", false}};
    run.journal.messages = {{"Plain\nmore\n\r", Severity::Plain, false, false, false},
                            {"Info", Severity::Info, false, true, false},
                            {"First\r\nsecond\r\n", Severity::Warning, true, false, false},
                            {"Where is it?", Severity::Error, true, false, true}};
    run.journal.copy.contents = {{"t:\\a", {"T:\\{UUID}\\a", "M:\\a", 1000}},
                                 {"t:\\b", {"T:\\{UUID}\\b", "M:\\b", 1234567}}};
    run.journal.copy.bytes = 1235567;
    run.journal.copy.room = 1000000;
    run.journal.wroteRemoveScript = true;
    run.journal.commandLine = "inst.exe -x \"\"";
    run.exitCode = 7;
    run.exitCodeIsInstallers = true;
    run.meaning = "It means this.";
    run.verdict = Verdict::Waits;
    run.summary = "Waits in a box.";
    run.hints = {"A hint.", "Another."};
    run.started = true;
    run.installerArguments = {"-x", ""};
    run.environment = {{"NEW", std::nullopt, "1"}, {"OLD", "2", std::nullopt}};
    run.installer = {"T:\\i.exe", "M:\\i.exe", "win_b64", "-installerPath", "64-bit", ""};
    run.volumes = SeenAs(Layout::Incomplete, 3);
    run.volumes->folders = {"M:\\a b"};
    run.volumesChecked = true;
    run.copy = {true, "It is incomplete."};
    return run;
}

constexpr char kBeforeLookups[] =
    "Waits in a box.\n"
    "M:\\setup.exe -wait \"a b\"\n"
    "  pretended: Windows 8 or newer, 64-bit, no administrator, old web library, TEMP, ZEP_X; else "
    "this machine's\n"
    "  It is older. It may do something else than this:\n"
    "Hints\n"
    "  A hint.\n"
    "  Another.\n"
    "Variables that are set and that the launcher reads\n"
    "  ZEP_X = 1: does x\n"
    "Looked for\n"
    "  missing  M:\\inst\\volumes.txt\n"
    "  found    M:\\a\n"
    "  missing  M:\\b\n"
    "  missing  M:\\c\n"
    "  missing  M:\\d\n";
constexpr char kInstallerAndCopy[] =
    "Installer\n"
    "  M:\\i.exe\n"
    "  win_b64, found by -installerPath, a 64-bit program\n"
    "Volumes\n"
    "  not all of the 3 can be put together; why: mediatool validate \"M:\\a b\"\n"
    "Temporary copy\n"
    "  made: It is incomplete.\n"
    "  2 files, 1,235,567 bytes, to T:\\{UUID}\n"
    "  1,000,000 bytes are free there: too few\n";
constexpr char kCommandLineAndMessages[] =
    "Command line\n"
    "  inst.exe -x \"\"\n"
    "  argument 1  |-x|\n"
    "  argument 2  ||\n"
    "Messages\n"
    "  console  Plain\n"
    "           more\n"
    "  console  Info\n"
    "  box      First\n"
    "           second\n"
    "           An unattended run waits here for ever.\n"
    "  dialog   Where is it?\n"
    "           An unattended run waits here for ever.\n";

TEST(OutputOfDryRun, ForPeople) {
    EXPECT_EQ(TextOf(Rehearsed(), false), std::string(kBeforeLookups) +
                                              "  missing  2 more; --all shows them\n" +
                                              kInstallerAndCopy +
                                              "Environment\n"
                                              "  2 variables change for the installer; --all shows "
                                              "them\n" +
                                              kCommandLineAndMessages);
}

TEST(OutputOfDryRun, ForPeopleWhoWantAllOfIt) {
    EXPECT_EQ(TextOf(Rehearsed(), true), std::string(kBeforeLookups) +
                                             "  missing  M:\\e\n"
                                             "  missing  M:\\f\n" +
                                             kInstallerAndCopy +
                                             "  T:\\{UUID}\\a\n"
                                             "  T:\\{UUID}\\b\n"
                                             "Environment\n"
                                             "  NEW = 1\n"
                                             "      before: (not set)\n"
                                             "  OLD = (not set)\n"
                                             "      before: 2\n" +
                                             kCommandLineAndMessages);
}

TEST(OutputOfDryRun, OfARunThatDoesNotGetFar) {
    DryRun run;
    run.launcher = "M:\\setup.exe";
    run.summary = "Refused.";
    EXPECT_EQ(TextOf(run, true),
              "Refused.\n"
              "M:\\setup.exe\n"
              "  on this machine\n"
              "Looked for\n"
              "  nothing\n"
              "Installer\n"
              "  none\n"
              "Messages\n"
              "  none\n");
}

TEST(OutputOfDryRun, OfAConsoleInPlaceOfTheInstaller) {
    DryRun run;
    run.launcher = "M:\\setup.exe";
    run.summary = "Waits.";
    run.showsCommandLine = true;
    EXPECT_EQ(
        TextOf(run, true),
        "Waits.\n"
        "M:\\setup.exe\n"
        "  on this machine\n"
        "Looked for\n"
        "  nothing\n"
        "Installer\n"
        "  none\n"
        "Messages\n"
        "  console  cmd.exe shows the command line and stays open; the installer is not run.\n"
        "           An unattended run waits here for ever.\n");
}

TEST(OutputOfDryRun, ForPrograms) {
    EXPECT_EQ(JsonOf(Rehearsed()), Json::parse(R"({
        "schema": 1, "command": "dry-run", "launcher": "M:\\setup.exe", "verdict": "waits",
        "summary": "Waits in a box.", "hints": ["A hint.", "Another."], "doubt": "It is older.",
        "launcherArguments": ["-wait", "a b"], "workingFolder": "M:",
        "pretended": {
            "is64Bit": true, "isAdministrator": false, "isWindows8OrNewer": true,
            "hasOldWebLibrary": true, "temp": "T:", "variables": ["TEMP", "ZEP_X"],
            "picked": "P:\\picked"},
        "variables": {
            "TEMP": {"value": "T:", "effect": "the temporary folder"},
            "ZEP_X": {"value": "1", "effect": "does x"}},
        "exitCode": 7, "exitCodeIsInstallers": true, "meaning": "It means this.", "started": true,
        "waits": 2, "commandLine": "inst.exe -x \"\"", "arguments": ["-x", ""],
        "messages": [
            {"text": "Plain\nmore\n\r", "severity": "plain", "box": false, "dialog": false,
             "stream": "output"},
            {"text": "Info", "severity": "info", "box": false, "dialog": false,
             "stream": "errors"},
            {"text": "First\r\nsecond\r\n", "severity": "warning", "box": true, "dialog": false,
             "stream": null},
            {"text": "Where is it?", "severity": "error", "box": true, "dialog": true,
             "stream": null}],
        "environment": {
            "NEW": {"before": null, "after": "1"}, "OLD": {"before": "2", "after": null}},
        "lookups": [
            {"path": "M:\\inst\\volumes.txt", "found": false}, {"path": "M:\\a", "found": true},
            {"path": "M:\\b", "found": false}, {"path": "M:\\c", "found": false},
            {"path": "M:\\d", "found": false}, {"path": "M:\\e", "found": false},
            {"path": "M:\\f", "found": false}],
        "installer": {
            "path": "T:\\i.exe", "foundAt": "M:\\i.exe", "osFolder": "win_b64",
            "foundBy": "-installerPath", "program": "64-bit"},
        "volumes": {"count": 3, "layout": "incomplete", "folders": ["M:\\a b"]},
        "temporaryCopy": {
            "made": true, "reason": "It is incomplete.", "files": 2, "bytes": 1235567,
            "room": 1000000,
            "contents": [
                {"path": "T:\\{UUID}\\a", "source": "M:\\a", "bytes": 1000},
                {"path": "T:\\{UUID}\\b", "source": "M:\\b", "bytes": 1234567}],
            "removeScript": true}})"));
}

// Its edges: as many files as are shown, and a copy that fits to the byte.
TEST(OutputOfDryRun, OfARunWithOneOfEach) {
    DryRun run = Rehearsed();
    run.doubt.clear();
    run.hints.clear();
    run.setVariables = {{"TEMP", "T:", "the temporary folder"}};
    run.variables.clear();
    run.arguments = {"a\tb", "a\"b", "", "plain"};
    run.machine = {"M:\\setup.exe", false, true, false, false, std::nullopt, std::nullopt};
    run.journal.lookups = {{"M:\\inst\\volumes.txt", false},
                           {"M:\\inst\\volumes.txt", true},
                           {"M:\\volumes.txt", false},
                           {"M:\\c", false},
                           {"M:\\d", false}};
    run.journal.messages.clear();
    run.journal.copy.contents.erase("t:\\b");
    run.journal.copy.room = run.journal.copy.bytes;
    run.installer->foundBy = "current-media";
    run.installer->fault = "it is cut off";
    run.volumes = SeenAs(Layout::NotSplit, 1);
    run.volumesChecked = true;
    run.copy = {false, "The medium is not split."};
    run.environment.pop_back();
    run.journal.commandLine.reset();
    const std::string before =
        "Waits in a box.\n"
        "M:\\setup.exe \"a\tb\" \"a\\\"b\" \"\" plain\n"
        "  pretended: Windows 7, 32-bit, administrator; else this machine's\n"
        "Looked for\n"
        "  missing  M:\\inst\\volumes.txt, as it should be\n"
        "  found    M:\\inst\\volumes.txt\n"
        "  missing  M:\\volumes.txt\n"
        "  missing  M:\\c\n"
        "  missing  M:\\d\n"
        "Installer\n"
        "  M:\\i.exe\n"
        "  win_b64, found on the medium itself\n"
        "  Windows cannot start it: it is cut off.\n"
        "Volumes\n";
    const std::string after =
        "Temporary copy\n"
        "  none: The medium is not split.\n"
        "  1 file, 1,235,567 bytes, to T:\\{UUID}\n"
        "  1,235,567 bytes are free there\n"
        "Environment\n"
        "  1 variable change for the installer; --all shows them\n"
        "Messages\n"
        "  none\n";
    std::string text = TextOf(run, false);
    EXPECT_EQ(text, before + "  one; the medium is not split\n" + after);
    run.volumesChecked = false;
    text = TextOf(run, false);
    EXPECT_EQ(text.substr(text.find("Volumes\n")), "Volumes\n  not looked for\n" + after);
    run.journal.copy.room.reset();
    text = TextOf(run, false);
    EXPECT_EQ(text.find("free there"), std::string::npos);
    run.volumes->layout = Layout::Incomplete;
    run.volumes->count.reset();
    run.volumesChecked = true;
    EXPECT_NE(TextOf(run, false)
                  .find("\n  not all of the ? can be put together; why: mediatool "
                        "validate M:\\1\n"),
              std::string::npos);
}

// The whole text in colours, on a terminal that has them: a process finds out once whether it does.
TEST(OutputOfDryRunDeathTest, IsInColours) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto check = [] {
        using namespace test::colours;
        const test::ColouredTerminal terminal;
        DryRun run = Rehearsed();
        run.installer->fault = "it is cut off";
        const std::string text = TextOf(run, false);
        bool isRight = true;
        for (const std::string& line :
             {kYellow + "Waits in a box." + kPlain, kBold + "M:\\setup.exe -wait \"a b\"" + kPlain,
              "  " + kYellow + "It is older." + kPlain + " It may do something else than this:",
              "  " + kYellow + "A hint." + kPlain, kBold + "Looked for" + kPlain,
              "  " + kGreen + "found    " + kPlain + "M:\\a", std::string("  missing  M:\\b"),
              "  " + kRed + "Windows cannot start it: it is cut off." + kPlain,
              "  " + kRed + "1,000,000 bytes are free there: too few" + kPlain,
              "  " + kYellow + "box      " + kPlain + "First"})
            isRight = isRight && ("\n" + text).find("\n" + line + "\n") != std::string::npos;
        run.verdict = Verdict::Starts;
        isRight = isRight && TextOf(run, false).starts_with(kGreen + "Waits");
        run.verdict = Verdict::Refused;
        isRight = isRight && TextOf(run, false).starts_with(kRed + "Waits");
        std::exit(isRight ? 0 : 1);
    };
    EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
}

TEST(OutputOfDryRun, ForProgramsOfARunThatDoesNotGetFar) {
    DryRun run;
    run.launcher = "M:\\setup.exe";
    const Json nothing = Json::parse(R"({
        "schema": 1, "command": "dry-run", "launcher": "M:\\setup.exe", "verdict": "refused",
        "summary": "", "hints": [], "doubt": null, "launcherArguments": [], "workingFolder": "",
        "pretended": {
            "is64Bit": null, "isAdministrator": null, "isWindows8OrNewer": null,
            "hasOldWebLibrary": false, "temp": "", "variables": [], "picked": null},
        "variables": {}, "exitCode": 0, "exitCodeIsInstallers": false, "meaning": "",
        "started": false, "waits": 0, "commandLine": null, "arguments": [], "messages": [],
        "environment": {}, "lookups": [], "installer": null, "volumes": null,
        "temporaryCopy": {
            "made": false, "reason": "", "files": 0, "bytes": 0, "room": null, "contents": [],
            "removeScript": false}})");
    EXPECT_EQ(JsonOf(run), nothing);
    run.volumes = SeenAs(Layout::OneFolder, 2);
    EXPECT_EQ(
        JsonOf(run)["volumes"],
        Json::parse(R"({"count": 2, "layout": "not-checked", "folders": ["M:\\1", "M:\\2"]})"));
    run.verdict = Verdict::Starts;
    EXPECT_EQ(JsonOf(run)["verdict"], "starts");
    run.showsCommandLine = true;
    EXPECT_EQ(JsonOf(run)["waits"], 1);
    run.journal.messages = {{"", Severity::Error, true, false, false},
                            {"", Severity::Error, false, false, false}};
    EXPECT_EQ(JsonOf(run)["waits"], 2);
    EXPECT_EQ(JsonOf(run)["messages"][1]["severity"], "error");
}

}  // namespace
}  // namespace launcher::mediatool
