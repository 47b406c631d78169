// ChooseInstaller on fakes of all it asks, for the media "M:".

#include "launcher/choose_installer.h"

#include <windows.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "fs/environment.h"
#include "fs/file_type.h"
#include "installer/folder_dialog.h"
#include "media/installer_media.h"
#include "platform/architecture.h"
#include "tests/support/fake_messages.h"
#include "tests/support/isolated_test.h"
#include "tests/support/options.h"

namespace launcher {
namespace {

// What the fakes answer: which files there are, which Windows this is, what the lookup in a medium
// finds, what the user does in the folder dialog.
struct FakeMachine {
    bool is64Bit = true;
    std::set<std::string> files;
    std::set<std::string> installers;  // the folders in which LocateInstaller finds kLocatedExe
    bool confirmed = false;            // what SelectInstallerFolder answers
    bool picked = false;               // whether it found kLocatedExe
};
FakeMachine machine;

const std::string kLocatedExe = "L:\\inst\\installer.exe";

}  // namespace

bool PathExists(const std::string& path) {
    return machine.files.contains(path);
}

bool Is64BitWindows() {
    return machine.is64Bit;
}

bool LocateInstaller(LaunchOptions& options, const std::string& folder, bool quiet) {
    test::Record("look in \"" + folder + "\"" + (quiet ? " quietly" : "") + " for " +
                 options.osFolder);
    if (!machine.installers.contains(folder)) return false;
    options.installerExePath = kLocatedExe;
    return true;
}

bool SelectInstallerFolder(LaunchOptions& options) {
    test::Record("dialog for " + options.osFolder);
    if (machine.picked) options.installerExePath = kLocatedExe;
    return machine.confirmed;
}

namespace {

using test::journal;
using testing::Contains;
using testing::ElementsAre;

std::string Exe(const std::string& osFolder) {
    return "M:\\inst\\" + osFolder + "\\code\\bin\\ZEPInsAppliGUI.exe";
}

std::string Marker(const std::string& osFolder) {
    return "M:\\inst\\common\\" + osFolder + ".installos";
}

const std::string kB64Exe = Exe("win_b64");
const std::string kB64Marker = Marker("win_b64");
const std::string kIntelMarker = Marker("intel_a");

constexpr char kNotFor32Bit[] =
    "error: This media cannot be installed on a 32-bit Windows operating system.";
constexpr char kNotForWindows[] = "error: This media is not for Windows operating system.";
constexpr char kNotFound[] =
    "error: The installer is not found, please read the file \"ReadMe_Windows.txt\".";
constexpr char kNotFoundNoDialog[] =
    "error: The installer is not found, please read the file \"ReadMe_Windows.txt\".\n"
    "You can also launch this executable again with the '-UI' argument to open a directory browse "
    "dialog box to select the installer directory.";

// On a 64-bit Windows, with boxes off and no variable set.
class ChooseInstallerTest : public test::IsolatedTest {
  protected:
    ChooseInstallerTest() {
        machine = {};
        for (const char* variable :
             {"ZEPAdmInstODTinstallOSpath", "ZEP_UseExternalInstaller", "ZEP_TALVOR_Installer"})
            SetEnvVar(variable, "");
        Restart();
    }

    // Back to the options and the journal of the start.
    void Restart() {
        journal.clear();
        options_ = test::ParseOptions({}, false);
        options_.mediaDir = Path("M:");
    }
    // False when the process would have ended.
    bool Find() {
        try {
            ChooseInstaller(options_);
            return true;
        } catch (const test::ProcessExit&) {
            return false;
        }
    }

