// Dry runs, from outside.

#include <windows.h>

#include "mediatool/dry_run/dry_run.h"
#include "tests/e2e/support/media.h"
#include "tests/mediatool/command.h"
#include "tests/support/hook.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

constexpr char kInstaller[] = "inst/win_b64/code/bin/ZEPInsAppliGUI.exe";

// The installer of the media is a program that Windows starts.
class DryRun : public Command {
  protected:
    DryRun() { CopyStandIn(FromUtf8(media.Text(kInstaller))); }

    // The same, with a volume missing: it is copied.
    static SampleMedia Incomplete() {
        SampleMedia incomplete(Layout::Siblings);
        incomplete.Remove("../3");
        CopyStandIn(FromUtf8(incomplete.Text(kInstaller)));
        return incomplete;
    }

    Json Dry(const SampleMedia& of, const std::vector<std::string>& options = {}) const {
        std::vector<std::string> line = {"dry-run", of.Text(), "--json", "--admin", "yes"};
        line.insert(line.end(), options.begin(), options.end());
        return Output(line);
    }

    // The system's code in the box about a process that cannot be created; 0 for none.
    static unsigned StartError(const Json& dry) {
        EXPECT_EQ(dry["started"], dry["commandLine"].is_string());
        if (dry["started"]) return 0;
        EXPECT_EQ(dry["exitCode"], 1);
        EXPECT_EQ(dry["waits"], 1);
        const Json& last = dry["messages"].back();
        const std::string text = last["text"];
        EXPECT_TRUE(last["box"]);
        EXPECT_THAT(text, StartsWith("Setup failed to create process\n"));
        return static_cast<unsigned>(std::stoul(text.substr(text.find("\nrc=") + 4)));
    }

    unsigned DebugStartError(const std::string& debugProgram) const {
        return StartError(Dry(media, {"--env", "DEBUGCMD_INSTALLK7=" + debugProgram}));
    }
};

TEST_F(DryRun, OfEveryEnd) {
    const std::string folder = media.Text();
    EXPECT_EQ(Output({"dry-run", folder, "--json", "--admin", "yes"})["started"], true);
    EXPECT_EQ(Output({"dry-run", folder, "--json", "--admin", "no"})["exitCode"], 1);
    EXPECT_EQ(Output({"dry-run", folder, "--json", "--bits", "32"})["waits"], 1);
    EXPECT_EQ(Output({"dry-run", folder, "--json", "--", "-env"})["messages"][0]["text"],
              "Bad -env argument");
    const Json copied = Dry(Incomplete());
    EXPECT_EQ(copied["temporaryCopy"]["made"], true);
    EXPECT_THAT(copied["commandLine"].get<std::string>(), HasSubstr("\\{UUID}\\inst\\"));
}

TEST_F(DryRun, InTheFolderDialog) {
    media.Remove("inst/win_b64");
    Json output = Output({"dry-run", media.Text(), "--json", "--admin", "yes"});
    EXPECT_EQ(output["exitCode"], 1);
    EXPECT_EQ(output["waits"], 2);
    const SampleMedia other;
    CopyStandIn(FromUtf8(other.Text(kInstaller)));
    output = Output({"dry-run", media.Text(), "--json", "--admin", "yes", "--pick", other.Text()});
    EXPECT_EQ(output["installer"]["foundBy"], "folder-dialog");
    EXPECT_EQ(output["started"], true);
}

// The folder of the option holds nothing; that of the variable begins with the same letters.
TEST_F(DryRun, TellsWhichLookupFoundTheInstaller) {
    EXPECT_EQ(Dry(media)["installer"]["foundBy"], "current-media");
    media.Remove("inst/win_b64");
    const std::string empty = scratch.MakeDir("A");
    const std::string full = scratch.MakeDir("AB");
    AddStandInInstaller(FromUtf8(full), "win_b64");
    const auto foundBy = [this](const std::string& variable, const std::string& option) {
        return Dry(media, {"--env", "ZEP_TALVOR_Installer=" + variable, "--", "-installerPath",
                           option})["installer"]["foundBy"];
    };
    EXPECT_EQ(foundBy(full, empty), "ZEP_TALVOR_Installer");
    EXPECT_EQ(foundBy(empty, full), "-installerPath");
    EXPECT_EQ(foundBy(full, full), "-installerPath");
}

