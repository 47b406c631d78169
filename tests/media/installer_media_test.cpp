#include "media/installer_media.h"

#include <algorithm>

#include "tests/support/isolated_test.h"
#include "tests/support/options.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using test::journal;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kBelowInst[] = "win_b64\\code\\bin\\ZEPInsAppliGUI.exe";

class LocateInstallerTest : public test::IsolatedTest {
  protected:
    LocateInstallerTest() {
        options.osFolder = "win_b64";
        options.mediaInstDir = "old folder";
        options.installerExePath = "old path";
    }

    // What the lookup says on its way.
    static std::string WithoutSubDir(const std::string& exe) {
        return "trace: Installer executable \"" + exe +
               "\" does not exist, trying without sub dir \"1\"";
    }
    static std::string Found(const std::string& exe) {
        return "trace: Installer Media: \"" + exe + "\"";
    }
    static std::string Invalid(const std::string& exe) {
        return "info: Invalid Installer media, \"" + exe + "\" does not exist";
    }

    void ExpectFound(const std::string& instDir) const {
        EXPECT_EQ(options.mediaInstDir, instDir);
        EXPECT_EQ(options.installerExePath, instDir + kBelowInst);
    }
    void ExpectUntouched() const {
        EXPECT_EQ(options.mediaInstDir, "old folder");
        EXPECT_EQ(options.installerExePath, "old path");
    }

    const test::TemporaryFolder folder;
    const std::string media = folder.MakeDir("media");
    LaunchOptions options = test::ParseOptions({});
};

TEST_F(LocateInstallerTest, SaysNothingAboutNoFolder) {
    EXPECT_FALSE(LocateInstaller(options, "", false));
    EXPECT_THAT(journal, IsEmpty());
    ExpectUntouched();
}

TEST_F(LocateInstallerTest, LooksBelowTheFirstVolumeFirst) {
    folder.Write("media/1/inst/win_b64/code/bin/ZEPInsAppliGUI.exe");
    folder.Write("media/inst/win_b64/code/bin/ZEPInsAppliGUI.exe");
    EXPECT_TRUE(LocateInstaller(options, media, false));
    ExpectFound(media + "\\1\\inst\\");
    EXPECT_THAT(journal, ElementsAre(Found(media + "\\1\\inst\\" + kBelowInst)));
}

TEST_F(LocateInstallerTest, LooksWithoutTheFirstVolumeNext) {
    folder.Write("media/inst/win_b64/code/bin/ZEPInsAppliGUI.exe");
    EXPECT_TRUE(LocateInstaller(options, media, false));
    ExpectFound(media + "\\inst\\");
    EXPECT_THAT(journal, ElementsAre(WithoutSubDir(media + "\\1\\inst\\" + kBelowInst),
                                     Found(media + "\\inst\\" + kBelowInst)));
}

TEST_F(LocateInstallerTest, ReportsAFolderThatIsNoMedia) {
    EXPECT_FALSE(LocateInstaller(options, media, false));
    ExpectUntouched();
    EXPECT_THAT(journal, ElementsAre(WithoutSubDir(media + "\\1\\inst\\" + kBelowInst),
                                     Invalid(media + "\\inst\\" + kBelowInst)));
}

TEST_F(LocateInstallerTest, TracesOnlyWhenQuiet) {
    EXPECT_FALSE(LocateInstaller(options, media, true));
    ExpectUntouched();
    EXPECT_THAT(journal, ElementsAre(WithoutSubDir(media + "\\1\\inst\\" + kBelowInst)));

    folder.Write("media/1/inst/win_b64/code/bin/ZEPInsAppliGUI.exe");
    journal.clear();
    EXPECT_TRUE(LocateInstaller(options, media, true));
    EXPECT_THAT(journal, ElementsAre(Found(media + "\\1\\inst\\" + kBelowInst)));
}

// A trailing backslash is taken as it is; another one is added after a slash.
TEST_F(LocateInstallerTest, CompletesTheFolderWithABackslash) {
    folder.Write("media/1/inst/win_b64/code/bin/ZEPInsAppliGUI.exe");
    EXPECT_TRUE(LocateInstaller(options, media + "\\", false));
    ExpectFound(media + "\\1\\inst\\");
    std::string slashes = media + "/";
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    EXPECT_TRUE(LocateInstaller(options, slashes, false));
    ExpectFound(slashes + "\\1\\inst\\");
}

TEST_F(LocateInstallerTest, IsContentWithAFolderOfTheInstallersName) {
    folder.MakeDir("media/inst/win_b64/code/bin/ZEPInsAppliGUI.exe");
    EXPECT_TRUE(LocateInstaller(options, media, false));
    ExpectFound(media + "\\inst\\");
}

TEST_F(LocateInstallerTest, LooksForTheInstallerAndTheSystemOfTheOptions) {
    folder.Write("media/inst/win_b64/code/bin/ZEPInsAppliGUI.exe");
    options.osFolder = "intel_a";
    options.installerExeName = "ZEPInsAppliODT.exe";
    EXPECT_FALSE(LocateInstaller(options, media, true));
    const std::string exe = folder.Write("media/inst/intel_a/code/bin/ZEPInsAppliODT.exe");
    EXPECT_TRUE(LocateInstaller(options, media, true));
    EXPECT_EQ(options.installerExePath, exe);
}

TEST_F(LocateInstallerTest, TakesNamesInUtf8) {
    const std::string name =
        "Me\xCC\x81"
        "dia \xE4\xB8\xAD \xF0\x9F\x92\xBF";
    folder.Write(name + "/1/inst/win_b64/code/bin/ZEPInsAppliGUI.exe");
    EXPECT_TRUE(LocateInstaller(options, folder.Text(name), false));
    ExpectFound(folder.Text(name) + "\\1\\inst\\");
}

}  // namespace
}  // namespace launcher
