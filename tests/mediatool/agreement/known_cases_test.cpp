// Runs that a dry run once foretold wrongly, each compared with the launcher itself.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// windows.h first: the shell headers need it.
#include <shlobj.h>

#include "tests/e2e/support/media.h"
#include "tests/mediatool/agreement/comparison.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

class KnownCase : public testing::Test {
  protected:
    KnownCase() {
        made_.launcher = media_.Launcher();
        made_.variables["STANDIN_EXIT"] = "7";
    }

    void SetUp() override {
        if (!IsUserAnAdmin()) GTEST_SKIP() << "needs a console that runs as administrator";
    }

    // The rest of the set is nowhere: the installer is copied.
    void MakeCopied() { media_.MakeSplit(3, "SET"); }

    // The installer comes from a media of its own.
    void UseOtherMedia() {
        media_.AddMarker(os_);
        AddStandInInstaller(other_, os_);
        made_.arguments = {"-installerPath", ToUtf8(other_)};
        made_.variables["ZEP_UseExternalInstaller"] = "1";
    }

    std::string Bin(const std::string& name = {}) const {
        return "inst/" + os_ + "/code/bin/" + name;
    }

    void Put(const stdfs::path& file) {
        stdfs::create_directories(file.parent_path());
        WriteFile(file, "text");
    }

    // Both ways of reading the launcher's streams.
    Json Compare() {
        Json dry;
        for (const bool oneStream : {true, false}) {
            const TemporaryFolder work;
            Comparison comparison(made_, files_.Dir(), work.Dir(), oneStream);
            comparison.Run();
            dry = comparison.Dry();
        }
        return dry;
    }

    const TemporaryFolder files_;
    const std::string os_ = UsualOs();
    const stdfs::path other_ = files_.Dir() / "other";
    Media media_{files_.Dir() / "media"};
    Case made_;
};

class MergedCopy : public KnownCase {
  protected:
    MergedCopy() {
        MakeCopied();
        UseOtherMedia();
    }
};

TEST_F(MergedCopy, HasAFileInThePlaceOfTheInstallersFolder) {
    Put(media_.Root() / "inst" / os_);
    EXPECT_EQ(Compare()["started"], false);
}

TEST_F(MergedCopy, HasAFileInThePlaceOfAFolderAboveTheInstaller) {
    Put(media_.Root() / "inst" / os_ / "code");
    EXPECT_EQ(Compare()["started"], false);
}

TEST_F(MergedCopy, HasAFolderInThePlaceOfTheInstaller) {
    stdfs::create_directories(media_.Root() / Bin(kGuiInstaller));
    EXPECT_EQ(Compare()["started"], false);
    Put(media_.Root() / Bin(kGuiInstaller) / "file");
    EXPECT_EQ(Compare()["started"], false);
}

TEST_F(MergedCopy, HasAFileInThePlaceOfACommonFolder) {
    Put(media_.Root() / "inst/common/x");
    Put(other_ / "inst/common/x/y");
    Put(other_ / "inst/common/z");
    EXPECT_EQ(Compare()["started"], true);
}

TEST_F(MergedCopy, HasAFolderInThePlaceOfACommonFile) {
    Put(media_.Root() / "inst/common/x/y");
    Put(other_ / "inst/common/x");
    Put(other_ / "inst/common/z");
    EXPECT_EQ(Compare()["started"], true);
}

TEST_F(KnownCase, DebugProgramThatLiesInTheInstallersFolder) {
    media_.AddInstaller(os_);
    CopyStandIn(media_.Root() / Bin("tool.exe"));
    made_.variables["DEBUGCMD_INSTALLK7"] = "tool -x";
    EXPECT_EQ(Compare()["started"], true);
}

TEST_F(KnownCase, DebugProgramThatLiesInTheCopy) {
    MakeCopied();
    media_.AddInstaller(os_);
    CopyStandIn(media_.Root() / Bin("tool.exe"));
    CopyStandIn(media_.Root() / Bin("sub/tool.exe"));
    for (const char* program : {"tool -x", "tool.exe", "sub\\tool"}) {
        made_.variables["DEBUGCMD_INSTALLK7"] = program;
        EXPECT_EQ(Compare()["started"], true) << program;
    }
    for (const char* program : {"tool.com", "..\\bin\\tool"}) {
        made_.variables["DEBUGCMD_INSTALLK7"] = program;
        EXPECT_EQ(Compare()["started"], false) << program;
    }
}