TEST_F(DryRun, WithoutATemporaryFolder) {
    const Json output = Dry(Incomplete(), {"--temp", ""});
    EXPECT_EQ(output["temporaryCopy"]["made"], false);
    EXPECT_EQ(output["exitCode"], 1);
    EXPECT_EQ(output["waits"], 2);
}

TEST_F(DryRun, PassesTheLaunchersArgumentsToTheLetter) {
    const Json output = Output({"dry-run", media.Text(), "--json", "--admin", "yes", "--env",
                                "LIST=[a,b]", "--", "[x,y]", "--", "--json", "*", "", "a\\"});
    const std::vector<std::string> arguments = output["arguments"];
    EXPECT_THAT(arguments, testing::ElementsAre("-CDpath", media.Text(), "[x,y]", "--", "--json",
                                                "*", "", "a\\"));
}

TEST_F(DryRun, ShowsTheSearchForVolumes) {
    const SampleMedia incomplete = Incomplete();
    const Json dry = Dry(incomplete);
    const auto lookup = [&](const std::string& path, bool found) {
        return testing::Contains(Json{{"path", incomplete.Text(path)}, {"found", found}});
    };
    EXPECT_THAT(dry["lookups"], lookup("1.txt", true));
    EXPECT_THAT(dry["lookups"], lookup("2.txt", false));
    EXPECT_THAT(dry["lookups"], lookup("../2/2.txt", true));
    EXPECT_THAT(dry["lookups"], lookup("../3/3.txt", false));
    EXPECT_THAT(Run({"dry-run", incomplete.Text(), "--admin", "yes"}).output,
                HasSubstr("; why: mediatool validate " + incomplete.Text() + "\n"));
}

TEST_F(DryRun, WaitsInTheConsoleThatShowsTheCommandLine) {
    const Json dry = Dry(media, {"--env", "DEBUGCMD_INSTALLK7=1"});
    EXPECT_EQ(dry["started"], true);
    EXPECT_EQ(dry["waits"], 1);
    EXPECT_EQ(dry["arguments"][0], "/k");
    EXPECT_EQ(dry["meaning"], "A console was started in place of the installer, which is not run.");
    const std::string text =
        Run({"dry-run", media.Text(), "--admin", "yes", "--env", "DEBUGCMD_INSTALLK7=1"}).output;
    EXPECT_THAT(text, HasSubstr("the installer is not run.\n           An unattended run waits"));
    EXPECT_THAT(text, HasSubstr("  pretended: administrator, DEBUGCMD_INSTALLK7; else"));
}

TEST_F(DryRun, HasNoColoursInAFile) {
    const MediatoolRun run = Run({"dry-run", media.Text(), "--admin", "yes"});
    EXPECT_EQ(run.output.find('\x1b'), std::string::npos);
}

// An older Windows has none, and of a newer one nobody knows.
TEST_F(DryRun, OfLongPathsSaysBothEndsForANewerWindowsOnly) {
    const SampleMedia incomplete = Incomplete();
    const std::string temp = scratch.Text() + "\\" + std::string(240 - scratch.Text().size(), 'x');
    EXPECT_EQ(Dry(media)["pretended"]["isWindows8OrNewer"], Json());
    for (const std::string windows : {"7", "8", "8.1", "10", "11"}) {
        const Json dry = Dry(incomplete, {"--temp", temp, "--windows", windows});
        EXPECT_EQ(dry["hints"].size(), windows.starts_with('1') ? 1u : 0u) << windows;
        EXPECT_EQ(dry["temporaryCopy"]["made"], false) << windows;
        EXPECT_EQ(dry["pretended"]["isWindows8OrNewer"], windows != "7");
    }
}

