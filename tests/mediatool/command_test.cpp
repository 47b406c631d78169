// mediatool from outside: its command line, exit codes, streams and JSON.

#include <nlohmann/json.hpp>

#include "tests/mediatool/command.h"
#include "tests/mediatool/support/mediatool_run.h"
#include "tests/mediatool/support/sample_media.h"
#include "tests/support/links.h"

namespace launcher::test {
namespace {

TEST_F(Command, ValidateOfACleanMedia) {
    const Json output = Output({"validate", media.Text(), "--json"});
    EXPECT_EQ(output["clean"], true);
    EXPECT_EQ(output["volumes"]["layout"], "not-split");
    EXPECT_EQ(output["media"], Json::array({media.Text()}));
}

TEST_F(Command, ValidateOfAMediaWithMistakes) {
    media
        .Write("inst/volumes.txt",
               "\xEF\xBB\xBF"
               "2\r\n")
        .Write("1.txt", "mtbdir=\xE9\r\n");
    const Json output = Output({"validate", media.Text(), "--json"}, 1);
    EXPECT_EQ(output["clean"], false);
    EXPECT_EQ(output["copiesInstaller"], true);
    EXPECT_EQ(output["findings"][0]["severity"], "error");
}

TEST_F(Command, ValidateThatIsStrict) {
    media.Write("StartTUI.exe");
    EXPECT_EQ(Output({"validate", media.Text(), "--json"})["clean"], true);
    const Json output = Output({"validate", "--strict", media.Text(), "--json"}, 1);
    EXPECT_EQ(output["clean"], false);
    EXPECT_EQ(output["errors"], 0);
    EXPECT_THAT(Run({"validate", "--help"}).output, testing::HasSubstr("or warning with --strict"));
}

TEST_F(Command, ValidateOfSeveralFolders) {
    SampleMedia split(Layout::Siblings);
    const Json output =
        Output({"validate", split.Text("../2"), split.Text("../3"), split.Text(), "--json"});
    EXPECT_EQ(output["volumes"]["folders"],
              Json::array({split.Text(), split.Text("../2"), split.Text("../3")}));
}

TEST_F(Command, CreateOfEveryLayout) {
    for (const std::string layout : {"one-folder", "siblings", "outer"}) {
        const Json output = Output({"create", "--id", "SET", "--layout", layout, "--volumes", "3",
                                    "--json", scratch.Text(layout)});
        EXPECT_EQ(output["layout"], layout);
        EXPECT_EQ(output["written"].size(), layout == "outer" ? 7u : 4u);
    }
}

TEST_F(Command, CreateWithContent) {
    scratch.Write("one/a.bin", "123");
    scratch.Write("[two]/b.bin", "45");
    const Json output = Output({"create", "--id", "SET", "--layout", "siblings", "--volumes", "2",
                                "--from", scratch.Text("one"), "--from", scratch.Text("[two]"),
                                "--json", scratch.Text("out")});
    EXPECT_EQ(output["copied"]["files"], 2);
    EXPECT_EQ(output["copied"]["bytes"], 5);
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\2\\b.bin"))), "45");
}

TEST_F(Command, CreateThatIsRefused) {
    scratch.Write("1.txt");
    const MediatoolRun run =
        Run({"create", "--id", "SET", "--layout", "one-folder", "--volumes", "2", scratch.Text()});
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_EQ(run.errors, "mediatool: \"" + scratch.Text("1.txt") +
                              "\" is there already; --force writes over it.\n");
}

TEST_F(Command, WrongUse) {
    EXPECT_THAT(Complaint({}), StartsWith("mediatool: "));
    EXPECT_EQ(
        Complaint({"burn", "--fast"}),
        "mediatool: There is no command \"burn\"; there are run, dry-run, validate and create.\n");
    EXPECT_THAT(Complaint({"validate"}), HasSubstr("media is required"));
    EXPECT_THAT(Complaint({"validate", "--fast", media.Text()}), HasSubstr("--fast"));
    EXPECT_THAT(Complaint({"validate", scratch.Text("keine Größe")}), HasSubstr("keine Größe"));
    EXPECT_THAT(Complaint({"validate", scratch.Text()}), HasSubstr("no launcher (setup.exe)"));
    EXPECT_THAT(Complaint({"validate", media.Text(), "--", "-wait"}),
                HasSubstr("Only run and dry-run"));
    EXPECT_THAT(Complaint({"dry-run", scratch.Text()}), HasSubstr("no launcher (setup.exe)"));
    EXPECT_THAT(Complaint({"dry-run", media.Text(), "--windows", "XP"}), HasSubstr("XP"));
    EXPECT_THAT(Complaint({"dry-run", media.Text(), "--env", "=x"}), HasSubstr("NAME=VALUE"));
    EXPECT_THAT(Complaint({"dry-run", media.Text(), "--env"}), HasSubstr("--env"));
    EXPECT_THAT(Complaint({"dry-run", media.Text(), "-wait"}),
                HasSubstr("the launcher's own arguments go after --"));
    EXPECT_EQ(Complaint({"dry-run", media.Text(), "--temp", "C:\\a", "--env", "Temp=C:\\b"}),
              "mediatool: --temp and --env Temp=... contradict each other.\n");
    EXPECT_EQ(Complaint({"dry-run", media.Text(), "--pick", scratch.Text("nowhere")}),
              "mediatool: \"" + scratch.Text("nowhere") +
                  "\" cannot be picked: there is no such folder.\n");
    EXPECT_THAT(Complaint({"dry-run", media.Text(), "--pick", media.Text("setup.exe")}),
                HasSubstr("no such folder"));
    EXPECT_EQ(Complaint({"dry-run", media.Text(), "--temp", "temp"}),
              "mediatool: --temp takes a full path, not \"temp\".\n");
    EXPECT_THAT(Complaint({"create", scratch.Text("out")}), HasSubstr("--id"));
    EXPECT_THAT(Complaint({"create", "--id", "X", "--layout", "spiral", "--volumes", "2",
                           scratch.Text("out")}),
                HasSubstr("spiral"));
    EXPECT_THAT(Complaint({"validate", "--temp", "", media.Text()}), HasSubstr("full path"));
    EXPECT_THAT(
        Complaint({"create", "--id", "X", "--layout", "2", "--volumes", "2", scratch.Text("out")}),
        HasSubstr("{one-folder,siblings,outer}"));
    for (const std::string volumes : {"x", "2x", "", "99999999999"})
        EXPECT_EQ(Complaint({"create", "--id", "X", "--layout", "siblings", "--volumes", volumes,
                             scratch.Text("out")}),
                  "mediatool: --volumes takes a number from 1 to 99, not \"" + volumes + "\".\n");
    EXPECT_EQ(Complaint({"create", "--id", "X", "--layout", "outer", "--volumes", "2",
                         "--first-outer", "x", scratch.Text("out")}),
              "mediatool: --first-outer takes a number from 1 to 99, not \"x\".\n");
    for (const std::string option : {"--outer-id", "--first-outer", "--inner"})
        EXPECT_EQ(Complaint({"create", "--id", "X", "--layout", "siblings", "--volumes", "2",
                             option, "3", scratch.Text("out")}),
                  "mediatool: " + option + " goes with --layout outer only.\n");
    EXPECT_THAT(Complaint({"create", "--id", "X", "--layout", "outer", "--volumes", "2",
                           "--outer-id", "", scratch.Text("out")}),
                HasSubstr("--outer-id is empty."));
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Dir()));
}