// Windows puts the quotes that are missing.
TEST_F(KnownCase, DebugProgramWithABlankAndWithoutQuotes) {
    media_.AddInstaller(os_);
    CopyStandIn(files_.Dir() / "a b" / "c d.exe");
    made_.variables["DEBUGCMD_INSTALLK7"] = files_.Text("a b\\c d.exe") + " -x";
    const Json dry = Compare();
    EXPECT_EQ(dry["arguments"][0], "-x");
    EXPECT_EQ(dry["arguments"][1], media_.InstallerText(os_));
}

class OddTemp : public KnownCase, public testing::WithParamInterface<const char*> {};

TEST_P(OddTemp, FailsInTheSameWay) {
    MakeCopied();
    media_.AddInstaller(os_);
    made_.variables["TEMP"] = GetParam();
    const Json dry = Compare();
    EXPECT_EQ(dry["started"], false);
    EXPECT_EQ(dry["waits"], 2);
}

INSTANTIATE_TEST_SUITE_P(Kinds, OddTemp,
                         testing::Values("1:\\x", "\\", "//", "\\\\", "1:", ":", "\\x\\", "/",
                                         "|"));

TEST_F(KnownCase, MarkerVariableThatRefusesTheMedia) {
    media_.AddMarker(os_);
    made_.variables["ZEPAdmInstODTinstallOSpath"] = files_.Text("nothing");
    const Json dry = Compare();
    EXPECT_EQ(dry["volumes"], Json());
    EXPECT_EQ(dry["temporaryCopy"]["reason"], "The run does not get that far.");
}

TEST_F(KnownCase, MediaFolderThatIsNamedAsOutputsNameTheTemporaryFolder) {
    Media media(files_.Dir() / "{UUID}");
    media.AddInstaller(os_);
    made_.launcher = media.Launcher();
    EXPECT_EQ(Compare()["started"], true);
    media.MakeSplit(3, "SET");
    made_.variables["TEMP"] = files_.Text();
    EXPECT_EQ(Compare()["started"], true);
}

TEST_F(KnownCase, BoxWhoseTextHoldsAZeroByte) {
    media_.AddInstaller(os_).MakeSplit(2, "SET");
    WriteFile(media_.Root() / "2.txt", std::string("MTBDIR=OTH\0ER\r\n", 15));
    made_.variables["ZEP_TraceMsgBox"] = "1";
    std::vector<std::string> texts;
    const Json dry = Compare();
    for (const Json& message : dry["messages"])
        texts.push_back(message["text"]);
    EXPECT_THAT(texts, testing::Contains("Volume 2 of OTH"));
}

TEST_F(KnownCase, WholeSetOfWhichBoxesTell) {
    media_.AddInstaller(os_).MakeSplit(2, "SET");
    made_.variables["ZEP_TraceMsgBox"] = "1";
    WriteVolumeMarker(files_.Dir() / "2", 2, "SET");
    EXPECT_EQ(Compare()["volumes"]["layout"], "siblings");
    WriteVolumeMarker(media_.Root(), 2, "SET");
    EXPECT_EQ(Compare()["volumes"]["layout"], "one-folder");
}

TEST_F(KnownCase, FolderOfTheOptionThatIsRelative) {
    UseOtherMedia();
    made_.arguments = {"-installerPath", ".\\nothing", "-env",
                       "ZEP_TALVOR_Installer=" + ToUtf8(other_)};
    const Json dry = Compare();
    for (const Json& lookup : dry["lookups"])
        EXPECT_THAT(lookup["path"].get<std::string>(), testing::HasSubstr(":\\"));
}

// Windows takes 32,766 characters.
TEST_F(KnownCase, CommandLineThatIsTooLong) {
    media_.AddInstaller(os_);
    made_.arguments = {"-env", "DEBUGCMD_INSTALLK7=\"" + media_.InstallerText(os_) + "\" " +
                                   std::string(32000, 'x')};
    EXPECT_EQ(Compare()["started"], true);
    if (IsWine()) GTEST_SKIP() << "Wine cuts the line off and starts the program";
    made_.arguments.back() += std::string(500, 'x');
    EXPECT_EQ(Compare()["started"], false);
}

}  // namespace
}  // namespace launcher::test
