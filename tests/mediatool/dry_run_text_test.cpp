// What the text of a dry run says of machines, layouts, installers and messages.

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "fs/exceptions.h"
#include "launcher/base/message.h"
#include "mediatool/dry_run/dry_run.h"
#include "tests/mediatool/rehearsing.h"
#include "tests/support/hook.h"

namespace launcher::test {
namespace {

using mediatool::DryRun;
using testing::EndsWith;
using testing::HasSubstr;

class DryRunText : public Rehearsing {
  protected:
    std::string Text(const SampleMedia& media) const {
        return mediatool::TextOf(Dry(media), /*everything=*/false);
    }

    // That of the volumes, without its heading.
    std::string Volumes(Layout layout) const {
        const SampleMedia media = Startable(layout);
        std::string text = Text(media);
        const std::string heading = "\nVolumes\n";
        text.erase(0, text.find(heading) + heading.size());
        text.erase(text.find("Temporary copy\n"));
        // In the place of a folder that is another each time.
        const std::string folder = media.Folder().Text();
        for (std::size_t at = text.find(folder); at != std::string::npos; at = text.find(folder))
            text.replace(at, folder.size(), "...");
        return text;
    }
};

TEST_F(DryRunText, NamesThePretendedWindows) {
    const SampleMedia media;
    for (const auto& [isNewer, name] :
         {std::pair(true, "Windows 8 or newer"), std::pair(false, "Windows 7")}) {
        request_.machine.isWindows8OrNewer = isNewer;
        EXPECT_THAT(Text(media), HasSubstr("\n  pretended: " + std::string(name) +
                                           ", 64-bit, administrator, TEMP; else this machine's\n"));
    }
}

TEST_F(DryRunText, TellsWhereTheVolumesAre) {
    EXPECT_EQ(Volumes(Layout::NotSplit), "  one; the medium is not split\n");
    EXPECT_EQ(Volumes(Layout::OneFolder), "  3 in one folder\n");
    EXPECT_EQ(Volumes(Layout::Siblings),
              "  3 side by side\n"
              "  1  ...\\set\\1\n"
              "  2  ...\\set\\2\n"
              "  3  ...\\set\\3\n");
    EXPECT_EQ(Volumes(Layout::Outer),
              "  3 in outer volumes\n"
              "  1  ...\\set\\7\\media\\1\n"
              "  2  ...\\set\\8\\media\\2\n"
              "  3  ...\\set\\9\\media\\3\n");
}

TEST_F(DryRunText, SaysWhyWindowsCannotStartTheInstaller) {
    SampleMedia media;
    media.Write(kInstallerOfMedia, "text");
    EXPECT_THAT(Text(media), HasSubstr("\nInstaller\n"
                                       "  " +
                                       media.Text(kInstallerOfMedia) +
                                       "\n"
                                       "  win_b64, found on the medium itself\n"
                                       "  Windows cannot start it: it is no program.\n"
                                       "Volumes\n"));
}

// The launcher's texts of failures have one.
TEST_F(DryRunText, HasNoEmptyLineAfterAMessageThatEndsWithALineEnd) {
    SampleMedia incomplete = Incomplete();
    incomplete.Remove("media.db");
    const DryRun run = Dry(incomplete);
    const std::string& message = run.journal.messages.back().text;
    ASSERT_THAT(message, EndsWith(SystemErrorText(ERROR_FILE_NOT_FOUND) + "\n"));
    EXPECT_THAT(mediatool::TextOf(run, false),
                EndsWith("\n  box      " + message +
                         "           An unattended run waits here for ever.\n"));
}

// Nothing catches the failure to ask Windows for the user's rights.
TEST_F(DryRunText, TellsWhyTheLauncherCrashes) {
    const SampleMedia media = Startable();
    request_.machine.isAdministrator.reset();
    const Hook<decltype(&AllocateAndInitializeSid)> denied(
        "AllocateAndInitializeSid", FailsWith(ERROR_NOT_ENOUGH_MEMORY, FALSE));
    const DryRun run = Dry(media);
    const std::string message = "The launcher crashes: AllocateAndInitializeSid failed. - " +
                                SystemErrorText(ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.meaning, "The launcher crashes.");
    EXPECT_EQ(run.verdict, mediatool::Verdict::Refused);
    EXPECT_EQ(run.summary, "Crashes, exit code 3: " + message);
    EXPECT_EQ(run.Waits(), 0u);
    EXPECT_EQ(run.journal.messages.back().severity, Severity::Error);
    EXPECT_TRUE(run.journal.messages.back().toErrors);
    EXPECT_THAT(mediatool::TextOf(run, false), EndsWith("\n  console  " + message + "\n"));
}

TEST_F(DryRunText, WarnsOfALauncherOfAnotherVersion) {
    SampleMedia media = Startable();
    media.Write("setup.exe", OtherLauncherBytes());
    EXPECT_THAT(Text(media), HasSubstr("\n  setup.exe is version " + kOtherVersion +
                                       " of the launcher, not " LAUNCHER_VERSION
                                       ". It may do something else than this:\n"));
}

}  // namespace
}  // namespace launcher::test
