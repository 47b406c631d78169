// Every whole sentence of a dry run: its verdict, what its exit code means, its hints, the folder
// dialog, and why Windows would not start the installer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <nlohmann/json.hpp>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "launcher/base/message.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/sentences.h"
#include "mediatool/dry_run/dry_run.h"
#include "tests/mediatool/rehearsing.h"
#include "tests/support/hook.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

using mediatool::DryRun;
using mediatool::Message;
using testing::ElementsAre;
using testing::IsEmpty;

// --- the verdict, of runs that were not made

const Message kTrace = {"a trace", Severity::Info, true, false, false};
const Message kDialog = {"the dialog", Severity::Info, true, false, true};
const Message kConsole = {"Bad -env argument", Severity::Error, false, true, false};

Message Box(const std::string& text, Severity severity = Severity::Error) {
    return {text, severity, true, false, false};
}

std::string Refusal(const std::vector<Message>& messages, const std::string& fault = {}) {
    DryRun run;
    run.exitCode = 1;
    run.journal.messages = messages;
    if (!fault.empty()) run.installer = {"", "", "", "", "", fault};
    return SummaryOf(run);
}

std::string Wait(const std::vector<Message>& messages, bool inConsole = false) {
    DryRun run;
    run.started = true;
    run.showsCommandLine = inConsole;
    run.journal.messages = messages;
    return SummaryOf(run);
}

TEST(Verdicts, OfRefusalsAreWholeSentences) {
    const std::string argument =
        "the option is the last word of the command line; give it its value";
    EXPECT_EQ(Refusal({Box("Bad -env argument")}),
              "Refused, exit code 1, waits in a box: " + argument);
    EXPECT_EQ(Refusal({kConsole, kTrace, Box("Bad -env argument"), Box("unknown\r\nmore")}),
              "Refused, exit code 1, waits in 3 boxes: " + argument);
    EXPECT_EQ(Refusal({kDialog, Box("Bad -env argument")}),
              "Refused, exit code 1, waits in the folder dialog and a box: " + argument);
    EXPECT_EQ(Refusal({kDialog, kTrace, Box("Bad -env argument")}),
              "Refused, exit code 1, waits in the folder dialog and 2 boxes: " + argument);
    EXPECT_EQ(Refusal({Box("unknown\r\nmore")}), "Refused, exit code 1, waits in a box: unknown");
    EXPECT_EQ(Refusal({Box("unknown\nmore")}), "Refused, exit code 1, waits in a box: unknown");
    // Neither a warning nor the dialog is why.
    EXPECT_EQ(Refusal({Box("Bad -env argument", Severity::Warning), Box("unknown")}),
              "Refused, exit code 1, waits in 2 boxes: unknown");
    EXPECT_EQ(Refusal({{"Bad -env argument", Severity::Error, true, false, true}, Box("unknown")}),
              "Refused, exit code 1, waits in the folder dialog and a box: unknown");
    EXPECT_EQ(Refusal({kConsole, Box("unknown")}), "Refused, exit code 1, waits in a box: unknown");
    EXPECT_EQ(Refusal({Box("Cannot copy the installer to a temporary directory: T:\\"),
                       Box("CreateDirectory - T:\\\r\nmore")}),
              "Refused, exit code 1, waits in 2 boxes: CreateDirectory - T:\\; free or set TEMP, "
              "or set ZEPAdmInstDontCopyInstaller; the second message names the file");
}

TEST(Verdicts, OfAFailedStartSayWhy) {
    const std::string start =
        "Refused, exit code 1, waits in a box: Windows cannot start the "
        "installer";
    const std::string remedy =
        "; the number after rc= says why: 2 or 3 not found, 5 a folder or not allowed, 32 in use "
        "by another program, 193 no program, 206 too long a command line, 216 for another "
        "processor, 740 asks for elevation";
    const Message box = Box("Setup failed to create process\nrc=1\nx\nrc=206\nmsg=too long");
    EXPECT_EQ(Refusal({box}), start + " (code 206)" + remedy);
    EXPECT_EQ(Refusal({box}, "it is a folder"), start + ": it is a folder" + remedy);
    EXPECT_EQ(Refusal({Box("Setup failed to create process\nx")}), start + remedy);
}

