#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mediatool/base/json.h"
#include "mediatool/dry_run/environment.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"
#include "mediatool/dry_run/variables.h"
#include "mediatool/media/launcher_view.h"

namespace launcher {
class LaunchOptions;
}

namespace launcher::mediatool {

struct DryRunRequest {
    std::string media;                                             // the folder with the launcher
    std::vector<std::string> arguments;                            // of the launcher
    PretendedMachine machine;                                      // without the launcher's path
    std::vector<std::pair<std::string, std::string>> environment;  // set before the run
};

// The installer that was chosen.
struct ChosenInstaller {
    std::string path;     // as it would be started; in the copy when there is one
    std::string foundAt;  // where it was found
    std::string osFolder;
    std::string foundBy;  // "current-media", "-installerPath", "ZEP_TALVOR_Installer",
                          // "folder-dialog"
    std::string program;  // what kind of file it is: "64-bit", "32-bit", "library", "other
                          // machine", "no program", "cut off", "folder", "unreadable"
    std::string fault;    // why Windows does not start that: "it is a folder"; mostly empty
};

struct CopyDecision {
    bool made = false;
    std::string reason;  // a sentence
};

// What a run comes to that nobody watches.
enum class Verdict {
    Starts,   // the installer, without waiting for anybody
    Waits,    // in a box, the folder dialog or a console, and would start it then
    Refused,  // does not start it; mostly after a box
};

// Everything about one rehearsed run.
struct DryRun {
    std::string launcher;                // full path of setup.exe
    std::string doubt;                   // why it may do something else, a sentence; mostly empty
    std::vector<std::string> arguments;  // its own
    PretendedMachine machine;
    std::vector<std::string> variables;     // names of those that are pretended
    std::vector<SetVariable> setVariables;  // that the launcher reads, when it starts
    bool isAdministrator = false;           // as the launcher sees it
    bool tracesInBoxes = false;
    std::string temp;           // its "TEMP"
    std::string workingFolder;  // that the launcher and the installer would have
    Journal journal;
    int exitCode = 0;
    bool exitCodeIsInstallers = false;
    std::string meaning;  // of the exit code, as a sentence
    Verdict verdict = Verdict::Refused;
    std::string summary;                          // the verdict in one line
    std::vector<std::string> hints;               // what may be a slip, each a sentence
    bool countsVolumes = false;                   // starts nothing, as ZEPAdmODTMultiVolumes asks
    bool started = false;                         // the installer would have been
    bool showsCommandLine = false;                // in a console that stays open, as
                                                  // DEBUGCMD_INSTALLK7 asks; no installer then
    std::vector<std::string> installerArguments;  // as it would see them, without the program
    std::vector<Change> environment;
    std::optional<ChosenInstaller> installer;
    std::optional<LauncherView> volumes;  // nothing when the run does not get that far
    bool volumesChecked = false;          // false when an option or a variable forbids it
    CopyDecision copy;

    // Boxes, dialogs and the console that stays open, in which a run that nobody watches waits for
    // ever.
    std::size_t Waits() const;
};

// Rehearses one run of the launcher in this process, whose environment is the same afterwards.
// Throws BadInput.
DryRun RunDry(const DryRunRequest& request);

Verdict VerdictOf(const DryRun& run);
// In one line, with the cause and what to do about it. The causes and remedies of messages are
// those of docs/messages.md.
std::string SummaryOf(const DryRun& run);
// What may be a slip although the run does as it is told, each as a sentence. `options` are those
// of the run, for its arguments; null after a bad command line.
std::vector<std::string> HintsOf(const DryRun& run, const LaunchOptions* options);

// As it is written in outputs: "starts", "waits", "refused".
std::string VerdictName(Verdict verdict);

// The outputs, for people and for programs. With `everything`, all that was looked for, every
// variable and every copied file.
std::string TextOf(const DryRun& run, bool everything);
Json JsonOf(const DryRun& run);

}  // namespace launcher::mediatool
