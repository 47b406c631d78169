// The copy below the user's temporary folder, from which the installer of an incomplete media runs.

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace stdfs = std::filesystem;

class TemporaryCopy : public LauncherTest {
  protected:
    // The one folder in "TEMP".
    static std::string CopyOf(const LauncherRun& run) {
        const std::vector<std::string> names = run.LeftInTemp();
        EXPECT_EQ(names.size(), 1u);
        return names.empty() ? "" : ToUtf8(run.temp / FromUtf8(names[0]));
    }
    static std::vector<std::string> FilesBelow(const stdfs::path& folder) {
        std::vector<std::string> files;
        for (const auto& entry : stdfs::recursive_directory_iterator(folder))
            if (!entry.is_directory())
                files.push_back(ToUtf8(entry.path().lexically_relative(folder)));
        std::ranges::sort(files);
        return files;
    }
};

TEST_F(TemporaryCopy, HoldsTheInstallersPartOfTheMedia) {
    Media media = MediaToCopy();
    media.AddFile("inst/common/deep/er/file.dat", "content").AddFile("other/file.dat");
    const LauncherRun run = Run(media, {"-wait"});
    const std::string copy = CopyOf(run);
    EXPECT_THAT(FilesBelow(FromUtf8(copy)),
                testing::UnorderedElementsAre(
                    "StartTUI.exe", "inst\\common\\deep\\er\\file.dat", "inst\\volumes.txt",
                    "inst\\" + UsualOs() + "\\code\\bin\\ZEPInsAppliGUI.exe", "media.db",
                    "media.xml", "meta.TOCxml", "remove.bat", "setup.exe", "setup_noUAC.exe"));
    EXPECT_EQ(ReadFile(FromUtf8(copy + "\\inst\\common\\deep\\er\\file.dat")), "content");
    EXPECT_EQ(ReadFile(FromUtf8(copy + "\\setup.exe")), ReadFile(media.Launcher()));
}

TEST_F(TemporaryCopy, IsWhereTheInstallerRunsAndFindsItsMedia) {
    const Media media = MediaToCopy();
    const LauncherRun run = Run(media, {"-wait", "x"});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    const std::string copy = CopyOf(run);
    const InstallerReport& seen = run.Installer();
    EXPECT_EQ(seen.module, copy + "\\inst\\" + UsualOs() + "\\code\\bin\\ZEPInsAppliGUI.exe");
    EXPECT_THAT(seen.Arguments(), ElementsAre("-CDpath", copy, "x"));
    EXPECT_EQ(seen.Variable("ZEPAdmInstCurrentMediaDir"), copy);
    EXPECT_EQ(seen.Variable("MORInst"), copy + "\\inst");
    EXPECT_EQ(seen.Variable("ZEPAdmInstOriginalMediaDir"), media.Text());
}