// The launcher looks for the volumes beside that of a drive's root in the root of the current
// drive, wherever that is: what validate says must not depend on it.
TEST_F(Command, ValidateOfADriveIsTheSameFromEverywhere) {
    const SampleMedia split(Layout::Siblings);
    std::filesystem::rename(FromUtf8(split.Text("../2")), FromUtf8(split.Text("2")));
    std::filesystem::rename(FromUtf8(split.Text("../3")), FromUtf8(split.Text("3")));
    const MappedDrive drive("m:", FromUtf8(split.Text()));
    const Json output = Output({"validate", "M:", "--json"}, 1);
    EXPECT_EQ(output["findings"][0]["id"], "volumes-at-drive-root");
    EXPECT_EQ(output["volumes"]["folders"], Json::array({"M:", "M:\\2", "M:\\3"}));
    for (const wchar_t* folder : {L"M:\\", L"M:\\inst", L"C:\\"})
        for (const std::string name : {"M:", "m:\\", "M:/"}) {
            Json same = Json::parse(RunMediatool({"validate", name, "--json"}, folder).output);
            EXPECT_EQ(same["findings"].size(), output["findings"].size());
            EXPECT_EQ(same["volumes"]["layout"], "siblings");
        }
}

TEST_F(Command, HelpAndVersion) {
    EXPECT_THAT(Run({"--help"}).output, HasSubstr("dry-run"));
    EXPECT_THAT(Run({"validate", "--help"}).output, HasSubstr("Exit code: 0 clean"));
    EXPECT_THAT(Run({"--version"}).output, StartsWith("mediatool 1."));
    EXPECT_EQ(Run({"--help"}).exitCode, 0u);
    EXPECT_THAT(Run({"create", "--help"}).output, HasSubstr("{one-folder,siblings,outer}"));
}

}  // namespace
}  // namespace launcher::test