TEST(Verdicts, OfWaitsAreWholeSentences) {
    const std::string medium =
        "the installer is on a medium of its own; give its folder with -installerPath FOLDER";
    EXPECT_EQ(Wait({kDialog}), "Waits in the folder dialog, then starts the installer: " + medium);
    EXPECT_EQ(Wait({kTrace}), "Waits in a box, then starts the installer: " + medium);
    EXPECT_EQ(Wait({Box("Bad -env argument", Severity::Warning)}),
              "Waits in a box, then starts the installer: the option is the last word of the "
              "command line; give it its value");
    const std::string debug = "DEBUGCMD_INSTALLK7 is set; clear that variable";
    EXPECT_EQ(Wait({}, true), "Waits in a console; no installer runs: " + debug);
    EXPECT_EQ(Wait({kTrace}, true), "Waits in a box and a console; no installer runs: " + debug);
    EXPECT_EQ(Wait({kDialog, kTrace, kTrace}, true),
              "Waits in the folder dialog and 2 boxes and a console; no installer runs: " + debug);
    DryRun run;
    run.started = true;
    run.tracesInBoxes = true;
    run.journal.messages = {kTrace};
    EXPECT_EQ(SummaryOf(run),
              "Waits in a box, then starts the installer: ZEP_TraceMsgBox is set; clear that "
              "variable");
}

TEST(Verdicts, NameAVariableOnlyWhereItIsSet) {
    const auto refusal = [](const std::string& message, const std::string& name, bool before,
                            const std::vector<mediatool::Change>& changes) {
        DryRun run;
        run.exitCode = 1;
        run.journal.messages = {Box(message)};
        if (before) run.setVariables = {{name, "1", "effect"}};
        run.environment = changes;
        const std::string summary = SummaryOf(run);
        return summary ==
               "Refused, exit code 1, waits in a box: " + name + " is set; clear that variable";
    };
    for (const auto& [message, name, lower] :
         {std::tuple("The installer must be run from an elevated Command Prompt ('Run as "
                     "administrator')",
                     "ZEPProcessNotAdmin", "zepprocessnotadmin"),
          std::tuple("This media is not for Windows operating system.",
                     "ZEPAdmInstODTinstallOSpath", "zepadminstodtinstallospath"),
          std::tuple("Setup failed to create process\nrc=2", "DEBUGCMD_INSTALLK7",
                     "debugcmd_installk7")}) {
        EXPECT_TRUE(refusal(message, name, true, {}));
        EXPECT_TRUE(refusal(message, name, true, {{"other", "1", std::nullopt}}));
        EXPECT_TRUE(refusal(message, name, false, {{lower, std::nullopt, "1"}}));
        EXPECT_FALSE(refusal(message, name, false, {}));
        EXPECT_FALSE(refusal(message, name, true, {{lower, "1", std::nullopt}}));
        EXPECT_FALSE(refusal("Bad -env argument", name, true, {}));
    }
}

// --- what the exit code means, and the rest, of rehearsed runs

class SentencesTest : public Rehearsing {
  protected:
    const SampleMedia media_ = Startable();
};

TEST_F(SentencesTest, OfTheExitCode) {
    const Variables console = {{"DEBUGCMD_INSTALLK7", "1"}};
    EXPECT_EQ(Dry(media_).meaning, "The installer was started; the launcher does not wait for it.");
    const DryRun waiting = Dry(media_, {"-wait"});
    EXPECT_EQ(waiting.meaning, "The installer's own, for which the launcher waits.");
    EXPECT_EQ(waiting.exitCode, 0);
    EXPECT_TRUE(waiting.exitCodeIsInstallers);
    EXPECT_EQ(Dry(media_, {"-wait"}, console).meaning,
              "That of the console, for which the launcher waits; no installer runs.");
    EXPECT_EQ(Dry(media_, {}, console).meaning,
              "A console was started in place of the installer, which is not run.");
    EXPECT_EQ(Dry(media_, {}, {{"ZEPAdmODTMultiVolumes", "1"}}).meaning,
              "The number of volumes, which ZEPAdmODTMultiVolumes asks for; nothing is started.");
    request_.machine.isAdministrator = false;
    EXPECT_EQ(Dry(media_).meaning, "The launcher refuses; the message says why.");
    const DryRun refused = Dry(media_, {}, console);
    EXPECT_EQ(refused.meaning, "The launcher refuses; the message says why.");
    EXPECT_EQ(refused.Waits(), 1u);
}

