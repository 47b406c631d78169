#include "launcher/temporary_copy.h"
#include "launcher/remove_script.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <regex>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/path_exists.h"
#include "launcher/base/launch_options.h"
#include "tests/launcher/copy/media_tree.h"
#include "tests/support/handle_count.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using testing::Contains;
using testing::IsEmpty;

constexpr char kOriginalVar[] = "ZEPAdmInstOriginalMediaDir";
constexpr char kDontCopyVar[] = "ZEPAdmInstDontCopyInstaller";
constexpr char kInstaller[] = "ZEPInsAppliGUI.exe";

class NewTemporaryDirNameTest : public testing::Test {
  protected:
    ~NewTemporaryDirNameTest() override { SetEnvVar("TEMP", temp); }

    const std::string temp = GetEnvVar("TEMP");
};

TEST_F(NewTemporaryDirNameTest, IsANewUuidInUpperCaseBelowTemp) {
    SetEnvVar("TEMP", "C:\\Users\\J\xC3\xBCrgen\\Temp");
    const std::string name = NewTemporaryDirName();
    const std::string uuid = "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}";
    const std::string pattern = "C:\\\\Users\\\\J\xC3\xBCrgen\\\\Temp\\\\" + uuid + "\\\\";
    EXPECT_TRUE(std::regex_match(name, std::regex(pattern))) << name;
    EXPECT_NE(NewTemporaryDirName(), name);
}

TEST_F(NewTemporaryDirNameTest, TakesTempAsPlainText) {
    SetEnvVar("TEMP", "\"c:/temp/\"");
    EXPECT_THAT(NewTemporaryDirName(), testing::StartsWith("\"c:/temp/\"\\"));
}

TEST_F(NewTemporaryDirNameTest, IsAtTheRootOfTheDriveWithoutTemp) {
    SetEnvVar("TEMP", "");
    const std::string name = NewTemporaryDirName();
    EXPECT_EQ(name.size(), 38u);
    EXPECT_EQ(name.front(), '\\');
    EXPECT_EQ(name.back(), '\\');
}

TEST_F(NewTemporaryDirNameTest, MakesNoFolder) {
    const test::TemporaryFolder folder;
    SetEnvVar("TEMP", folder.Text());
    NewTemporaryDirName();
    EXPECT_THAT(test::TreeOf(folder.Text()), IsEmpty());
}

class TemporaryCopyTest : public testing::Test {
  protected:
    TemporaryCopyTest() {
        SetEnvVar(kDontCopyVar, "");
        SetEnvVar(kOriginalVar, "stale");
        Prepare(options);
    }
    void Prepare(LaunchOptions& launch) const {
        launch.mediaDir = Path(media);
        launch.osFolder = "win_b64";
        launch.installerExePath = "the installer in the media";
    }