    LaunchOptions options_ = test::ParseOptions({});
};

TEST_F(ChooseInstallerTest, TakesTheInstallerInTheMedia) {
    machine.files = {kB64Exe};
    EXPECT_TRUE(Find());
    EXPECT_EQ(options_.installerExePath, kB64Exe);
    EXPECT_EQ(options_.osFolder, "win_b64");
    EXPECT_EQ(options_.installerOrigin, InstallerOrigin::CurrentMedia);
    EXPECT_THAT(journal,
                ElementsAre("trace: 64-bit OS",
                            "trace: Installer found in current media: \"" + kB64Exe + "\"."));
}

TEST_F(ChooseInstallerTest, RefusesA64BitMediaOnA32BitWindowsWhateverElseIsGiven) {
    machine.is64Bit = false;
    machine.files = {kB64Exe, kIntelMarker};
    machine.installers = {"I:"};
    options_.installerPath = "I:";
    EXPECT_FALSE(Find());
    EXPECT_THAT(journal, ElementsAre("trace: 32-bit OS", kNotFor32Bit));
}

TEST_F(ChooseInstallerTest, GoesByTheMarkerInAMediaWithoutAnInstaller) {
    machine.files = {kIntelMarker};
    machine.installers = {"I:"};
    options_.installerPath = "I:";
    EXPECT_TRUE(Find());
    EXPECT_EQ(options_.installerExePath, kLocatedExe);
    EXPECT_THAT(journal,
                ElementsAre("trace: 64-bit OS", "trace: No installer in the current media.",
                            "trace: " + kIntelMarker + " found, os intel_a",
                            "trace: Argument \"-installerPath\" found and its value is \"I:\".",
                            "look in \"I:\" for intel_a"));
}

TEST_F(ChooseInstallerTest, TracesEachMissingMarkerAndRefusesTheMedia) {
    EXPECT_FALSE(Find());
    EXPECT_THAT(
        journal,
        ElementsAre("trace: 64-bit OS", "trace: No installer in the current media.",
                    "trace: " + kIntelMarker + " not found", "trace: " + kB64Marker + " not found",
                    "trace: " + Marker("win_csa64") + " not found", kNotForWindows));
}

TEST_F(ChooseInstallerTest, TestsOneMarkerForEveryFlavourWhenAskedTo) {
    SetEnvVar("ZEPAdmInstODTinstallOSpath", "given/as it is.txt");
    machine.files = {"given/as it is.txt"};
    for (const bool is64Bit : {true, false}) {
        Restart();
        machine.is64Bit = is64Bit;
        Find();
        EXPECT_EQ(options_.osFolder, is64Bit ? "win_b64" : "intel_a");
    }
    machine.files = {kIntelMarker};
    EXPECT_FALSE(Find());
    EXPECT_EQ(journal.back(), kNotForWindows);
}

TEST_F(ChooseInstallerTest, DropsTheInstallerOfTheMediaWhenAnotherIsAskedFor) {
    SetEnvVar("ZEP_UseExternalInstaller", "0");
    machine.files = {kB64Exe};
    EXPECT_FALSE(Find());
    EXPECT_EQ(options_.installerExePath, "");
    EXPECT_EQ(options_.osFolder, "win_b64");
    EXPECT_THAT(journal, Contains("trace: Installer found in the current media, \"" + kB64Exe +
                                  "\" but do not use it because of ZEP_UseExternalInstaller env "
                                  "var."));
}

// A second, slow way to choose: among the flavours that run on this Windows, the first that the
// media has. Every media is tried: each of the three installers and of the three markers there or
// not, with and without an installer elsewhere.
TEST_F(ChooseInstallerTest, AgreesWithAModelOnEveryMedia) {
    const std::vector<std::string> all = {"win_b64", "win_csa64", "intel_a"};
    options_.installerPath = "I:";
    for (unsigned media = 0; media < 256; ++media) {
        const auto bit = [media](unsigned i) { return (media >> i & 1) != 0; };
        machine.files.clear();
        for (unsigned i = 0; i < 3; ++i) {
            if (bit(i)) machine.files.insert(Exe(all[i]));
            if (bit(i + 3)) machine.files.insert(Marker(all[i]));
        }
        machine.is64Bit = bit(6);
        SetEnvVar("ZEP_UseExternalInstaller", bit(7) ? "1" : "");

        std::string inMedia;
        std::string marked;
        for (std::size_t i = all.size(); i-- > (machine.is64Bit ? 0 : 2);) {
            if (PathExists(Exe(all[i]))) inMedia = all[i];
            if (PathExists(Marker(all[i]))) marked = all[i];
        }
        const bool madeFor64Bit = bit(0) || bit(1) || (!bit(5) && (bit(3) || bit(4)));
        std::string exe;
        std::string osFolder = inMedia;
        if (!inMedia.empty() && !bit(7)) {
            exe = Exe(inMedia);
        } else if (!marked.empty() && (machine.is64Bit || !inMedia.empty() || !madeFor64Bit)) {
            exe = kLocatedExe;
            osFolder = marked;
        }
        Restart();
        options_.installerPath = "I:";
        machine.installers = {"I:"};
        SCOPED_TRACE(testing::PrintToString(machine.files) + " case " + std::to_string(media));
        EXPECT_EQ(Find(), !exe.empty());
        EXPECT_EQ(options_.installerExePath, exe);
        EXPECT_EQ(options_.osFolder, osFolder);
    }
}

// A medium that needs the separate installer media, on a 64-bit Windows.
class ChooseElsewhereTest : public ChooseInstallerTest {
  protected:
    ChooseElsewhereTest() { machine.files = {kB64Marker}; }

