#include "launcher/temporary_copy.h"

#include <windows.h>

#include <regex>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/file_type.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/options.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Pair;

constexpr char kOriginalVar[] = "ZEPAdmInstOriginalMediaDir";
constexpr char kDontCopyVar[] = "ZEPAdmInstDontCopyInstaller";

class NewTemporaryFolderNameTest : public test::IsolatedTest {};

TEST_F(NewTemporaryFolderNameTest, IsANewUuidInUpperCaseBelowTemp) {
    SetEnvVar("TEMP", "C:\\Users\\J\xC3\xBCrgen\\Temp");
    const std::string name = NewTemporaryFolderName();
    const std::string uuid = "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";
    const std::string pattern = "C:\\\\Users\\\\J\xC3\xBCrgen\\\\Temp\\\\" + uuid + "\\\\";
    EXPECT_TRUE(std::regex_match(name, std::regex(pattern))) << name;
    EXPECT_NE(NewTemporaryFolderName(), name);
}

TEST_F(NewTemporaryFolderNameTest, TakesTempAsPlainText) {
    SetEnvVar("TEMP", "\"c:/temp/\"");
    EXPECT_THAT(NewTemporaryFolderName(), testing::StartsWith("\"c:/temp/\"\\"));
}

TEST_F(NewTemporaryFolderNameTest, IsAtTheRootOfTheDriveWithoutTemp) {
    SetEnvVar("TEMP", "");
    const std::string name = NewTemporaryFolderName();
    EXPECT_EQ(name.size(), 38u);
    EXPECT_EQ(name.front(), '\\');
    EXPECT_EQ(name.back(), '\\');
}

TEST_F(NewTemporaryFolderNameTest, MakesNoFolder) {
    const test::TemporaryFolder folder;
    SetEnvVar("TEMP", folder.Text());
    NewTemporaryFolderName();
    EXPECT_THAT(test::TreeBelow(folder.Dir()), IsEmpty());
}

class TemporaryCopyTest : public test::IsolatedTest {
  protected:
    TemporaryCopyTest() {
        folder.Write(name + "/inst/common/win_b64.installos");
        folder.Write(name + "/inst/win_b64/code/bin/ZEPInsAppliGUI.exe", "installer");
        folder.MakeDir(name + "/inst/win_b64/nothing");
        for (const char* entry : {"meta.TOCxml", "media.xml", "media.db", "setup.exe",
                                  "StartTUI.exe", "setup_noUAC.exe"})
            folder.Write(name + "/" + entry, entry);
        whole = test::TreeBelow(test::FromUtf8(media));
        folder.Write(name + "/ReadMe_Windows.txt", "not copied");
        folder.Write(name + "/2/setup.exe", "not copied");
        SetEnvVar(kDontCopyVar, "");
        SetEnvVar(kOriginalVar, "stale");
        Prepare(options);
    }
    void Prepare(LaunchOptions& launch) const {
        launch.mediaDir = Path(media);
        launch.osFolder = "win_b64";
        launch.installerExePath = "the installer in the media";
    }

    test::Tree Copied() const { return test::TreeBelow(test::FromUtf8(temporaryDir)); }
    void ExpectCopied(const LaunchOptions& launch) const {
        EXPECT_EQ(Copied(), whole);
        EXPECT_TRUE(launch.temporaryCopyMade);
        EXPECT_EQ(GetEnvVar(kOriginalVar), media);
    }
    void ExpectNotCopied(const LaunchOptions& launch) const {
        EXPECT_FALSE(PathExists(temporaryDir));
        EXPECT_FALSE(launch.temporaryCopyMade);
        EXPECT_EQ(launch.mediaDir.Text(), media);
        EXPECT_EQ(launch.installerExePath, "the installer in the media");
        EXPECT_EQ(GetEnvVar(kOriginalVar), "");
    }

    const test::TemporaryFolder folder;
    const std::string name = "Media \xC3\x9C \xE4\xB8\xAD";
    const std::string media = folder.Text(name);
    const std::string temporaryDir = folder.Text("Temp folder \xC3\xA9\\UUID") + "\\";
    test::Tree whole;  // what of the media is copied
    LaunchOptions options = test::ParseOptions({}, false);
};