    void ExpectCopied(const LaunchOptions& launch) const {
        EXPECT_THAT(test::TreeOf(temporaryDir), testing::ElementsAreArray(test::CopiedTree()));
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
    const std::string media = test::MakeMedia(folder, "Media \xC3\x9C \xE4\xB8\xAD");
    const std::string temporaryDir = folder.Text("Temp folder \xC3\xA9\\UUID") + "\\";
    LaunchOptions options{0, nullptr, kInstaller, false, false};
};

TEST_F(TemporaryCopyTest, HoldsTheInstallersPartOfTheMedia) {
    CopyInstallerToTemporaryDir(options, temporaryDir);
    ExpectCopied(options);
    EXPECT_EQ(options.mediaDir.Text() + "\\", temporaryDir);
    EXPECT_EQ(options.installerExePath,
              temporaryDir + "inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe");
}

TEST_F(TemporaryCopyTest, IsNotMadeWhenTheEnvironmentSaysSo) {
    for (const char* value : {"1", "0", " ", "no"}) {
        SetEnvVar(kDontCopyVar, value);
        SetEnvVar(kOriginalVar, "stale");
        CopyInstallerToTemporaryDir(options, temporaryDir);
        ExpectNotCopied(options);
    }
}

// A command line, and whether it lets the copy happen.
struct CommandLineCase {
    const char* name;
    std::vector<const wchar_t*> arguments;
    bool copied;
};

void PrintTo(const CommandLineCase& value, std::ostream* out) {
    *out << value.name;
}

class TemporaryCopyCommandLine : public TemporaryCopyTest,
                                 public testing::WithParamInterface<CommandLineCase> {};

TEST_P(TemporaryCopyCommandLine, DecidesOnTheCopy) {
    std::vector<const wchar_t*> arguments = GetParam().arguments;
    LaunchOptions launch(static_cast<int>(arguments.size()), arguments.data(), kInstaller, false,
                         false);
    Prepare(launch);
    CopyInstallerToTemporaryDir(launch, temporaryDir);
    if (GetParam().copied)
        ExpectCopied(launch);
    else
        ExpectNotCopied(launch);
}

INSTANTIATE_TEST_SUITE_P(
    , TemporaryCopyCommandLine,
    testing::Values(CommandLineCase{"plain", {L"setup.exe"}, true},
                    CommandLineCase{"odt", {L"setup.exe", L"--odt"}, true},
                    CommandLineCase{"softMgt", {L"setup.exe", L"-SoftMgt", L"-Commit"}, true},
                    CommandLineCase{"mgt", {L"setup.exe", L"--mgt"}, false},
                    CommandLineCase{"uninst", {L"setup.exe", L"--uninst"}, false},
                    CommandLineCase{"pipeserver", {L"setup.exe", L"--pipeserver"}, false}));

TEST_F(TemporaryCopyTest, NamesTheInstallerOfTheOptions) {
    options.installerExeName = "ZEPInsAppliODT.exe";
    options.osFolder = "intel_a";
    CopyInstallerToTemporaryDir(options, temporaryDir);
    EXPECT_EQ(options.installerExePath,
              temporaryDir + "inst\\intel_a\\code\\bin\\ZEPInsAppliODT.exe");
}

TEST_F(TemporaryCopyTest, LeavesNoHandleOpen) {
    const auto copyTo = [this](const std::string& name) {
        Prepare(options);
        options.mediaInstDir = media + "\\no such folder\\";
        CopyInstallerToTemporaryDir(options, folder.Text(name) + "\\");
        WriteRemoveScript(folder.Text(name) + "\\");
    };
    copyTo("first");  // what the system opens once stays open
    const std::size_t before = test::OpenHandleCount();
    copyTo("second");
    EXPECT_EQ(test::OpenHandleCount(), before);
}

// The installer came from a media of its own.
class SeparateInstallerTest : public TemporaryCopyTest {
  protected:
    SeparateInstallerTest() { options.mediaInstDir = folder.Text("Installer\\inst") + "\\"; }

    // The streams must stay silent.
    void CopySilently() {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        CopyInstallerToTemporaryDir(options, temporaryDir);
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
    std::vector<std::string> expected = test::CopiedTree();
    expected[2] = "inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe: other installer";
    expected.insert(expected.end(), {"inst\\common\\added: 1", "inst\\win_b64\\added: 2"});
    EXPECT_THAT(test::TreeOf(temporaryDir), testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(GetEnvVar(kOriginalVar), media);
}

TEST_F(SeparateInstallerTest, AddsNothingWithoutACopy) {
    folder.Write("Installer/inst/common/added", "1");
    options.skipTemporaryCopy = true;
    CopyInstallerToTemporaryDir(options, temporaryDir);
    ExpectNotCopied(options);
}

TEST_F(SeparateInstallerTest, MayMissBothFolders) {
    CopySilently();
    ExpectCopied(options);
}

TEST_F(SeparateInstallerTest, MayMissTheFirstFolder) {
    folder.Write("Installer/inst/win_b64/added", "2");
    CopySilently();
    EXPECT_THAT(test::TreeOf(temporaryDir), Contains("inst\\win_b64\\added: 2"));
}

TEST_F(SeparateInstallerTest, MayFailHalfway) {
    folder.Write("Installer/inst/common/win_b64.installos/in the way of a file");
    folder.Write("Installer/inst/win_b64/added", "2");
    CopySilently();
    EXPECT_THAT(test::TreeOf(temporaryDir), Contains("inst\\win_b64\\added: 2"));
}

TEST_F(SeparateInstallerTest, IsNamedWithADoubledBackslash) {
    std::vector<std::string> examined;
    const test::Hook<decltype(&GetFileAttributesW)> hook("GetFileAttributesW",
                                                         [&](auto real, LPCWSTR path) {
                                                             examined.push_back(ToNarrow(path));
                                                             return real(path);
                                                         });
    CopySilently();
    EXPECT_THAT(examined, Contains(folder.Text("Installer\\inst") + "\\\\common"));
    EXPECT_THAT(examined, Contains(folder.Text("Installer\\inst") + "\\\\win_b64"));
}

}  // namespace
}  // namespace launcher