    // The journal after the choice of the flavour.
    static std::vector<std::string> Search() {
        EXPECT_EQ(journal.at(2), "trace: " + kB64Marker + " found, os win_b64");
        return {journal.begin() + 3, journal.end()};
    }
};

TEST_F(ChooseElsewhereTest, PrefersTheOptionToTheVariable) {
    options_.installerPath = "I:";
    SetEnvVar("ZEP_TALVOR_Installer", "V:");
    machine.installers = {"I:", "V:"};
    EXPECT_TRUE(Find());
    EXPECT_EQ(options_.installerOrigin, InstallerOrigin::Option);
    EXPECT_THAT(Search(),
                ElementsAre("trace: Argument \"-installerPath\" found and its value is \"I:\".",
                            "look in \"I:\" for win_b64"));
}

TEST_F(ChooseElsewhereTest, TakesTheVariableWhereTheOptionLeadsNowhere) {
    options_.installerPath = "\"I:\"/";
    SetEnvVar("ZEP_TALVOR_Installer", "V:/");
    machine.installers = {"V:/"};
    EXPECT_TRUE(Find());
    EXPECT_EQ(options_.installerOrigin, InstallerOrigin::Variable);
    EXPECT_THAT(
        Search(),
        ElementsAre("trace: Argument \"-installerPath\" found and its value is \"\"I:\"/\".",
                    "look in \"\"I:\"/\" for win_b64",
                    "trace: Environment variable ZEP_TALVOR_Installer is defined and its value is "
                    "\"V:/\".",
                    "look in \"V:/\" for win_b64"));
}

TEST_F(ChooseElsewhereTest, AsksNobodyWhereBoxesAreOff) {
    EXPECT_FALSE(Find());
    EXPECT_THAT(journal, testing::Not(Contains("dialog for win_b64")));
    EXPECT_EQ(journal.back(), kNotFoundNoDialog);
}

// The run goes on only when the user confirmed a folder and the lookup in the dialog found an
// installer.
TEST_F(ChooseElsewhereTest, AsksForAFolderWhereBoxesAreOn) {
    for (const bool confirmed : {true, false}) {
        for (const bool picked : {true, false}) {
            Restart();
            options_.useGui = true;
            machine.confirmed = confirmed;
            machine.picked = picked;
            EXPECT_EQ(Find(), confirmed && picked);
            EXPECT_EQ(options_.installerOrigin,
                      confirmed && picked ? InstallerOrigin::Dialog : InstallerOrigin::None);
            EXPECT_THAT(journal, Contains("dialog for win_b64"));
            EXPECT_EQ(journal.back(), confirmed && picked ? "dialog for win_b64" : kNotFound);
        }
    }
}

}  // namespace
}  // namespace launcher
