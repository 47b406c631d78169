#pragma once

#include <set>
#include <string>

#include "tests/launcher/base/options_fields.h"
#include "tests/launcher/isolated_test.h"

namespace launcher::test {

// What the fakes below ChooseInstaller answer: which files there are, which Windows this is, what
// the lookup in a media finds, what a person does in the folder dialog.
struct FakeMachine {
    bool is64Bit = true;
    std::set<std::string> files;       // what PathExists finds
    std::set<std::string> installers;  // the folders in which LocateInstaller finds kLocatedExe
    bool confirmed = false;            // what SelectInstallerFolder answers
    bool picked = false;               // whether it found kLocatedExe
};
extern FakeMachine machine;

inline constexpr char kLocatedExe[] = "L:\\inst\\installer.exe";

// The installers and the markers of the media "M:".
inline constexpr char kIntelExe[] = "M:\\inst\\intel_a\\code\\bin\\ZEPInsAppliGUI.exe";
inline constexpr char kB64Exe[] = "M:\\inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe";
inline constexpr char kCsa64Exe[] = "M:\\inst\\win_csa64\\code\\bin\\ZEPInsAppliGUI.exe";
inline constexpr char kIntelMarker[] = "M:\\inst\\common\\intel_a.installos";
inline constexpr char kB64Marker[] = "M:\\inst\\common\\win_b64.installos";
inline constexpr char kCsa64Marker[] = "M:\\inst\\common\\win_csa64.installos";

// Journal lines of the refusals.
inline constexpr char kNotFor32Bit[] =
    "error: This media cannot be installed on a 32-bit Windows operating system.";
inline constexpr char kNotForWindows[] = "error: This media is not for Windows operating system.";
inline constexpr char kNotFoundNoDialog[] =
    "error: The installer is not found, please read the file \"ReadMe_Windows.txt\".\n"
    "You can also launch this executable again with the '-UI' argument to open a directory browse "
    "dialog box to select the installer directory.";

// Runs ChooseInstaller on the fakes for the media "M:", on a 64-bit Windows, with boxes off and no
// variable set.
class ChooseInstallerTest : public IsolatedTest {
  protected:
    ChooseInstallerTest();

    // Back to the options and the journal of the start.
    void Restart();
    // False when the process would have ended, with exit code 1.
    bool Find();

    LaunchOptions options_;
};

}  // namespace launcher::test
