// How the installer is started, waited for, and what becomes of its exit code.

#include <windows.h>

#include <string>

#include "fs/encoding.h"
#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class Launch : public LauncherTest {};

// What ends a run after a failed system call.
std::string FailureText(const std::string& what, const std::string& commandLine, DWORD code) {
    wchar_t* text = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr, code, 0,
                   reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    return what + "\n" + commandLine + "\nrc=" + std::to_string(code) + "\nmsg=" + ToNarrow(text);
}

std::string UsualCommandLine(const Media& media) {
    return "\"" + media.InstallerText(UsualOs()) + "\" \"-CDpath\" \"" + media.Text() + "\"";
}

struct ExitCodeRow : Row {
    int expected;
};

class ExitCode : public LauncherTableTest<ExitCodeRow> {};

TEST_P(ExitCode, IsThatOfTheInstallerWhenWaitedFor) {
    variables["STANDIN_EXIT"] = GetParam().name;
    EXPECT_THAT(Run(UsualMedia(), {"-wait"}), EndsQuietlyWith(GetParam().expected));
}

// Every code that is not negative as a signed number comes back as it is: success, a failure,
// success that asks for a restart, one that a Unix shell would cut, and the largest.
INSTANTIATE_TEST_SUITE_P(Codes, ExitCode,
                         testing::Values(ExitCodeRow{{"0"}, 0}, ExitCodeRow{{"3"}, 3},
                                         ExitCodeRow{{"3010"}, 3010}, ExitCodeRow{{"65536"}, 65536},
                                         ExitCodeRow{{"0x7FFFFFFF"}, 0x7FFFFFFF}),
                         RowName);

class NegativeExitCode : public LauncherTableTest<const char*> {};

TEST_P(NegativeExitCode, IsReportedAsAFailedWait) {
    const Media media = UsualMedia();
    variables["STANDIN_EXIT"] = GetParam();
    const LauncherRun run = Run(media, {"-wait"});
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_THAT(run.BoxTexts(), ElementsAre(StartsWith("Cannot wait for process\n" +
                                                       UsualCommandLine(media) + "\nrc=")));
    EXPECT_EQ(run.Installer().commandLine, UsualCommandLine(media));
}

// A crash, and the two ends of the range.
INSTANTIATE_TEST_SUITE_P(Codes, NegativeExitCode,
                         testing::Values("0xC0000005", "0x80000000", "0xFFFFFFFF"),
                         [](const auto& row) { return std::string(row.param); });

TEST_F(Launch, WithoutWaitEndsBeforeTheInstaller) {
    const std::string name = "launcher-test-" + std::to_string(GetCurrentProcessId());
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, ToWide(name).c_str());
    variables["STANDIN_WAIT"] = name;
    variables["STANDIN_EXIT"] = "3";
    LauncherProcess process(StartOf(UsualMedia(), {}));
    EXPECT_TRUE(process.EndsWithin(30000));
    SetEvent(event);
    EXPECT_THAT(process.Finish(), EndsQuietlyWith(0));
    CloseHandle(event);
}

TEST_F(Launch, WithWaitEndsAfterTheInstaller) {
    const std::string name = "launcher-test-" + std::to_string(GetCurrentProcessId());
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, ToWide(name).c_str());
    variables["STANDIN_WAIT"] = name;
    LauncherProcess process(StartOf(UsualMedia(), {"-wait"}));
    EXPECT_FALSE(process.EndsWithin(1500));
    SetEvent(event);
    EXPECT_THAT(process.Finish(), EndsQuietlyWith(0));
    CloseHandle(event);
}

TEST_F(Launch, StartsTheInstallerInTheCallersFolder) {
    EXPECT_EQ(Run(UsualMedia()).Installer().folder, scratch.Text());
}

// Of the launcher's own files; the streams are the caller's.
TEST_F(Launch, HandsNoOpenFileOnButTheStreams) {
    const LauncherRun run = Run(MediaToCopy());
    EXPECT_THAT(run.Installer().inheritedFiles,
                testing::UnorderedElementsAre(testing::EndsWith("\\output"),
                                              testing::EndsWith("\\errors")));
}

TEST_F(Launch, ReportsAnInstallerThatIsNoProgram) {
    const Media media =
        EmptyMedia().AddFile("inst/" + UsualOs() + "/code/bin/ZEPInsAppliGUI.exe", "text");
    EXPECT_THAT(Run(media),
                IsRefusedWith(FailureText("Setup failed to create process", UsualCommandLine(media),
                                          ERROR_BAD_EXE_FORMAT)));
}

TEST_F(Launch, ReportsAProgramThatDoesNotExist) {
    const Media media = UsualMedia();
    variables["DEBUGCMD_INSTALLK7"] = "no-such-program";
    EXPECT_THAT(Run(media), IsRefusedWith(FailureText("Setup failed to create process",
                                                      "no-such-program " + UsualCommandLine(media),
                                                      ERROR_FILE_NOT_FOUND)));
}

// The box has Windows's own caption for an error.
TEST_F(Launch, ShowsItsFailuresUnderTheSystemsCaption) {
    const LauncherRun run = Run(UsualMedia(), {"-env"});
    ASSERT_EQ(run.boxes.size(), 1u);
    EXPECT_THAT(run.boxes[0].caption, testing::Not(IsEmpty()));
    EXPECT_THAT(run.boxes[0].caption, testing::Not(testing::HasSubstr("setup")));
}

TEST_F(Launch, RunsTheDebugProgramInFrontOfTheInstaller) {
    const Media media = UsualMedia();
    CopyStandIn(scratch.Dir() / "debugger.exe");
    variables["DEBUGCMD_INSTALLK7"] = "\"" + scratch.Text("debugger.exe") + "\" -v";
    const LauncherRun run = Run(media, {"-wait", "last"});
    EXPECT_EQ(run.Installer().module, scratch.Text("debugger.exe"));
    EXPECT_EQ(run.Installer().commandLine, "\"" + scratch.Text("debugger.exe") + "\" -v " +
                                               UsualCommandLine(media) + " \"last\"");
}

// Windows looks for a program beside the caller first, so a stand-in there is what "1" starts.
TEST_F(Launch, EchoesTheCommandLineInAConsoleForTheDebugValueOne) {
    const Media media = UsualMedia();
    CopyStandIn(media.Root() / "cmd.exe");
    variables["DEBUGCMD_INSTALLK7"] = "1";
    EXPECT_EQ(Run(media).Installer().commandLine, "cmd.exe /k echo " + UsualCommandLine(media));
}

}  // namespace
}  // namespace launcher::test