TEST_F(SentencesTest, OfTheFolderDialog) {
    SampleMedia without = Startable();
    without.Remove("inst/win_b64");
    const auto said = [&] {
        std::string text;
        for (const Message& message : Dry(without).journal.messages)
            if (message.dialog) {
                EXPECT_TRUE(message.box);
                EXPECT_FALSE(message.toErrors);
                EXPECT_EQ(message.severity, Severity::Info);
                text += message.text;
            }
        return text;
    };
    const std::string dialog = "The folder dialog is open, for the folder of the installer media; ";
    EXPECT_EQ(said(), dialog + "here it is cancelled.");
    request_.machine.picked = media_.Text();
    EXPECT_EQ(said(), dialog + "here \"" + media_.Text() + "\" is picked.");
    request_.machine.picked = temp_.Text();
    EXPECT_EQ(said(), dialog + "it does not let \"" + temp_.Text() +
                          "\" be picked, and is cancelled here.");
    EXPECT_EQ(Dry(without).Waits(), 2u);  // in the dialog, and as nothing is found
}

TEST_F(SentencesTest, OfWhatCannotBeRehearsed) {
    const auto complaint = [this](const SampleMedia& media) -> std::string {
        try {
            Dry(media);
        } catch (const mediatool::BadInput& bad) {
            return bad.what();
        }
        return "none";
    };
    SampleMedia media = Startable();
    media.Remove("setup.exe").MakeDir("setup.exe");
    EXPECT_EQ(complaint(media), "\"" + media.Text("setup.exe") + "\" is no program.");
    request_.machine.picked = temp_.Text("none");
    EXPECT_EQ(complaint(media_),
              "\"" + temp_.Text("none") + "\" cannot be picked: there is no such folder.");
    request_.machine.picked = temp_.Write("file");
    EXPECT_EQ(complaint(media_),
              "\"" + temp_.Text("file") + "\" cannot be picked: there is no such folder.");
}

struct Fault {
    const char* program;
    const char* fault;
    std::string content;
};

