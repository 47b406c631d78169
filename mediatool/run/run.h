#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mediatool/run/box_watcher.h"
#include "mediatool/run/family.h"
#include "mediatool/run/moment.h"

namespace launcher::mediatool {

class Interruption;

// Exit codes of mediatool run that are not the launcher's: those of GNU's timeout and env, and the
// shell's for an interruption.
inline constexpr int kTimeLimitReached = 124;
inline constexpr int kOwnMistake = 125;  // or bad input
inline constexpr int kCannotStart = 126;
inline constexpr int kNoLauncher = 127;
inline constexpr int kInterrupted = 130;

// Texts are UTF-8.
struct RunRequest {
    std::string launcher;                    // the full path of setup.exe
    std::vector<std::string> arguments;      // its own
    std::optional<std::uint64_t> timeLimit;  // in milliseconds
    bool endInstaller = false;               // with the launcher, at the time limit
};

// Who wrote a line. The launcher and the installer share the streams: see Attribution in streams.h.
enum class Origin { LauncherOutput, LauncherErrors, InstallerOutput, InstallerErrors };

struct SeenLine {
    std::string text;  // as it was written, without its end
    Origin origin = Origin::LauncherOutput;
    Moment at = 0;
};

struct AnsweredBox {
    SeenBox box;
    Moment at = 0;
};

enum class EndedBy { Launcher, TimeLimit, Interrupt, Failure };

// The lines that are kept of a run, in bytes, each with 100 for what else there is of it.
inline constexpr std::size_t kKeptLines = 32 << 20;

// Everything about one watched run.
struct WatchedRun {
    std::uint32_t exitCode = 0;  // of the launcher; else mediatool's own
    EndedBy endedBy = EndedBy::Launcher;
    std::uint64_t milliseconds = 0;
    std::vector<AnsweredBox> boxes;
    std::vector<SeenLine> lines;          // the first ones
    std::uint64_t linesLeftOut = 0;       // the others: there is no room for them
    std::uint64_t bytesLeftOut = 0;       // after all these, not taken down in time
    std::optional<SeenProcess> launcher;  // nothing when it was not started
    std::optional<SeenProcess> installer;
    std::string failure;  // of mediatool, which ended the run
};

// Is told what happens, as it happens.
class Witness {
  public:
    virtual ~Witness() = default;
    virtual void Started(const RunRequest& request) = 0;  // first
    virtual void Saw(const std::vector<SeenLine>& lines) = 0;
    virtual void Saw(const AnsweredBox& box) = 0;
    virtual void TimePassed(std::uint64_t milliseconds) = 0;
    // While it does not, lines stay in the files that they were written to.
    virtual bool TakesMore() = 0;
};

// Starts a launcher, answers its boxes, and watches it to its end, to the time limit or to an
// interruption; after one, it is not started at all. A failure of the watching ends it too: nobody
// would answer its boxes any more. Sets nothing of this process that the launcher or the installer
// would inherit. Throws before anything is started only: NotStarted, and std::runtime_error when
// there is no place for the streams.
WatchedRun RunWatched(const RunRequest& request, const Interruption& interruption,
                      Witness& witness);

}  // namespace launcher::mediatool
