// ChooseInstaller on fakes of all it asks (fake_machine.h).

#include "launcher/choose_installer.h"

#include "fs/environment.h"
#include "tests/launcher/fake_machine.h"
#include "tests/launcher/journal.h"

namespace launcher {
namespace {

using test::ChooseInstallerTest;
using test::kB64Exe;
using test::kB64Marker;
using test::kCsa64Exe;
using test::kCsa64Marker;
using test::kIntelExe;
using test::kIntelMarker;
using test::kLocatedExe;
using test::kNotFor32Bit;
using test::kNotForWindows;
using test::kNotFoundNoDialog;
using test::machine;
using testing::ElementsAre;

constexpr char kNotFound[] =
    "error: The installer is not found, please read the file \"ReadMe_Windows.txt\".";

// The installers in a media, and the one that a 64-bit Windows takes, with its folder.
struct ChoiceCase {
    std::set<std::string> files;
    std::string exe;
    std::string osFolder;
};

void PrintTo(const ChoiceCase& row, std::ostream* out) {
    *out << testing::PrintToString(row.files);
}

class ChooseInstallerChoice : public ChooseInstallerTest,
                              public testing::WithParamInterface<ChoiceCase> {};

TEST_P(ChooseInstallerChoice, TakesTheFirstThatSuitsA64BitWindows) {
    machine.files = GetParam().files;
    EXPECT_TRUE(Find());
    EXPECT_EQ(options_.installerExePath, GetParam().exe);
    EXPECT_EQ(options_.osFolder, GetParam().osFolder);
    EXPECT_THAT(test::Journal(),
                ElementsAre("trace: 64-bit OS", "trace: Installer found in current media: \"" +
                                                    GetParam().exe + "\"."));
}

const ChoiceCase kChoices[] = {
    {{kB64Exe}, kB64Exe, "win_b64"},
    {{kCsa64Exe}, kCsa64Exe, "win_csa64"},
    {{kIntelExe}, kIntelExe, "intel_a"},
    {{kB64Exe, kIntelExe}, kB64Exe, "win_b64"},
    {{kB64Exe, kCsa64Exe, kIntelExe}, kB64Exe, "win_b64"},
    {{kCsa64Exe, kIntelExe}, kCsa64Exe, "win_csa64"},
};

INSTANTIATE_TEST_SUITE_P(All, ChooseInstallerChoice, testing::ValuesIn(kChoices));

TEST_F(ChooseInstallerTest, LooksForTheInstallerThatTheOptionsName) {
    options_.installerExeName = "ZEPInsAppliODT.exe";
    options_.mediaDir = Path("\\\\server\\share\\media");
    const std::string exe =
        "\\\\server\\share\\media\\inst\\win_b64\\code\\bin\\ZEPInsAppliODT.exe";
    machine.files = {exe};
    EXPECT_TRUE(Find());
    EXPECT_EQ(options_.installerExePath, exe);
}

TEST_F(ChooseInstallerTest, TakesOnlyTheIntelInstallerOnA32BitWindows) {
    machine.is64Bit = false;
    machine.files = {kIntelExe, kB64Exe, kCsa64Exe, kB64Marker};
    EXPECT_TRUE(Find());
    EXPECT_EQ(options_.osFolder, "intel_a");
    EXPECT_THAT(test::Journal(),
                ElementsAre("trace: 32-bit OS", "trace: Installer found in current media: \"" +
                                                    std::string(kIntelExe) + "\"."));
}

TEST_F(ChooseInstallerTest, RefusesA64BitMediaOnA32BitWindowsWhateverElseIsGiven) {
    machine.is64Bit = false;
    machine.files = {kB64Exe, kIntelMarker};
    machine.installers = {"I:"};
    options_.installerPath = "I:";
    EXPECT_FALSE(Find());
    EXPECT_THAT(test::Journal(), ElementsAre("trace: 32-bit OS", kNotFor32Bit));
}

// The Windows, the files of a media without an installer of its own, and the flavour that its
// markers choose, with the marker that does.
struct MarkerCase {
    bool is64Bit;
    std::set<std::string> files;
    std::string osFolder;
    std::string marker;
};

void PrintTo(const MarkerCase& row, std::ostream* out) {
    *out << (row.is64Bit ? "64-bit " : "32-bit ") << testing::PrintToString(row.files);
}

class ChooseInstallerMarkers : public ChooseInstallerTest,
                               public testing::WithParamInterface<MarkerCase> {};

TEST_P(ChooseInstallerMarkers, ChooseTheFlavour) {
    machine.is64Bit = GetParam().is64Bit;
    machine.files = GetParam().files;
    machine.installers = {"I:"};
    options_.installerPath = "I:";
    EXPECT_TRUE(Find());
    EXPECT_EQ(options_.osFolder, GetParam().osFolder);
    EXPECT_EQ(options_.installerExePath, kLocatedExe);
    EXPECT_THAT(test::Journal(),
                ElementsAre(GetParam().is64Bit ? "trace: 64-bit OS" : "trace: 32-bit OS",
                            "trace: No installer in the current media.",
                            "trace: " + GetParam().marker + " found, os " + GetParam().osFolder,
                            "trace: Argument \"-installerPath\" found and its value is \"I:\".",
                            "look in \"I:\" for " + GetParam().osFolder));
}

const MarkerCase kMarkers[] = {
    {true, {kB64Marker, kCsa64Marker, kIntelMarker}, "win_b64", kB64Marker},
    {true, {kCsa64Marker, kIntelMarker}, "win_csa64", kCsa64Marker},
    {true, {kIntelMarker}, "intel_a", kIntelMarker},
    {false, {kIntelMarker}, "intel_a", kIntelMarker},
    {false, {kIntelMarker, kB64Marker, kCsa64Marker}, "intel_a", kIntelMarker},
};

INSTANTIATE_TEST_SUITE_P(All, ChooseInstallerMarkers, testing::ValuesIn(kMarkers));

TEST_F(ChooseInstallerTest, TracesEachMissingMarkerAndRefusesTheMedia) {
    EXPECT_FALSE(Find());
    EXPECT_THAT(test::Journal(),
                ElementsAre("trace: 64-bit OS", "trace: No installer in the current media.",
                            "trace: " + std::string(kIntelMarker) + " not found",
                            "trace: " + std::string(kB64Marker) + " not found",
                            "trace: " + std::string(kCsa64Marker) + " not found", kNotForWindows));
}

TEST_F(ChooseInstallerTest, TestsOneMarkerForEveryFlavourWhenAskedTo) {
    SetEnvVar("ZEPAdmInstODTinstallOSpath", "given/as it is.txt");
    machine.files = {"given/as it is.txt", kCsa64Marker};
    machine.installers = {"I:"};
    for (const auto& [is64Bit, osFolder] : {std::pair(true, "win_b64"), {false, "intel_a"}}) {
        Restart();
        machine.is64Bit = is64Bit;
        options_.installerPath = "I:";
        EXPECT_TRUE(Find());
        EXPECT_EQ(options_.osFolder, osFolder);
        EXPECT_THAT(
            test::Journal(),
            testing::Contains(std::string("trace: given/as it is.txt found, os ") + osFolder));
    }
}

TEST_F(ChooseInstallerTest, TracesTheOneMarkerForEveryFlavour) {
    SetEnvVar("ZEPAdmInstODTinstallOSpath", "absent");
    machine.files = {kB64Marker};
    EXPECT_FALSE(Find());
    EXPECT_THAT(test::Journal(),
                ElementsAre("trace: 64-bit OS", "trace: No installer in the current media.",
                            "trace: absent not found", "trace: absent not found",
                            "trace: absent not found", kNotForWindows));
}

TEST_F(ChooseInstallerTest, DropsTheInstallerOfTheMediaWhenAnotherIsAskedFor) {
    SetEnvVar("ZEP_UseExternalInstaller", "0");
    machine.files = {kB64Exe, kIntelMarker};
    machine.installers = {"I:"};
    options_.installerPath = "I:";
    EXPECT_TRUE(Find());
    EXPECT_EQ(options_.installerExePath, kLocatedExe);
    EXPECT_EQ(options_.osFolder, "intel_a");
    EXPECT_THAT(
        test::Journal(),
        ElementsAre("trace: 64-bit OS",
                    "trace: Installer found in the current media, \"" + std::string(kB64Exe) +
                        "\" but do not use it because of ZEP_UseExternalInstaller env var.",
                    "trace: " + std::string(kIntelMarker) + " found, os intel_a",
                    "trace: Argument \"-installerPath\" found and its value is \"I:\".",
                    "look in \"I:\" for intel_a"));
}

TEST_F(ChooseInstallerTest, KeepsTheFolderOfADroppedInstallerWhenNoMarkerIsFound) {
    SetEnvVar("ZEP_UseExternalInstaller", "yes");
    machine.files = {kCsa64Exe};
    EXPECT_FALSE(Find());
    EXPECT_EQ(options_.installerExePath, "");
    EXPECT_EQ(options_.osFolder, "win_csa64");
}

// A media that needs the separate installer media, on a 64-bit Windows.
class FindElsewhereTest : public ChooseInstallerTest {
  protected:
    FindElsewhereTest() { machine.files = {kB64Marker}; }