// The verdict and its exit code, which is 0 unless it is asked for.
TEST_F(DryRun, GivesItsVerdictAsExitCodeWhenAsked) {
    const auto verdict = [this](const std::vector<std::string>& options, unsigned long exitCode) {
        std::vector<std::string> line = {"dry-run", media.Text(), "--json"};
        line.insert(line.end(), options.begin(), options.end());
        EXPECT_EQ(Run(line).exitCode, 0u);
        line.emplace_back("--check");
        return Output(line, exitCode)["verdict"];
    };
    EXPECT_EQ(verdict({"--admin", "yes"}, 0), "starts");
    EXPECT_EQ(verdict({"--admin", "yes", "--env", "ZEP_TraceMsgBox=1"}, 3), "waits");
    EXPECT_EQ(verdict({"--admin", "no"}, 4), "refused");
    EXPECT_EQ(verdict({"--admin", "yes", "--env", "ZEPAdmODTMultiVolumes=1"}, 4), "refused");
}

TEST_F(DryRun, TellsWhatIsCopiedFromWhere) {
    const SampleMedia incomplete = Incomplete();
    const Json copy = Dry(incomplete, {"--temp", scratch.Text()})["temporaryCopy"];
    EXPECT_EQ(copy["removeScript"], true);
    EXPECT_EQ(copy["contents"].size(), copy["files"]);
    EXPECT_THAT(
        copy["contents"],
        testing::Contains(Json{{"path", scratch.Text("{UUID}\\media.db")},
                               {"source", incomplete.Text("media.db")},
                               {"bytes", ReadFile(FromUtf8(incomplete.Text("media.db"))).size()}}));
    EXPECT_EQ(Dry(media)["temporaryCopy"]["removeScript"], false);
    EXPECT_EQ(Dry(media)["temporaryCopy"]["contents"], Json::array());
}

TEST_F(DryRun, TellsWhatItPretendsAndWhere) {
    const SampleMedia other;
    media.Remove("inst/win_b64");
    const Json dry = Dry(
        media, {"--temp", scratch.Text(), "--env", "ZEPProcessNotAdmin=1", "--pick", other.Text()});
    EXPECT_EQ(dry["pretended"]["variables"], Json::array({"TEMP", "ZEPProcessNotAdmin"}));
    EXPECT_EQ(dry["pretended"]["picked"], other.Text());
    EXPECT_EQ(dry["workingFolder"], scratch.Text());
    EXPECT_EQ(dry["variables"]["ZEPProcessNotAdmin"]["value"], "1");
    EXPECT_EQ(Dry(media)["pretended"]["picked"], Json());
}

// Hints need more of the machine than can be pretended: they have tests of their own.
TEST_F(DryRun, TellsHintsToPrograms) {
    EXPECT_EQ(Dry(media, {"--", "-WAIT"})["hints"].size(), 1u);
    EXPECT_EQ(Dry(media)["hints"], Json::array());
    EXPECT_THAT(Run({"dry-run", media.Text(), "--", "-WAIT"}).output,
                HasSubstr("\nHints\n  \"-WAIT\" goes to the installer; "));
}

struct BadInstaller {
    const char* name;
    void (*make)(SampleMedia& media);
    unsigned error;
};
void PrintTo(const BadInstaller& row, std::ostream* stream) {
    *stream << row.name;
}

class WrongInstaller : public DryRun, public testing::WithParamInterface<BadInstaller> {};

