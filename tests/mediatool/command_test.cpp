// mediatool from outside: its command line, exit codes, streams and JSON.

#include <nlohmann/json.hpp>
#include <sstream>

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
    const Json notes = Output({"validate", "--strict", media.Text(), "--json"});
    EXPECT_EQ(notes["clean"], true);
    EXPECT_GT(notes["notes"], 0);
    media.Write("StartTUI.exe");
    EXPECT_EQ(Output({"validate", media.Text(), "--json"})["clean"], true);
    const Json output = Output({"validate", "--strict", media.Text(), "--json"}, 1);
    EXPECT_EQ(output["clean"], false);
    EXPECT_EQ(output["errors"], 0);
    EXPECT_THAT(Run({"validate", "--strict", media.Text()}).output,
                HasSubstr("; not clean, since warnings count (--strict)\n"));
    EXPECT_THAT(Run({"validate", "--help"}).output, testing::HasSubstr("or warning with --strict"));
}

TEST_F(Command, FlagsMayBeGivenAgain) {
    EXPECT_EQ(Output({"validate", "--json", media.Text(), "--json"})["clean"], true);
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

TEST_F(Command, CreateOfNamedOuterVolumes) {
    const Json output =
        Output({"create", "--id", "SET", "--layout", "outer", "--volumes", "1", "--outer-id",
                "OUTER", "--first-outer", "5", "--inner", "a", "--json", scratch.Text("out")});
    EXPECT_EQ(output["folders"], Json::array({scratch.Text("out\\5\\a\\1")}));
    EXPECT_EQ(output["outerId"], "OUTER");
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

TEST_F(Command, CreateThatIsDry) {
    scratch.Write("one/a.bin", "123");
    const Json output =
        Output({"create", "--id", "SET", "--layout", "siblings", "--volumes", "1", "--from",
                scratch.Text("one"), "--checksums", "--dry-run", "--json", scratch.Text("out")});
    EXPECT_EQ(output["dryRun"], true);
    EXPECT_EQ(output["files"].size(), 4u);
    EXPECT_EQ(output["totals"]["copy"]["bytes"], 3);
    EXPECT_FALSE(std::filesystem::exists(FromUtf8(scratch.Text("out"))));
}

TEST_F(Command, CreateOfAnUnfinishedSet) {
    scratch.Write("out/1/mediatool-unfinished.txt");
    scratch.Write("out/1/1.txt", "MTBDIR=SET\r\n");
    const Json output = Output({"create", "--id", "SET", "--layout", "siblings", "--volumes", "1",
                                "--checksums", "--json", scratch.Text("out")});
    EXPECT_EQ(output["kept"], 1);
    EXPECT_EQ(output["checksums"], Json::array({scratch.Text("out\\1\\SHA256SUMS")}));
}

TEST_F(Command, ChecksumOfAMedia) {
    const Json output = Output({"checksum", media.Text(), "--json"});
    EXPECT_EQ(output["written"], Json::array({media.Text("SHA256SUMS")}));
    EXPECT_GT(output["files"], 5);
    const MediatoolRun again = Run({"checksum", media.Text()});
    EXPECT_EQ(again.exitCode, 1u);
    EXPECT_EQ(again.errors, "mediatool: \"" + media.Text("SHA256SUMS") +
                                "\" is there already; --force writes over it.\n");
}

TEST_F(Command, ValidateWithAndWithoutChecksums) {
    EXPECT_EQ(Output({"validate", media.Text(), "--json"})["verified"]["files"], 0);
    ASSERT_EQ(Run({"checksum", media.Text()}).exitCode, 0u);
    EXPECT_GT(Output({"validate", media.Text(), "--json"})["verified"]["files"], 5);
    EXPECT_THAT(Run({"validate", media.Text()}).output, HasSubstr(" checksums verified, "));
    media.Write("media.db", "damaged");
    EXPECT_EQ(Output({"validate", media.Text(), "--json"}, 1)["errors"], 1);
    Output({"validate", media.Text(), "--no-content", "--json"}, 0);
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
    EXPECT_EQ(
        Complaint({"burn", "--fast"}),
        "mediatool: There is no command \"burn\"; there are run, dry-run, validate, create and "
        "checksum.\n");
    EXPECT_EQ(Complaint({"validate", "--fast", media.Text()}),
              "mediatool: There is no option \"--fast\".\n");
    EXPECT_THAT(
        Complaint({"validate", scratch.Text("keine Größe")}),
        StartsWith("mediatool: \"" + scratch.Text("keine Größe") + "\" cannot be opened: "));
    for (const std::string command : {"validate", "dry-run"})
        EXPECT_EQ(Complaint({command, scratch.Text()}),
                  "mediatool: \"" + scratch.Text() + "\" has no launcher (setup.exe) in it.\n");
    EXPECT_EQ(Complaint({"validate", media.Text(), "--", "-wait"}),
              "mediatool: Only run and dry-run take arguments of the launcher, after --.\n");
    for (const std::string variable : {"=x", "x", ""})
        EXPECT_EQ(Complaint({"dry-run", media.Text(), "--env", variable}),
                  "mediatool: --env takes NAME=VALUE, not \"" + variable + "\".\n");
    EXPECT_EQ(Complaint({"dry-run", media.Text(), "--env"}),
              "mediatool: --env is there without its value.\n");
    EXPECT_EQ(Complaint({"dry-run", media.Text(), "-wait"}),
              "mediatool: There is no option \"-wait\" (the launcher's own arguments go after "
              "--).\n");
    EXPECT_EQ(Complaint({"dry-run", media.Text(), "--temp", "C:\\a", "--env", "Temp=C:\\b"}),
              "mediatool: --temp and --env Temp=... contradict each other.\n");
    EXPECT_EQ(Complaint({"dry-run", media.Text(), "--pick", scratch.Text("nowhere")}),
              "mediatool: \"" + scratch.Text("nowhere") +
                  "\" cannot be picked: there is no such folder.\n");
    EXPECT_EQ(Complaint({"dry-run", media.Text(), "--pick", media.Text("setup.exe")}),
              "mediatool: \"" + media.Text("setup.exe") +
                  "\" cannot be picked: there is no such folder.\n");
    EXPECT_EQ(Complaint({"dry-run", media.Text(), "--temp", "temp"}),
              "mediatool: --temp takes a full path, not \"temp\".\n");
    EXPECT_EQ(Complaint({"create", "--id", "X", "--layout", "outer", "--volumes", "2",
                         scratch.Text("out"), scratch.Text("more")}),
              "mediatool: \"" + scratch.Text("more") +
                  "\" is one argument too many; a path with blanks needs quotes.\n");
    EXPECT_EQ(Complaint({"create", scratch.Text("out")}),
              "mediatool: --id is required; mediatool help create tells more.\n");
    for (const std::string layout : {"spiral", "2"})
        EXPECT_EQ(Complaint({"create", "--id", "X", "--layout", layout, "--volumes", "2",
                             scratch.Text("out")}),
                  "mediatool: --layout: one-folder, siblings or outer, not \"" + layout + "\".\n");
    for (const std::string temp : {"", "Temp"})
        EXPECT_EQ(Complaint({"validate", "--temp", temp, media.Text()}),
                  "mediatool: --temp takes the full path of a folder, such as C:\\Temp, not \"" +
                      temp + "\".\n");
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
    EXPECT_EQ(Complaint({"create", "--id", "X", "--layout", "outer", "--volumes", "2", "--outer-id",
                         "", scratch.Text("out")}),
              "mediatool: --outer-id is empty.\n");
    EXPECT_TRUE(std::filesystem::is_empty(scratch.Dir()));
}

TEST_F(Command, WrongUseOfOptions) {
    const std::string folder = media.Text();
    EXPECT_EQ(Complaint({}),
              "mediatool: The command is missing; there are run, dry-run, validate, create and "
              "checksum.\n");
    EXPECT_EQ(
        Complaint({"--all", "validate"}),
        "mediatool: The command has to stand before \"--all\"; there are run, dry-run, validate, "
        "create and checksum.\n");
    EXPECT_EQ(Complaint({"validate"}),
              "mediatool: media is required; mediatool help validate tells more.\n");
    EXPECT_EQ(Complaint({"validate", folder, "--temp"}),
              "mediatool: --temp is there without its value.\n");
    EXPECT_EQ(Complaint({"dry-run", "--temp", "--all", folder}),
              "mediatool: --temp is there without its value.\n");
    EXPECT_EQ(Complaint({"validate", folder, "--temp", "C:\\a", "--temp=C:\\b"}),
              "mediatool: --temp is given twice.\n");
    EXPECT_EQ(Complaint({"validate", folder, "--json=yes"}), "mediatool: --json takes no value.\n");
    EXPECT_EQ(Complaint({"dry-run", folder, "b"}),
              "mediatool: \"b\" is one argument too many; a path with blanks needs quotes (the "
              "launcher's own arguments go after --).\n");
    EXPECT_EQ(Complaint({"dry-run", folder, "--windows", "XP"}),
              "mediatool: --windows: 7, 8, 8.1, 10 or 11, not \"XP\".\n");
    EXPECT_EQ(Complaint({"dry-run", "--windows=XP", folder}),
              "mediatool: --windows: 7, 8, 8.1, 10 or 11, not \"XP\".\n");
    EXPECT_EQ(Complaint({"validate", "-x", folder}), "mediatool: There is no option \"-x\".\n");
    EXPECT_THAT(Complaint({"validate", "-"}), HasSubstr("\\-\" cannot be opened: "));
    EXPECT_EQ(Complaint({"dry-run", folder, "--env", "X=1", "--env", "x=2"}),
              "mediatool: --env x=... is given twice.\n");
    EXPECT_EQ(Complaint({"dry-run", folder, "--temp", "C:temp"}),
              "mediatool: --temp takes a full path, not \"C:temp\".\n");
}

TEST_F(Command, WrongUseThatMayBeASlip) {
    const std::string folder = media.Text();
    EXPECT_EQ(Complaint({"validat", folder}),
              "mediatool: There is no command \"validat\"; did you mean validate?\n");
    EXPECT_EQ(Complaint({"rnu", folder}),
              "mediatool: There is no command \"rnu\"; did you mean run?\n");
    // Too few letters for a beginning; two too many, two missing, three pairs that changed places.
    for (const std::string none : {"nru", "va", "rrunn", "crte", "rcaeet"})
        EXPECT_EQ(Complaint({none, folder}),
                  "mediatool: There is no command \"" + none +
                      "\"; there are run, dry-run, validate, create and checksum.\n");
    for (const std::string run : {"ron", "urn", "ru"})
        EXPECT_EQ(Complaint({run, folder}),
                  "mediatool: There is no command \"" + run + "\"; did you mean run?\n");
    EXPECT_EQ(Complaint({"reate", folder}),
              "mediatool: There is no command \"reate\"; did you mean create?\n");
    EXPECT_EQ(Complaint({"valdte", folder}),
              "mediatool: There is no command \"valdte\"; did you mean validate?\n");
    EXPECT_EQ(Complaint({"val", folder}),
              "mediatool: There is no command \"val\"; did you mean validate?\n");
    EXPECT_EQ(Complaint({"DryRun", folder}),
              "mediatool: There is no command \"DryRun\"; did you mean dry-run?\n");
    EXPECT_EQ(Complaint({"validate", folder, "--frobnicate"}),
              "mediatool: There is no option \"--frobnicate\".\n");
    EXPECT_EQ(Complaint({"validate", folder, "--JSON"}),
              "mediatool: There is no option \"--JSON\"; did you mean --json?\n");
    EXPECT_EQ(
        Complaint({"dry-run", folder, "--wind", "7"}),
        "mediatool: There is no option \"--wind\"; did you mean --windows (the launcher's own "
        "arguments go after --)?\n");
}

TEST_F(Command, WrongUseOfABackslashBeforeAQuote) {
    for (const std::string command : {"validate", "dry-run"})
        EXPECT_EQ(Complaint({command, "M:\\My Media\" --json"}),
                  "mediatool: The path M:\\My Media\"... has a quote in it: a backslash before the "
                  "closing quote, as in \"M:\\My Media\\\", does that; leave it out.\n");
    EXPECT_EQ(
        Complaint({"validate", media.Text(), "--temp", "C:\\Te mp\" x"}),
        "mediatool: The path C:\\Te mp\"... has a quote in it: a backslash before the closing "
        "quote, as in \"C:\\Te mp\\\", does that; leave it out.\n");
    EXPECT_THAT(Run({"dry-run", media.Text(), "--env", "X=\"a\""}).errors, "");
}

TEST_F(Command, ComplaintsSendNoControlCharacters) {
    EXPECT_EQ(Complaint({"\x1B[2Jburn\r\n"}),
              "mediatool: There is no command \"\\x1B[2Jburn\\x0D\\x0A\"; there are run, dry-run, "
              "validate, create and checksum.\n");
}

TEST_F(Command, ComplaintsAreJsonToo) {
    const auto complaint = [this](const std::vector<std::string>& arguments, int exitCode) {
        const MediatoolRun run = Run(arguments);
        const Json output = Json::parse(run.output);
        EXPECT_EQ(SchemaComplaints(output), "");
        EXPECT_EQ(output["exitCode"], exitCode);
        EXPECT_EQ(run.exitCode, static_cast<unsigned long>(exitCode));
        EXPECT_EQ("mediatool: " + output["error"].get<std::string>() + "\n", run.errors);
        return output["command"];
    };
    EXPECT_EQ(complaint({"validate", "nowhere", "--json"}, 2), "validate");
    EXPECT_EQ(complaint({"dry-run", "nowhere", "--json"}, 2), "dry-run");
    EXPECT_EQ(complaint({"create", "--json"}, 2), "create");
    EXPECT_EQ(complaint({"run", "nowhere", "--json"}, 125), "run");
    EXPECT_EQ(complaint({"burn", "--json"}, 2), nullptr);
    scratch.Write("1.txt");
    EXPECT_EQ(complaint({"create", "--id", "X", "--layout", "one-folder", "--volumes", "2",
                         "--json", scratch.Text()},
                        1),
              "create");
}

// As PowerShell reads it, in whatever code page.
TEST_F(Command, JsonIsAscii) {
    const std::string folder = scratch.Text("Größe");
    std::filesystem::copy(FromUtf8(media.Text()), FromUtf8(folder),
                          std::filesystem::copy_options::recursive);
    for (const std::string command : {"validate", "dry-run"}) {
        const std::string output = Run({command, folder, "--json"}).output;
        EXPECT_TRUE(std::ranges::all_of(output, [](char c) { return c >= 0 && c < 127; }));
        EXPECT_NE(output.find("Gr\\u00f6\\u00dfe"), std::string::npos) << output;
    }
    const std::string created = Run({"create", "--id", "Größe", "--layout", "siblings", "--volumes",
                                     "2", "--json", scratch.Text("é")})
                                    .output;
    EXPECT_TRUE(std::ranges::all_of(created, [](char c) { return c >= 0 && c < 127; })) << created;
    EXPECT_NE(created.find("\\u00e9"), std::string::npos) << created;
}

TEST_F(Command, PathsMayBeginWithASlash) {
    std::string path = media.Text().substr(2);
    std::ranges::replace(path, '\\', '/');
    ASSERT_EQ(path.front(), '/');
    const MediatoolRun run =
        RunMediatool({"validate", path, "--json"}, FromUtf8(media.Text()).root_path());
    EXPECT_EQ(run.exitCode, 0u) << run.errors;
    EXPECT_EQ(Json::parse(run.output)["media"], Json::array({media.Text()}));
    EXPECT_THAT(Complaint({"validate", "/json"}), HasSubstr("\\json\""));
}

TEST_F(Command, PathsMayBeInBrackets) {
    for (const std::string name : {"Set", "[Set]"})
        std::filesystem::copy(FromUtf8(media.Text()), scratch.Dir() / name,
                              std::filesystem::copy_options::recursive);
    EXPECT_EQ(Output({"checksum", "[Set]", "--json"})["written"],
              Json::array({scratch.Text("[Set]\\SHA256SUMS")}));
    EXPECT_EQ(Output({"validate", "[Set]", "--json"})["media"],
              Json::array({scratch.Text("[Set]")}));
    EXPECT_EQ(Output({"dry-run", "[Set]", "--json"})["launcher"], scratch.Text("[Set]\\setup.exe"));
    EXPECT_THAT(Complaint({"validate", "[a,b]"}), HasSubstr("\\[a,b]\" cannot be opened"));
}

TEST_F(Command, PickThatIsNotNeededIsSaid) {
    const MediatoolRun run = Run({"dry-run", media.Text(), "--pick", scratch.Text()});
    EXPECT_EQ(run.errors,
              "mediatool: --pick changes nothing: no folder dialog comes in this run.\n");
    media.Remove("inst/win_b64");
    EXPECT_EQ(Run({"dry-run", media.Text(), "--pick", scratch.Text()}).errors, "");
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

// With single blanks: how the lines are set is the library's.
std::string Words(const std::string& text) {
    std::istringstream stream(text);
    std::string words;
    for (std::string word; stream >> word;)
        words += word + " ";
    return words;
}

// Every sentence, below the name of its command: a change of one is a decision.
TEST_F(Command, HelpSaysWhatTheListHas) {
    std::istringstream list(ReadFile(FromUtf8(SOURCE_FOLDER) / "tests" / "mediatool" / "help.txt"));
    std::string help;
    std::size_t commands = 0;
    for (std::string line; std::getline(list, line);) {
        if (!line.starts_with("==")) {
            EXPECT_THAT(help, HasSubstr(Words(line)));
            continue;
        }
        ++commands;
        std::vector<std::string> asked = {"--help"};
        if (line.size() > 3) asked.insert(asked.begin(), line.substr(3));
        help = Words(Run(asked).output);
    }
    EXPECT_EQ(commands, 6u);
}

TEST_F(Command, HelpAndVersion) {
    EXPECT_THAT(Run({"--help"}).output, HasSubstr("dry-run"));
    EXPECT_THAT(Run({"--help"}).output, HasSubstr("Usage: mediatool [OPTIONS] SUBCOMMAND\n"));
    EXPECT_THAT(Run({"validate", "--help"}).output, HasSubstr("Exit code: 0 clean"));
    EXPECT_EQ(Run({"--version"}).output, "mediatool " LAUNCHER_VERSION "\n");
    EXPECT_EQ(Run({"--help"}).exitCode, 0u);
    for (const std::vector<std::string>& asked :
         std::vector<std::vector<std::string>>{{"help"},
                                               {"/?"},
                                               {"-?"},
                                               {"-h"},
                                               {"/help"},
                                               {"help", "help"},
                                               {"help", "/help"},
                                               {"help", "/?"},
                                               {"--help", "validate"}})
        EXPECT_EQ(Run(asked).output, Run({"--help"}).output) << asked.front();
    for (const std::vector<std::string>& asked :
         std::vector<std::vector<std::string>>{{"help", "run"},
                                               {"help", "run", "/?"},
                                               {"run", "/?"},
                                               {"run", "M:\\", "-h"},
                                               {"run", "--jsn", "-?"}})
        EXPECT_EQ(Run(asked).output, Run({"run", "--help"}).output) << asked.front();
    EXPECT_THAT(Complaint({"help", "runn"}), HasSubstr("did you mean run?"));
    EXPECT_EQ(
        Complaint({"help", "run", "extra"}),
        "mediatool: \"extra\" is one argument too many; help takes the name of one command.\n");
    EXPECT_THAT(Run({"help", "run"}).output,
                HasSubstr("Usage: mediatool run [OPTIONS] media [-- LAUNCHER ARGUMENTS]\n"));
    EXPECT_THAT(Run({"help", "dry-run"}).output,
                HasSubstr("Usage: mediatool dry-run [OPTIONS] media [-- LAUNCHER ARGUMENTS]\n"));
    EXPECT_THAT(Run({"run", "/?"}).output, HasSubstr("a number of seconds"));
    EXPECT_THAT(Run({"create", "--help"}).output, HasSubstr("{one-folder,siblings,outer}"));
}

}  // namespace
}  // namespace launcher::test
