// Every word, blank and line of the outputs for people, and every value of those for programs, each
// from a result in which all of it appears.

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "mediatool/create/checksum.h"
#include "mediatool/create/create.h"
#include "mediatool/validate/validate.h"
#include "tests/mediatool/seen_volumes.h"
#include "tests/mediatool/support/coloured_terminal.h"

namespace launcher::mediatool {
namespace {

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

// On a terminal that has colours: a process finds out once whether it does.
TEST(OutputOfValidateDeathTest, IsInColours) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto check = [] {
        using namespace test::colours;
        const test::ColouredTerminal terminal;
        const std::string text = TextOf(Validated()) + TextOf(Validation());
        bool isRight = true;
        for (const std::string& part :
             {kBold + "M:\\1" + kPlain + "\n",
              "\n  " + kRed + "error" + kPlain + "    " + kBold + "volume-id-empty" + kPlain + "\n",
              "\n           " + kFaint + "N:\\2\\2.txt" + kPlain + "\n",
              "\n  " + kYellow + "warning" + kPlain + "  " + kBold + "volume-id-leading-blank" +
                  kPlain,
              "\n  " + kCyan + "note" + kPlain + "     " + kBold + "launcher-64-bit-only" + kPlain +
                  ": ",
              "\n" + kRed + "1 error" + kPlain + ", " + kYellow + "1 warning" + kPlain +
                  ", 1 note\n",
              "\n" + kGreen + "clean" + kPlain + "\n"})
            isRight = isRight && text.find(part) != std::string::npos;
        std::exit(isRight ? 0 : 1);
    };
    EXPECT_EXIT(check(), testing::ExitedWithCode(0), "");
}

TEST(OutputOfValidate, OfACleanMedia) {
    Validation validation;
    validation.media = {"M:"};
    EXPECT_EQ(TextOf(validation),
              "M:\n"
              "  one volume; the installer runs from the media\n"
              "\n"
              "clean\n");
    validation.verified = {"", 1, 0, 1, 0};
    EXPECT_EQ(TextOf(validation),
              "M:\n"
              "  one volume; the installer runs from the media\n"
              "  1 checksum verified, 1 byte\n"
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
    Json rest = JsonOf(validation);
    rest.erase("findings");
    EXPECT_EQ(rest, Json::parse(R"({
        "schema": 1, "command": "validate", "media": ["M:\\1", "N:\\2"], "clean": false,
        "errors": 1, "warnings": 1, "notes": 1,
        "volumes": {"count": 2, "layout": "siblings", "folders": ["M:\\1", "M:\\2"]},
        "copiesInstaller": false, "verified": {"files": 3, "bytes": 4567}})"));
    const Json json = JsonOf(validation);
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
    creation.copiedFiles = 1;
    creation.copiedBytes = 1003;
    creation.keptFiles = 1;
    creation.files = {{Fate::New, "O:\\a", "F:\\a", 1000},
                      {Fate::New, "O:\\b", "F:\\b", 3},
                      {Fate::Replaced, "O:\\c", "F:\\c", 50},
                      {Fate::Kept, "O:\\d", "F:\\d", 600},
                      {Fate::New, "O:\\e", "", 1}};
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
              "1 file copied, 1003 bytes\n");
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
              "write: 1 file, 1 byte\n");
}

TEST(OutputOfCreate, ForPrograms) {
    CreateRequest request;
    request.id = "SET";
    request.checksums = true;
    EXPECT_EQ(JsonOf(Created(), request), Json::parse(R"({
        "schema": 1, "command": "create", "id": "SET", "outerId": "OUTER", "layout": "outer",
        "folders": ["O:\\7\\media\\1", "O:\\8\\media\\2"],
        "written": ["O:\\7\\media\\1\\1.txt", "O:\\8\\media\\2\\2.txt"],
        "copied": {"files": 1, "bytes": 1003}, "kept": 1,
        "checksums": ["O:\\7\\media\\1\\SHA256SUMS"]})"));
    EXPECT_EQ(JsonOfDry(Created(), request), Json::parse(R"({
        "schema": 1, "command": "create", "id": "SET", "outerId": "OUTER", "layout": "outer",
        "folders": ["O:\\7\\media\\1", "O:\\8\\media\\2"], "dryRun": true,
        "files": [
            {"action": "copy", "path": "O:\\a", "source": "F:\\a", "bytes": 1000},
            {"action": "copy", "path": "O:\\b", "source": "F:\\b", "bytes": 3},
            {"action": "replace", "path": "O:\\c", "source": "F:\\c", "bytes": 50},
            {"action": "keep", "path": "O:\\d", "source": "F:\\d", "bytes": 600},
            {"action": "write", "path": "O:\\e", "source": null, "bytes": 1}],
        "totals": {
            "copy": {"files": 2, "bytes": 1003}, "keep": {"files": 1, "bytes": 600},
            "replace": {"files": 1, "bytes": 50}, "write": {"files": 1, "bytes": 1}}})"));
    Creation creation = Created();
    creation.outerId.clear();
    creation.keptFiles = 0;
    creation.files.clear();
    request.checksums = false;
    const Json json = JsonOf(creation, request);
    EXPECT_EQ(json["outerId"], Json());
    EXPECT_FALSE(json.contains("kept"));
    EXPECT_FALSE(json.contains("checksums"));
    EXPECT_EQ(JsonOfDry(creation, request)["totals"], Json::parse(R"({
        "copy": {"files": 0, "bytes": 0}, "keep": {"files": 0, "bytes": 0},
        "replace": {"files": 0, "bytes": 0}, "write": {"files": 0, "bytes": 0}})"));
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

}  // namespace
}  // namespace launcher::mediatool