    // The journal behind the choice of the flavour.
    static std::vector<std::string> Search() {
        EXPECT_THAT(std::vector(test::Journal().begin(), test::Journal().begin() + 3),
                    ElementsAre("trace: 64-bit OS", "trace: No installer in the current media.",
                                "trace: " + std::string(kB64Marker) + " found, os win_b64"));
        return {test::Journal().begin() + 3, test::Journal().end()};
    }
};

TEST_F(FindElsewhereTest, PrefersTheOptionToTheVariable) {
    options_.installerPath = "I:";
    SetEnvVar("ZEP_TALVOR_Installer", "V:");
    machine.installers = {"I:", "V:"};
    EXPECT_TRUE(Find());
    EXPECT_THAT(Search(),
                ElementsAre("trace: Argument \"-installerPath\" found and its value is \"I:\".",
                            "look in \"I:\" for win_b64"));
}

TEST_F(FindElsewhereTest, TakesTheVariableWhereTheOptionLeadsNowhere) {
    options_.installerPath = "\"I:\"/";
    SetEnvVar("ZEP_TALVOR_Installer", "V:/");
    machine.installers = {"V:/"};
    EXPECT_TRUE(Find());
    EXPECT_THAT(
        Search(),
        ElementsAre("trace: Argument \"-installerPath\" found and its value is \"\"I:\"/\".",
                    "look in \"\"I:\"/\" for win_b64",
                    "trace: Environment variable ZEP_TALVOR_Installer is defined and its value is "
                    "\"V:/\".",
                    "look in \"V:/\" for win_b64"));
}

TEST_F(FindElsewhereTest, AsksNobodyWhereBoxesAreOff) {
    EXPECT_FALSE(Find());
    EXPECT_THAT(Search(), ElementsAre("look in \"\" for win_b64", "look in \"\" for win_b64",
                                      kNotFoundNoDialog));
}

// What the dialog answers, whether the lookup in it found an installer, and whether the run goes
// on: only with both.
TEST_F(FindElsewhereTest, AsksForAFolderWhereBoxesAreOn) {
    for (const auto& [confirmed, picked] :
         {std::pair(true, true), {true, false}, {false, true}, {false, false}}) {
        Restart();
        options_.useGui = true;
        machine.confirmed = confirmed;
        machine.picked = picked;
        const bool found = confirmed && picked;
        EXPECT_EQ(Find(), found);
        std::vector<std::string> expected = {"look in \"\" for win_b64", "look in \"\" for win_b64",
                                             "dialog for win_b64"};
        if (!found) expected.push_back(kNotFound);
        EXPECT_EQ(Search(), expected);
        EXPECT_EQ(options_.installerExePath, picked ? kLocatedExe : "");
    }
}

}  // namespace
}  // namespace launcher
