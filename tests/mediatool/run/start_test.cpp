// What the launcher is started with, and what keeps it from being started.

#include "tests/mediatool/run/support/run_test.h"
#include "tests/support/links.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

class Start : public RunTest {
  protected:
    // What a program in the launcher's place saw.
    InstallerReport SeenByTheLauncher(const Words& arguments) {
        Watched(StandInAsLauncher(), arguments);
        const auto report = ReadInstallerReport(scratch.Dir() / "report");
        if (!report) throw std::runtime_error("it was not started");
        return *report;
    }
};

TEST_F(Start, GivesTheArgumentsAsTheyAre) {
    const Words arguments = {"-wait", "",           "a\"b",  "D:\\",     "D:\\a b\\", "\\\"",
                             "-env",  "Größe=漢字", "a\\\\", "ελληνικά", "*",         "%PATH%"};
    EXPECT_EQ(SeenByTheLauncher(arguments).Arguments(), arguments);
}

TEST_F(Start, KeepsTheFolderAndTheEnvironment) {
    variables["ZEP_OF_THE_CALLER"] = "Größe";
    const InstallerReport report = SeenByTheLauncher({});
    EXPECT_EQ(FromUtf8(report.folder), scratch.Dir());
    EXPECT_EQ(report.Variable("ZEP_OF_THE_CALLER"), "Größe");
}

// Not those of the caller, whose output is a file too.
TEST_F(Start, HandsOnNoFilesButTheTwoStreams) {
    const std::vector<std::string> files = SeenByTheLauncher({}).inheritedFiles;
    EXPECT_EQ(files.size(), 2u);
    for (const std::string& file : files)
        EXPECT_THAT(file, HasSubstr("\\mediatool-"));
}

TEST_F(Start, LeavesNoStreamsBehind) {
    Watched(UsualMedia(), {"-wait"});
    EXPECT_TRUE(NoneRunsBelow(scratch.Dir()));
    EXPECT_TRUE(stdfs::is_empty(temp));
}

TEST_F(Start, IsPossibleWithoutAFolderForTemporaryFiles) {
    temp = scratch.Dir() / "gone";
    EXPECT_EQ(Watched(UsualMedia(), {"-wait"}).run.exitCode, 0u);
}

class NoStart : public RunTest {
  protected:
    using Sentence = testing::Matcher<std::string>;

    // One sentence, and nothing else.
    static void ExpectComplaint(const MediatoolRun& run, DWORD exitCode, const Sentence& sentence) {
        EXPECT_EQ(run.exitCode, exitCode);
        EXPECT_EQ(run.output, "");
        const std::string name = "mediatool: ";
        ASSERT_THAT(run.errors, AllOf(StartsWith(name), EndsWith("\n")));
        const std::string told = run.errors.substr(name.size());
        EXPECT_THAT(told.substr(0, told.size() - 1), sentence);
        EXPECT_EQ(std::ranges::count(told, '\n'), 1) << told;
    }
    void ExpectRefusal(const Words& line, const Sentence& sentence) const {
        ExpectComplaint(RunMediatool(line, scratch.Dir(), Variables()), 125, sentence);
        EXPECT_FALSE(stdfs::exists(scratch.Dir() / "report"));
    }
    // The same sentence, for programs.
    static void ExpectError(const MediatoolRun& run, DWORD exitCode) {
        EXPECT_EQ(run.exitCode, exitCode);
        const Json report = Json::parse(run.output);
        EXPECT_EQ(report["command"], "run");
        EXPECT_EQ(report["exitCode"], exitCode);
        EXPECT_EQ("mediatool: " + report["error"].get<std::string>() + "\n", run.errors);
    }
};

TEST_F(NoStart, AfterBadInput) {
    const std::string media = StandInAsLauncher().Text();
    ExpectRefusal({"run"}, "media is required; mediatool help run tells more.");
    ExpectRefusal({"run", "no such folder"}, "There is no folder \"no such folder\".");
    ExpectRefusal({"run", media + "\\setup.exe"},
                  "\"" + media + "\\setup.exe\" is a file, not the folder of a medium.");
    for (const std::string option : {"-wait", "--no-such-option"})
        ExpectRefusal({"run", media, option}, "There is no option \"" + option +
                                                  "\" (the launcher's own arguments go after --).");
    ExpectRefusal({"run", media, "--time-limit", "soon"},
                  "--time-limit takes a time such as 90m, 2h or 45s, not \"soon\".");
    ExpectRefusal({"run", media, "--time-limit"}, "--time-limit is there without its value.");
    ExpectRefusal({"run", media, "--json=1"}, "--json takes no value.");
    ExpectRefusal({"run", media, "--log", ""}, "--log is empty.");
    ExpectRefusal({"run", media, "--log", media},
                  "The log \"" + media +
                      "\" lies in the media, which must stay as it is; give it another place.");
    ExpectRefusal({"run", media, "--log", "no\\such\\folder\\log.txt"},
                  StartsWith("The log \"no\\such\\folder\\log.txt\" cannot be written: "));
}