// A random one: of version 4, in capitals.
MATCHER(IsIdentifier, "") {
    const auto isDigit = [](char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'); };
    return arg.size() == 36 && std::ranges::count_if(arg, isDigit) == 32 && arg[8] == '-' &&
           arg[13] == '-' && arg[14] == '4' && arg[18] == '-' && arg[23] == '-' &&
           std::string_view("89AB").find(arg[19]) != std::string_view::npos;
}

TEST_F(TemporaryCopy, IsNamedByANewIdentifierEachTime) {
    const Media media = MediaToCopy();
    const std::vector<std::string> first = Run(media).LeftInTemp();
    const std::vector<std::string> second = Run(media).LeftInTemp();
    EXPECT_THAT(first, ElementsAre(IsIdentifier()));
    EXPECT_THAT(second, ElementsAre(IsIdentifier()));
    EXPECT_NE(first, second);
}

TEST_F(TemporaryCopy, CarriesTheScriptThatRemovesIt) {
    const std::string copy = CopyOf(Run(MediaToCopy()));
    EXPECT_EQ(ReadFile(FromUtf8(copy + "\\remove.bat")),
              Lines({":begin", "rmdir /Q /S \"" + copy + "\\inst\" 1>nul 2>nul",
                     "if exist \"" + copy + "\\inst\" goto begin",
                     "rmdir /Q /S \"" + copy + "\\\" 1>nul 2>nul"}));
}

TEST_F(TemporaryCopy, IsWarnedOfOnTheErrorStreamWhenWaitedFor) {
    const std::string warnings = Lines(
        {" WARN: This media is composed of multiple volumes.",
         " WARN: If it is not done already, please copy each volume on a local hard drive before "
         "starting the installation.",
         " WARN: Not doing so might result in the installation leaving temporary files behind."});
    const Media media = MediaToCopy();
    EXPECT_EQ(Run(media, {"-wait"}).errors, warnings);
    EXPECT_EQ(Run(media).errors, "");
}

class NoCopy : public LauncherTableTest<const char*> {};

// Any value does.
TEST_P(NoCopy, IsMadeWhenForbidden) {
    variables["ZEPAdmInstDontCopyInstaller"] = GetParam();
    variables["ZEPAdmInstOriginalMediaDir"] = "from before";
    const Media media = MediaToCopy();
    const LauncherRun run = Run(media, {"-wait"});
    EXPECT_EQ(run.Installer().module, media.InstallerText(UsualOs()));
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstOriginalMediaDir"), std::nullopt);
    EXPECT_EQ(run.errors, "");
    EXPECT_THAT(run.LeftInTemp(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Values, NoCopy, testing::Values("1", "0"),
                         [](const auto& row) { return std::string(row.param); });

TEST_F(TemporaryCopy, IsNotMadeOfACompleteMedia) {
    const LauncherRun run = Run(UsualMedia());
    EXPECT_EQ(run.Installer().Variable("ZEPAdmInstOriginalMediaDir"), std::nullopt);
    EXPECT_THAT(run.LeftInTemp(), IsEmpty());
}

class RequiredEntry : public TemporaryCopy, public testing::WithParamInterface<const char*> {};

TEST_P(RequiredEntry, MissingFailsTheCopy) {
    // The launcher itself has another name here, so that "setup.exe" can be missing too.
    Media media(scratch.Dir() / "media", "launcher.exe");
    media.AddInstaller(UsualOs()).MakeSplit(2, "SET");
    stdfs::remove(media.Root() / GetParam());
    const LauncherRun run = Run(media, {"-wait"});
    EXPECT_EQ(run.exitCode, 1u);
    EXPECT_THAT(
        run.BoxTexts(),
        ElementsAre("Cannot copy the installer to a temporary directory: " + CopyOf(run) + "\\",
                    testing::HasSubstr(media.Text(GetParam()))));
    EXPECT_FALSE(run.report.has_value());
    EXPECT_FALSE(stdfs::exists(FromUtf8(CopyOf(run) + "\\remove.bat")));
}

// Each file at the root belongs to the copy.
INSTANTIATE_TEST_SUITE_P(Entries, RequiredEntry,
                         testing::Values("meta.TOCxml", "media.xml", "media.db", "setup.exe",
                                         "StartTUI.exe", "setup_noUAC.exe"),
                         [](const auto& row) { return TestName(row.param); });

// Of the separate installer media its own folder and the common one join the copy.
TEST_F(TemporaryCopy, TakesInASeparateInstaller) {
    Media media = EmptyMedia();
    media.AddMarker(UsualOs()).MakeSplit(2, "SET");
    AddStandInInstaller(scratch.Dir() / "other", UsualOs());
    scratch.Write("other/inst/common/extra.dat");
    scratch.Write("other/inst/win_csa64/foreign.dat");
    const LauncherRun run = Run(media, {"-installerPath", scratch.Text("other")});
    const std::string copy = CopyOf(run);
    EXPECT_EQ(run.Installer().module,
              copy + "\\inst\\" + UsualOs() + "\\code\\bin\\ZEPInsAppliGUI.exe");
    EXPECT_TRUE(stdfs::exists(FromUtf8(copy + "\\inst\\common\\extra.dat")));
    EXPECT_TRUE(stdfs::exists(FromUtf8(copy + "\\inst\\common\\" + UsualOs() + ".installos")));
    EXPECT_FALSE(stdfs::exists(FromUtf8(copy + "\\inst\\win_csa64")));
}

TEST_F(TemporaryCopy, SeparateInstallerWithoutACommonFolderIsWhole) {
    Media media = EmptyMedia();
    media.AddMarker(UsualOs()).MakeSplit(2, "SET");
    AddStandInInstaller(scratch.Dir() / "other", UsualOs());
    const LauncherRun run = Run(media, {"-wait", "-installerPath", scratch.Text("other")});
    EXPECT_THAT(run, EndsQuietlyWith(0));
}

}  // namespace
}  // namespace launcher::test