TEST_F(TemporaryCopyTest, HoldsTheInstallersPartOfTheMedia) {
    CopyInstallerToTemporaryFolder(options, temporaryDir);
    ExpectCopied(options);
    EXPECT_EQ(options.mediaDir.Text() + "\\", temporaryDir);
    EXPECT_EQ(options.installerExePath,
              temporaryDir + "inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe");
}

TEST_F(TemporaryCopyTest, IsNotMadeWhenTheEnvironmentSaysSo) {
    for (const char* value : {"1", "0", " ", "no"}) {
        SetEnvVar(kDontCopyVar, value);
        SetEnvVar(kOriginalVar, "stale");
        CopyInstallerToTemporaryFolder(options, temporaryDir);
        ExpectNotCopied(options);
    }
}

TEST_F(TemporaryCopyTest, IsNotPreventedBySomeModes) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--odt"}, std::vector<std::string>{"-SoftMgt", "-Commit"}}) {
        LaunchOptions launch = test::ParseOptions(arguments, false);
        Prepare(launch);
        CopyInstallerToTemporaryFolder(launch, temporaryDir);
        ExpectCopied(launch);
    }
}

TEST_F(TemporaryCopyTest, IsPreventedByOthers) {
    for (const char* argument : {"--mgt", "--uninst", "--pipeserver"}) {
        LaunchOptions launch = test::ParseOptions({argument}, false);
        Prepare(launch);
        SetEnvVar(kOriginalVar, "stale");
        CopyInstallerToTemporaryFolder(launch, temporaryDir);
        ExpectNotCopied(launch);
    }
}

TEST_F(TemporaryCopyTest, NamesTheInstallerOfTheOptions) {
    options.installerExeName = "ZEPInsAppliODT.exe";
    options.osFolder = "intel_a";
    CopyInstallerToTemporaryFolder(options, temporaryDir);
    EXPECT_EQ(options.installerExePath,
              temporaryDir + "inst\\intel_a\\code\\bin\\ZEPInsAppliODT.exe");
}

// The installer came from a medium of its own.
class SeparateInstallerTest : public TemporaryCopyTest {
  protected:
    SeparateInstallerTest() { options.mediaInstDir = folder.Text("Installer\\inst") + "\\"; }

    // The streams must stay silent.
    void CopySilently() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        CopyInstallerToTemporaryFolder(options, temporaryDir);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
        EXPECT_TRUE(options.temporaryCopyMade);
    }
};

TEST_F(SeparateInstallerTest, AddsItsTwoFolders) {
    folder.Write("Installer/inst/common/added", "1");
    folder.Write("Installer/inst/win_b64/code/bin/ZEPInsAppliGUI.exe", "other installer");
    folder.Write("Installer/inst/win_b64/added", "2");
    folder.Write("Installer/inst/intel_a/not copied");
    folder.Write("Installer/inst/not copied");
    CopySilently();
    whole["inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe"] = "other installer";
    whole["inst\\common\\added"] = "1";
    whole["inst\\win_b64\\added"] = "2";
    ExpectCopied(options);
}

TEST_F(SeparateInstallerTest, AddsNothingWithoutACopy) {
    folder.Write("Installer/inst/common/added", "1");
    options.skipTemporaryCopy = true;
    CopyInstallerToTemporaryFolder(options, temporaryDir);
    ExpectNotCopied(options);
}

TEST_F(SeparateInstallerTest, MayMissBothFolders) {
    CopySilently();
    ExpectCopied(options);
}

TEST_F(SeparateInstallerTest, MayFailHalfway) {
    folder.Write("Installer/inst/common/win_b64.installos/in the way of a file");
    folder.Write("Installer/inst/win_b64/added", "2");
    CopySilently();
    EXPECT_THAT(Copied(), Contains(Pair("inst\\win_b64\\added", "2")));
}

TEST_F(SeparateInstallerTest, IsNamedWithADoubledBackslash) {
    std::vector<std::string> examined;
    {
        const test::Hook<decltype(&GetFileAttributesW)> hook("GetFileAttributesW",
                                                             [&](auto real, LPCWSTR path) {
                                                                 examined.push_back(ToNarrow(path));
                                                                 return real(path);
                                                             });
        CopyInstallerToTemporaryFolder(options, temporaryDir);
    }
    EXPECT_THAT(examined, Contains(folder.Text("Installer\\inst") + "\\\\common"));
    EXPECT_THAT(examined, Contains(folder.Text("Installer\\inst") + "\\\\win_b64"));
}

}  // namespace
}  // namespace launcher