TEST_F(NoStart, WithALogThatIsADevice) {
    const std::string media = StandInAsLauncher().Text();
    for (const std::string& log :
         {std::string("CON"), std::string("com1"), std::string("LPT1.txt"),
          std::string("com\xC2\xB9"), scratch.Text("aux"), std::string("\\\\.\\pipe\\log")})
        ExpectRefusal({"run", media, "--log", log},
                      "The log \"" + log + "\" is a device, not a file.");
}

TEST_F(NoStart, WithALogInTheMedia) {
    const Media media = StandInAsLauncher();
    const std::string program = ReadFile(media.Launcher());
    const auto expectRefusal = [&](const std::string& log) {
        ExpectRefusal({"run", media.Text(), "--log", log},
                      "The log \"" + log +
                          "\" lies in the media, which must stay as it is; give it another place.");
    };
    for (const std::string name : {"setup.exe", "SETUP.EXE", "new.txt", "inst/new.txt"})
        expectRefusal(media.Text() + "\\" + name);
    expectRefusal("media\\..\\media\\new.txt");
    // By names that lead to the same file. Wine tells a wrong disk for one on a mapped drive.
    const std::string hardLink = scratch.Text("link");
    stdfs::create_hard_link(media.Launcher(), FromUtf8(hardLink));
    expectRefusal(hardLink);
    const FolderLink link(scratch.Dir() / "folder", media.Root());
    expectRefusal(scratch.Text("folder\\new.txt"));
    const FolderLink deeper(scratch.Dir() / "deeper", media.Root() / "inst");
    expectRefusal(scratch.Text("deeper\\new.txt"));
    expectRefusal(scratch.Text("deeper\\no folder\\new.txt"));
    const MappedDrive drive("l:", media.Root());
    expectRefusal("L:\\setup.exe");
    expectRefusal("L:\\new.txt");
    EXPECT_EQ(ReadFile(media.Launcher()), program);
    EXPECT_FALSE(stdfs::exists(media.Root() / "new.txt"));
}

TEST_F(NoStart, IsToldToProgramsToo) {
    const Media media = EmptyMedia();
    ExpectError(Told(media, {"-wait"}, {"--json", "--log", media.Text()}), 125);
    ExpectError(Told(media, {"-wait"}, {"--json", "--no-such-option"}), 125);
    stdfs::remove(media.Root() / "setup.exe");
    ExpectError(Told(media, {"-wait"}, {"--json"}), 127);
    stdfs::create_directory(media.Root() / "setup.exe");
    ExpectError(Told(media, {"-wait"}, {"--json"}), 126);
}

// Longer by one character than Windows takes, and not: mediatool's own command line is shorter, as
// the launcher's path is full there.
TEST_F(NoStart, WithMoreArgumentsThanWindowsTakes) {
    const stdfs::path deep = scratch.Dir() / std::string(150, 'd');
    stdfs::create_directories(deep);
    const std::string launcher = "\"" + ToUtf8(deep) + "\\setup.exe\"";
    const std::string argument(32766 - launcher.size() - std::string(" \"\"").size(), 'x');
    ExpectComplaint(RunMediatool({"run", ".", "--", argument}, deep, Variables()), 127,
                    "There is no launcher " + launcher + ".");
    ExpectComplaint(RunMediatool({"run", ".", "--", argument + "x"}, deep, Variables()), 125,
                    "The launcher's arguments are longer than Windows takes.");
}

TEST_F(NoStart, OfALauncherThatIsNotThere) {
    const Media media = EmptyMedia();
    stdfs::remove(media.Root() / "setup.exe");
    ExpectComplaint(Told(media, {"-wait"}), 127,
                    "There is no launcher \"" + media.Text() + "\\setup.exe\".");
}

TEST_F(NoStart, OfALauncherThatIsNoProgram) {
    const Media media = EmptyMedia();
    WriteFile(media.Root() / "setup.exe", "text");
    // Nor is anything said of how it would be watched.
    const MediatoolRun run = Told(media, {});
    const std::string launcher = "\"" + media.Text() + "\\setup.exe\"";
    ExpectComplaint(
        run, 126,
        AllOf(StartsWith("Windows cannot start " + launcher + ": "), EndsWith(" (error 193)."),
              Not(HasSubstr("%"))));  // the place of the name in the system's text
    stdfs::remove(media.Root() / "setup.exe");
    stdfs::create_directory(media.Root() / "setup.exe");
    ExpectComplaint(Told(media, {"-wait"}), 126, launcher + " is a folder.");
}

}  // namespace
}  // namespace launcher::test