TEST_P(WrongInstaller, IsNotStarted) {
    GetParam().make(media);
    EXPECT_EQ(StartError(Dry(media)), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, WrongInstaller,
    testing::Values(
        BadInstaller{"Text", [](SampleMedia& m) { m.Write(kInstaller, "text"); },
                     ERROR_BAD_EXE_FORMAT},
        BadInstaller{"Empty", [](SampleMedia& m) { m.Write(kInstaller); }, ERROR_BAD_EXE_FORMAT},
        BadInstaller{"HeadersOnly", [](SampleMedia& m) { m.Write(kInstaller, ProgramBytes(kX64)); },
                     ERROR_BAD_EXE_FORMAT},
        BadInstaller{"CutOff",
                     [](SampleMedia& m) {
                         std::filesystem::resize_file(FromUtf8(m.Text(kInstaller)), 5000);
                     },
                     ERROR_BAD_EXE_FORMAT},
        BadInstaller{"Library",
                     [](SampleMedia& m) { m.Write(kInstaller, ProgramBytes(kX64, true)); },
                     ERROR_BAD_EXE_FORMAT},
        BadInstaller{"OtherMachine",
                     [](SampleMedia& m) { m.Write(kInstaller, ProgramBytes(kArm64)); },
                     ERROR_EXE_MACHINE_TYPE_MISMATCH},
        BadInstaller{"Folder", [](SampleMedia& m) { m.Remove(kInstaller).MakeDir(kInstaller); },
                     ERROR_ACCESS_DENIED}),
    [](const auto& row) { return std::string(row.param.name); });

// Only its source is there.
TEST_F(DryRun, JudgesTheInstallerInTheCopyByItsSource) {
    SampleMedia incomplete = Incomplete();
    incomplete.Write(kInstaller, "text");
    const Json dry = Dry(incomplete);
    EXPECT_EQ(dry["temporaryCopy"]["made"], true);
    EXPECT_EQ(StartError(dry), unsigned{ERROR_BAD_EXE_FORMAT});
    incomplete.Remove(kInstaller).MakeDir(kInstaller);
    EXPECT_EQ(StartError(Dry(incomplete)), unsigned{ERROR_ACCESS_DENIED});
}

TEST_F(DryRun, LooksForTheDebugProgramAsWindowsDoes) {
    CopyStandIn(FromUtf8(scratch.Text("prefix.exe")));
    std::filesystem::create_directories(FromUtf8(scratch.Text("with blank")));
    CopyStandIn(FromUtf8(scratch.Text("with blank/prefix.exe")));
    scratch.Write("script.cmd", "exit\r\n");
    EXPECT_EQ(DebugStartError("1"), 0u);
    EXPECT_EQ(DebugStartError("\"" + scratch.Text("prefix.exe") + "\" -x"), 0u);
    EXPECT_EQ(DebugStartError("\"" + scratch.Text("prefix") + "\" -x"), 0u);
    EXPECT_EQ(DebugStartError(scratch.Text("with blank\\prefix.exe") + " -x"), 0u);
    EXPECT_EQ(DebugStartError("\"" + scratch.Text("script.cmd") + "\""), 0u);
    EXPECT_EQ(DebugStartError("prefix.exe"), 0u);  // in the current folder
    EXPECT_EQ(DebugStartError("no-such-program"), unsigned{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(DebugStartError("\"" + scratch.Text("nothing.exe") + "\""),
              unsigned{ERROR_FILE_NOT_FOUND});
    EXPECT_EQ(DebugStartError("\"" + scratch.Text("no folder\\nothing.exe") + "\""),
              unsigned{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(DebugStartError("\"" + scratch.Text() + "\""), unsigned{ERROR_ACCESS_DENIED});
    // More than 259 characters, on a Windows without long paths.
    const std::string tooLong = "\"" + scratch.Text(std::string(240, 'x')) + "\"";
    EXPECT_EQ(StartError(Dry(media, {"--windows", "8", "--env", "DEBUGCMD_INSTALLK7=" + tooLong})),
              unsigned{ERROR_PATH_NOT_FOUND});
}

class WrongTemp : public DryRun {
  protected:
    // On a Windows without long paths, which this one may have.
    Json DryWithTemp(const std::string& temp) const {
        return Dry(Incomplete(), {"--temp", temp, "--windows", "8"});
    }
    // The boxes of a run whose copy fails.
    std::vector<std::string> Boxes(const std::string& temp) const {
        const Json dry = DryWithTemp(temp);
        EXPECT_EQ(dry["temporaryCopy"]["made"], false);
        EXPECT_EQ(dry["started"], false);
        EXPECT_EQ(dry["exitCode"], 1);
        EXPECT_EQ(dry["waits"], 2);
        std::vector<std::string> texts;
        for (const Json& message : dry["messages"])
            if (message["box"]) texts.push_back(message["text"]);
        return texts;
    }
};

TEST_F(WrongTemp, IsAFile) {
    const std::string temp = scratch.Write("a file");
    EXPECT_THAT(Boxes(temp),
                testing::ElementsAre(
                    "Cannot copy the installer to a temporary directory: " + temp + "\\{UUID}\\",
                    StartsWith("CreateDirectory - " + temp + "\\{UUID}\\inst")));
}

TEST_F(WrongTemp, HasANameThatCannotBe) {
    EXPECT_THAT(Boxes(scratch.Text("a<b")),
                testing::Contains(StartsWith("CreateDirectory - " + scratch.Text("a<b"))));
}

// Windows drops them at the end of a path, but not before a backslash: the folder that it has made
// is not found again.
TEST_F(WrongTemp, EndsInBlanksOrDots) {
    for (const std::string name : {"one ", "two \\x", "dots..\\x", "three\\ ", "four\\..."})
        EXPECT_THAT(Boxes(scratch.Text() + "\\" + name),
                    testing::Contains(StartsWith("CreateDirectory - ")))
            << name;
    EXPECT_EQ(Dry(Incomplete(), {"--temp", scratch.Text() + "\\five\\."})["started"], true);
}

TEST_F(WrongTemp, StandsInQuotes) {
    EXPECT_THAT(Boxes("\"" + scratch.Text("new") + "\""),
                testing::Contains(StartsWith("CreateDirectory - \"")));
}

// In this process, as nobody can be kept from writing everywhere.
TEST_F(WrongTemp, MayNotBeWrittenInto) {
    const SampleMedia incomplete = Incomplete();
    const Hook<decltype(&CreateFileW)> denied(
        "CreateFileW", [](auto real, LPCWSTR name, DWORD access, auto... rest) -> HANDLE {
            if (access != FILE_ADD_SUBDIRECTORY) return real(name, access, rest...);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
    mediatool::DryRunRequest request;
    request.media = incomplete.Text();
    request.machine.isAdministrator = true;
    request.environment = {{"TEMP", scratch.Text()}};
    const mediatool::DryRun run = mediatool::RunDry(request);
    EXPECT_FALSE(run.copy.made);
    EXPECT_FALSE(run.started);
    EXPECT_THAT(run.journal.messages.back().text,
                StartsWith("CreateDirectory - " + scratch.Text("{UUID}\\inst")));
}

// Of its path in the run, that of "inst\common" has 248 characters; Windows makes folders up to
// 247.
TEST_F(WrongTemp, LeavesNoRoomForTheFoldersInIt) {
    const std::string inCopy = "\\01234567-89AB-CDEF-0123-456789ABCDEF\\inst\\common";
    const std::string base = scratch.Text() + "\\";
    const std::string temp = base + std::string(248 - inCopy.size() - base.size(), 'x');
    EXPECT_THAT(Boxes(temp), testing::Contains(StartsWith("CreateDirectory - " + temp)));
    const Json fits = DryWithTemp(temp.substr(0, temp.size() - 1));
    EXPECT_THAT(fits["messages"].back()["text"].get<std::string>(),
                Not(StartsWith("CreateDirectory - " + temp + "\\{UUID}\\inst\\common")));
}

TEST_F(DryRun, SaysWhenTheLauncherIsAnother) {
    const auto doubt = [this] { return Dry(media)["doubt"]; };
    CopyFileW(BuiltFile(SETUP_PROGRAM).c_str(), FromUtf8(media.Text("setup.exe")).c_str(), FALSE);
    EXPECT_EQ(doubt(), Json());
    media.Write("setup.exe");
    EXPECT_EQ(doubt(), "setup.exe is no Windows program.");
    media.Write("setup.exe", "text");
    EXPECT_EQ(doubt(), "setup.exe is no Windows program.");
    media.Write("setup.exe", ProgramBytes(kX64));
    EXPECT_EQ(doubt(), "setup.exe is not this launcher.");
    EXPECT_THAT(
        Run({"dry-run", media.Text(), "--admin", "yes"}).output,
        HasSubstr("\n  setup.exe is not this launcher. It may do something else than this:\n"));
}

}  // namespace
}  // namespace launcher::test