TEST_F(SentencesTest, OfEveryInstallerThatWindowsCannotStart) {
    SampleMedia media = Startable();
    const auto chosen = [&] {
        const mediatool::ChosenInstaller installer = Dry(media).installer.value();
        EXPECT_EQ(installer.foundAt, media.Text(kInstallerOfMedia));
        EXPECT_EQ(installer.osFolder, "win_b64");
        EXPECT_EQ(installer.foundBy, "current-media");
        return installer.program + ": " + installer.fault;
    };
    std::string cutOff = ReadFile(FromUtf8(media.Text(kInstallerOfMedia)));
    cutOff.resize(5000);
    EXPECT_EQ(chosen(), sizeof(void*) == 8 ? "64-bit: " : "32-bit: ");
    for (const Fault& row :
         {Fault{"library", "it is a library", ProgramBytes(kX64, true)},
          Fault{"no program", "it is no program", "text"},
          Fault{"other machine", "it is for another processor", ProgramBytes(kArm64)},
          Fault{"cut off", "the end of it is missing", cutOff}}) {
        media.Write(kInstallerOfMedia, row.content);
        EXPECT_EQ(chosen(), std::string(row.program) + ": " + row.fault);
    }
    {
        const FileHandle lock(CreateFileW(ToWide(media.Text(kInstallerOfMedia)).c_str(),
                                          GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(chosen(), "unreadable: it cannot be read");
    }
    media.Remove(kInstallerOfMedia).MakeDir(kInstallerOfMedia);
    EXPECT_EQ(chosen(), "folder: it is a folder");
}

TEST_F(SentencesTest, OfHints) {
    const SampleMedia incomplete = Incomplete();
    EXPECT_THAT(Dry(incomplete, {}, {{"TEMP", temp_.Text("Größe")}}).hints,
                ElementsAre("remove.bat cannot name the temporary folder, whose path holds letters "
                            "outside ASCII: the copy stays. Set TEMP to a folder with a plain "
                            "name."));
    EXPECT_THAT(Dry(incomplete, {}, {{"TEMP", temp_.Text("\x7F")}}).hints, IsEmpty());
    EXPECT_THAT(Dry(incomplete, {}, {{"TEMP", incomplete.Text("inst\\win_b64")}}).hints,
                ElementsAre("TEMP lies in the folder that is copied: the copy holds parts of "
                            "itself. Which ones depends on Windows and is not foreseen."));
    SampleMedia elevated = Startable();
    elevated.Write(kInstallerOfMedia, ReadFile(BuiltFile(ELEVATED_PROGRAM)));
    request_.machine.isAdministrator = false;
    const std::string asks =
        "The installer's manifest asks for elevation: Windows does not start it for a user without "
        "(code 740).";
    EXPECT_THAT(Dry(elevated, {}, {{"ZEPAdmInstAllowNotAdminUser", "1"}}).hints, ElementsAre(asks));
    EXPECT_THAT(Dry(elevated).hints, ElementsAre(asks));
    // Nobody asked for rights.
    EXPECT_THAT(Dry(elevated, {}, {{"ZEPAdmODTMultiVolumes", "1"}}).hints, IsEmpty());
}

TEST_F(SentencesTest, OfRoomThatIsMissing) {
    const SampleMedia incomplete = Incomplete();
    const std::uint64_t needed = Dry(incomplete).journal.copy.bytes;
    std::uint64_t free = needed;
    const Hook<decltype(&GetDiskFreeSpaceExW)> disk(
        "GetDiskFreeSpaceExW", [&free](auto, LPCWSTR, PULARGE_INTEGER room, auto...) {
            room->QuadPart = free;
            return TRUE;
        });
    EXPECT_TRUE(Dry(incomplete).copy.made);
    EXPECT_THAT(Dry(incomplete).hints, IsEmpty());
    for (const std::uint64_t missing : {std::uint64_t{1}, needed}) {
        free = needed - missing;
        EXPECT_FALSE(Dry(incomplete).copy.made);
        EXPECT_THAT(Dry(incomplete).hints,
                    ElementsAre("The copy needs at least " + mediatool::Grouped(missing) +
                                " bytes more than are free in " + temp_.Text() + ": " +
                                mediatool::Grouped(needed) + " instead of " +
                                mediatool::Grouped(free) + "."));
    }
    // The disk is full before the copy comes to an entry that is not there.
    SampleMedia lacking = Incomplete();
    lacking.Remove("StartTUI.exe");
    free = 0;
    const std::uint64_t rest = needed - ProgramBytes(kX64).size();
    EXPECT_THAT(Dry(lacking).hints, ElementsAre(testing::HasSubstr(": " + mediatool::Grouped(rest) +
                                                                   " instead of 0.")));
}

TEST_F(SentencesTest, OfLongPathsOfAnotherWindows) {
    const std::string base = temp_.Text() + "\\";
    const Variables longTemp = {{"TEMP", base + std::string(240 - base.size(), 'x')}};
    request_.machine.isWindows8OrNewer = true;
    EXPECT_THAT(Dry(Incomplete(), {}, longTemp).hints,
                ElementsAre("With LongPathsEnabled on that Windows, paths of more than 259 "
                            "characters are not too long there: Starts the installer, exit code 0 "
                            "at once: it does not wait for it."));
    EXPECT_THAT(Dry(Incomplete()).hints, IsEmpty());
    request_.machine.longPaths = true;
    const DryRun known = Dry(Incomplete(), {}, longTemp);
    EXPECT_TRUE(known.copy.made);
    EXPECT_THAT(known.hints, IsEmpty());
}

// Whatever a run from the copy names.
TEST_F(SentencesTest, NameNoFolderThatOnlyARehearsalHas) {
    for (const char* trace : {"", "1"}) {
        DryRun run = Dry(Incomplete(), {"-wait"}, {{"ZEP_TraceMsgBox", trace}});
        ASSERT_TRUE(run.copy.made);
        const std::string json = JsonOf(run).dump();
        EXPECT_EQ(json.find(mediatool::kPretendedUuid), std::string::npos) << json;
        EXPECT_THAT(*run.journal.commandLine, testing::HasSubstr(temp_.Text("{UUID}\\inst")));
        EXPECT_THAT(run.installer->path, testing::StartsWith(temp_.Text("{UUID}\\inst")));
    }
    SampleMedia broken = Incomplete();
    broken.Remove("media.db");
    const std::string json = JsonOf(Dry(broken)).dump();
    EXPECT_EQ(json.find(mediatool::kPretendedUuid), std::string::npos) << json;
}

TEST_F(SentencesTest, OfARunThatLeavesTheEnvironmentAsItWas) {
    const mediatool::Environment before = mediatool::CurrentEnvironment();
    const DryRun run = Dry(media_, {"-env", "TEST_A=1", "-env", "PATH"},
                           {{"TEST_B", "2"}, {"ZEPAdmInstAllowNotAdminUser", "1"}});
    EXPECT_EQ(mediatool::CurrentEnvironment(), before);
    EXPECT_EQ(mediatool::CurrentRehearsal(), nullptr);
    EXPECT_THAT(run.variables, ElementsAre("TEMP", "TEST_B", "ZEPAdmInstAllowNotAdminUser"));
    bool isThere = false;
    for (const mediatool::Change& change : run.environment) {
        EXPECT_NE(change.name, "TEST_B");
        EXPECT_NE(change.name, "TEMP");
        if (change.name != "TEST_A") continue;
        isThere = true;
        EXPECT_EQ(change.before, std::nullopt);
        EXPECT_EQ(change.after, "1");
    }
    EXPECT_TRUE(isThere);
    EXPECT_EQ(run.temp, temp_.Text());
    EXPECT_EQ(run.launcher, media_.Text("setup.exe"));
    EXPECT_EQ(run.machine.launcherPath, run.launcher);
}

// The launcher's defaults: boxes, and no waiting.
TEST_F(SentencesTest, OfMessagesAsTheyWouldBeShown) {
    const DryRun run = Dry(media_, {"-env"});
    ASSERT_EQ(run.journal.messages.size(), 1u);
    const Message& message = run.journal.messages[0];
    EXPECT_EQ(message.text, "Bad -env argument");
    EXPECT_EQ(message.severity, Severity::Error);
    EXPECT_TRUE(message.box);
    EXPECT_FALSE(message.toErrors);
    EXPECT_FALSE(message.dialog);
    EXPECT_FALSE(run.installer);
    EXPECT_FALSE(run.volumes);
    EXPECT_EQ(run.temp, temp_.Text());
    EXPECT_EQ(run.exitCode, 1);
    const DryRun traced = Dry(media_, {"-env"}, {{"ZEP_TraceMsgBox", "1"}});
    EXPECT_FALSE(traced.tracesInBoxes);
    EXPECT_TRUE(Dry(media_, {}, {{"ZEP_TraceMsgBox", "1"}}).tracesInBoxes);
}

TEST_F(SentencesTest, OfAnOldWebLibrary) {
    request_.machine.hasOldWebLibrary = true;
    EXPECT_EQ(Dry(media_).summary,
              "Refused, exit code 1, waits in a box: the system's wininet.dll is too old; update "
              "the system");
}

}  // namespace
}  // namespace launcher::test
