#pragma once

#include <span>
#include <string>
#include <vector>

#include "fs/path.h"

namespace launcher {

// The installer's executables: the ordinary one, and those of "--pipeserver" and "--odt".
inline constexpr char kInstallerName[] = "ZEPInsAppliGUI.exe";
inline constexpr char kPipeServerName[] = "ZEPInsPipeServer.exe";
inline constexpr char kOdtName[] = "ZEPInsAppliODT.exe";

// The media folder for "--odt".
inline constexpr char kCurrentMediaVar[] = "CurrentMediaDir";

// The lookup that found the installer.
enum class InstallerOrigin { None, CurrentMedia, Option, Variable, Dialog };

// Why the search for volumes set `skipTemporaryCopy`.
enum class CopySkipped : int {
    No,            // it did not; an option may have
    BySoftMgt,     // "-SoftMgt": nothing is searched for
    ByRepository,  // nor is it with kRepositoryVar
    NotSplit,
    Complete,  // all volumes were found
};

// The options of the command line and the state of the one launch they start. Owned by the entry
// point for the whole run. A function that takes it by mutable reference changes the launch; all
// others take it const. Narrow strings are UTF-8.
class LaunchOptions {
  public:
    // Parses a command line: `argv[0]`, the program, is skipped; "-env" assignments take effect at
    // once. A null `argv` leaves the defaults. The two flags are the defaults of `useGui` and
    // `wait`. A bad command line is reported and ends the process with exit code 1:
    //   "Bad -env argument", "Bad -installerPath argument"   the value is missing
    //   "-SoftMgt must be used with another flag (either -List, -Check, -Commit or -Rollback)."
    //   "-" + action + " must be used with the -SoftMgt flag."
    LaunchOptions(int argc, const wchar_t* const* argv, std::string installerExeName,
                  bool useGuiDefault, bool waitDefault);

    bool wait;                       // wait for the installer and hand back its exit code
    bool useGui;                     // messages in boxes; the folder dialog may be offered
    bool interactiveSession = true;  // told to the installer
    // The last console message was a warning or an error. Mutable: showing a message changes this
    // and nothing else.
    mutable bool lastMessageWasProblem = false;
    std::vector<std::string> installerArgs;  // passed on, in command-line order
    std::string installerPath;               // "-installerPath": a media folder, as given
    bool softMgt = false;                    // "-SoftMgt"
    bool softMgtReadOnly = false;            // "-List" or "-Check": needs no administrator
    bool skipTemporaryCopy = false;          // run the installer from where it is
    bool temporaryCopyMade = false;
    bool uninstall = false;        // the last of "--mgt" and "--uninst"; recorded only
    std::string softMgtAction;     // empty, "List", "Check1", "Commit" or "Rollback"
    Path mediaDir;                 // root folder of the media, of its copy once there is one
    std::string mediaInstDir;      // the "inst" folder of a separate installer media, ending in
                                   // a backslash; empty when there is none
    std::string installerExeName;  // file name of the installer
    std::string installerExePath;  // its full path once found; empty before
    std::string osFolder;          // "win_b64", "win_csa64" or "intel_a" once chosen

    // How this was decided; recorded only.
    InstallerOrigin installerOrigin = InstallerOrigin::None;
    std::string installerFoundAt;  // `installerExePath` before it moves onto the copy
    CopySkipped copySkipped = CopySkipped::No;
};

// An option of the command line; in other letters it is none.
struct Option {
    const char* name;
    bool takesValue;  // the next argument
    void (*apply)(LaunchOptions& options, const std::string& value);
};

inline constexpr char kEnvOption[] = "-env";

std::span<const Option> AllOptions();

// Null for every other argument: that one goes to the installer.
const Option* FindOption(const std::string& argument);

// The value of "-env": "NAME=VALUE"; without "=", or with nothing before it, the whole text is the
// name and the value is "1".
struct Assignment {
    std::string name;
    std::string value;
};
Assignment ParseAssignment(const std::string& text);

}  // namespace launcher
