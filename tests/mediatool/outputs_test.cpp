// Every word, blank and line of the outputs for people, and every value of those for programs, each
// from a result in which all of it appears.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "launcher/base/message.h"
#include "mediatool/create/checksum.h"
#include "mediatool/create/create.h"
#include "mediatool/dry_run/dry_run.h"
#include "mediatool/validate/validate.h"

namespace launcher::mediatool {
namespace {

LauncherView SeenAs(Layout layout, int count) {
    LauncherView view;
    view.layout = layout;
    view.count = VolumeCount{std::to_string(count), count};
    view.id = "SET";
    for (int i = 1; i <= count; ++i)
        view.folders.push_back("M:\\" + std::to_string(i));
    return view;
}

// --- validate

Validation Validated() {
    Validation validation;
    validation.media = {"M:\\1", "N:\\2"};
    validation.view = SeenAs(Layout::Siblings, 2);
    validation.verified = {"", 3, 0, 4567, 0};
    validation.findings.Add("launcher-64-bit-only", "M:\\1\\setup.exe");
    validation.findings.Add("volume-id-empty", "N:\\2\\2.txt");
    validation.findings.Add("volume-id-leading-blank", "M:\\1\\1.txt");
    return validation;
}

TEST(OutputOfValidate, ForPeople) {
    const Validation validation = Validated();
    const std::vector<Finding> found = validation.findings.Sorted();
    ASSERT_EQ(found.size(), 3u);
    std::string text =
        "M:\\1\n"
        "N:\\2\n"
        "  2 volumes side by side; the installer runs from the media\n"
        "  3 checksums verified, 4567 bytes\n"
        "\n";
    for (const auto& [label, finding] :
         {std::pair("  error    ", found[0]), std::pair("  warning  ", found[1])})
        text += label + finding.id + "\n           " + finding.what + "\n           " +
                finding.file + "\n           Why:  " + finding.why +
                "\n           Do:   " + finding.action + "\n\n";
    text += "  note     launcher-64-bit-only: " + found[2].what +
            "\n"
            "\n"
            "1 error, 1 warning, 1 note\n";
    EXPECT_EQ(TextOf(validation), text);
}

TEST(OutputOfValidate, OfACleanMedia) {
    Validation validation;
    validation.media = {"M:"};
    EXPECT_EQ(TextOf(validation),
              "M:\n"
              "  one volume; the installer runs from the media\n"
              "\n"
              "clean\n");
}

TEST(OutputOfValidate, OfEachLayout) {
    Validation validation;
    for (const auto& [layout, text] :
         {std::pair(Layout::NotSplit, "one volume; the installer runs from the media"),
          std::pair(Layout::OneFolder,
                    "4 volumes in one folder; the installer runs from the media"),
          std::pair(Layout::Siblings, "4 volumes side by side; the installer runs from the media"),
          std::pair(Layout::Outer, "4 volumes in outer volumes; the installer runs from the media"),
          std::pair(Layout::Incomplete,
                    "volumes are missing or cannot be put together; the installer is copied to the "
                    "temporary folder")}) {
        validation.view = SeenAs(layout, 4);
        EXPECT_EQ(TextOf(validation), "  " + std::string(text) + "\n\nclean\n");
    }
}

TEST(OutputOfValidate, ForPrograms) {
    const Validation validation = Validated();
    const Json json = JsonOf(validation);
    EXPECT_EQ(json["verified"], Json::parse(R"({"files": 3, "bytes": 4567})"));
    EXPECT_EQ(json["findings"][0]["severity"], "error");
    EXPECT_EQ(json["findings"][1]["severity"], "warning");
    EXPECT_EQ(json["findings"][2]["severity"], "note");
    for (std::size_t i = 0; i < 3; ++i) {
        const Finding finding = validation.findings.Sorted()[i];
        EXPECT_EQ(json["findings"][i]["id"], finding.id);
        EXPECT_EQ(json["findings"][i]["file"], finding.file);
        EXPECT_EQ(json["findings"][i]["what"], finding.what);
        EXPECT_EQ(json["findings"][i]["why"], finding.why);
        EXPECT_EQ(json["findings"][i]["action"], finding.action);
    }
}

// --- create

Creation Created() {
    Creation creation;
    creation.layout = Layout::Outer;
    creation.folders = {"O:\\7\\media\\1", "O:\\8\\media\\2"};
    creation.written = {"O:\\7\\media\\1\\1.txt", "O:\\8\\media\\2\\2.txt"};
    creation.checksums = {"O:\\7\\media\\1\\SHA256SUMS"};
    creation.outerId = "OUTER";
    creation.copiedFiles = 2;
    creation.copiedBytes = 1003;
    creation.keptFiles = 1;
    creation.files = {{Fate::New, "O:\\a", "F:\\a", 1000},
                      {Fate::New, "O:\\b", "F:\\b", 3},
                      {Fate::Replaced, "O:\\c", "F:\\c", 50},
                      {Fate::Kept, "O:\\d", "F:\\d", 600},
                      {Fate::New, "O:\\e", "", 7}};
    return creation;
}

TEST(OutputOfCreate, ForPeople) {
    Creation creation = Created();
    EXPECT_EQ(TextOf(creation),
              "2 volumes (outer), written:\n"
              "  O:\\7\\media\\1\\1.txt\n"
              "  O:\\8\\media\\2\\2.txt\n"
              "  O:\\7\\media\\1\\SHA256SUMS\n"
              "1 file of the unfinished set kept\n"
              "2 files copied, 1003 bytes\n");
    creation.copiedFiles = 0;
    creation.keptFiles = 0;
    creation.checksums.clear();
    EXPECT_EQ(TextOf(creation),
              "2 volumes (outer), written:\n"
              "  O:\\7\\media\\1\\1.txt\n"
              "  O:\\8\\media\\2\\2.txt\n");
}

TEST(OutputOfCreate, ForPeopleOfADryRun) {
    EXPECT_EQ(TextOfDry(Created()),
              "2 volumes (outer), nothing is changed:\n"
              "  copy     O:\\a\n"
              "  copy     O:\\b\n"
              "  replace  O:\\c\n"
              "  keep     O:\\d\n"
              "  write    O:\\e\n"
              "copy: 2 files, 1003 bytes\n"
              "keep: 1 file, 600 bytes\n"
              "replace: 1 file, 50 bytes\n"
              "write: 1 file, 7 bytes\n");
}

TEST(OutputOfCreate, ForPrograms) {
    CreateRequest request;
    request.id = "SET";
    request.checksums = true;
    EXPECT_EQ(JsonOf(Created(), request), Json::parse(R"({
        "schema": 1, "command": "create", "id": "SET", "outerId": "OUTER", "layout": "outer",
        "folders": ["O:\\7\\media\\1", "O:\\8\\media\\2"],
        "written": ["O:\\7\\media\\1\\1.txt", "O:\\8\\media\\2\\2.txt"],
        "copied": {"files": 2, "bytes": 1003}, "kept": 1,
        "checksums": ["O:\\7\\media\\1\\SHA256SUMS"]})"));
    EXPECT_EQ(JsonOfDry(Created(), request), Json::parse(R"({
        "schema": 1, "command": "create", "id": "SET", "outerId": "OUTER", "layout": "outer",
        "folders": ["O:\\7\\media\\1", "O:\\8\\media\\2"], "dryRun": true,
        "files": [
            {"action": "copy", "path": "O:\\a", "source": "F:\\a", "bytes": 1000},
            {"action": "copy", "path": "O:\\b", "source": "F:\\b", "bytes": 3},
            {"action": "replace", "path": "O:\\c", "source": "F:\\c", "bytes": 50},
            {"action": "keep", "path": "O:\\d", "source": "F:\\d", "bytes": 600},
            {"action": "write", "path": "O:\\e", "source": null, "bytes": 7}],
        "totals": {
            "copy": {"files": 2, "bytes": 1003}, "keep": {"files": 1, "bytes": 600},
            "replace": {"files": 1, "bytes": 50}, "write": {"files": 1, "bytes": 7}}})"));
}

// --- checksum

TEST(OutputOfChecksum, ForPeopleAndPrograms) {
    const Checksums checksums = {{"M:\\1\\SHA256SUMS", "M:\\2\\SHA256SUMS"}, 12, 3456789};
    EXPECT_EQ(TextOf(checksums),
              "12 files, 3456789 bytes; written:\n"
              "  M:\\1\\SHA256SUMS\n"
              "  M:\\2\\SHA256SUMS\n");
    EXPECT_EQ(JsonOf(checksums), Json::parse(R"({
        "schema": 1, "command": "checksum", "files": 12, "bytes": 3456789,
        "written": ["M:\\1\\SHA256SUMS", "M:\\2\\SHA256SUMS"]})"));
}

// --- dry-run

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
    run.journal.messages = {{"Plain\nmore\n", Severity::Plain, false, false, false},
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
            {"text": "Plain\nmore\n", "severity": "plain", "box": false, "dialog": false,
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

}  // namespace
}  // namespace launcher::mediatool
