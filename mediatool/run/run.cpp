#include "mediatool/run/run.h"

#include <algorithm>

#include "mediatool/base/interruption.h"
#include "mediatool/run/command_line.h"
#include "mediatool/run/start.h"
#include "mediatool/run/streams.h"

namespace launcher::mediatool {
namespace {

constexpr DWORD kTick = 50;               // milliseconds
constexpr ULONGLONG kReportsEvery = 500;  // to look for reports of a crash, which costs more

class Watch {
  public:
    Watch(const RunRequest& request, const Interruption& interruption, Witness& witness)
        : request_(request),
          interruption_(interruption),
          witness_(witness),
          family_(StartFamily(request.launcher, CommandLineOf(request.launcher, request.arguments),
                              output_.ForLauncher(), errors_.ForLauncher(), request.endInstaller)),
          boxes_(family_.LauncherId()) {
        output_.CloseOwnEnd();
        errors_.CloseOwnEnd();
    }

    WatchedRun ToTheEnd() {
        bool ended = false;
        while (!ended) {
            ended = WaitsForATick();
            FollowStreams();
            AnswerBoxes();
            run_.milliseconds = GetTickCount64() - start_;
            witness_.TimePassed(run_.milliseconds);
        }
        if (run_.endedBy == EndedBy::Launcher)
            TakeExitCode();
        else
            EndProcesses();
        run_.installer = family_.Installer();
        if (!run_.installer || !run_.installer->stillRunning) TakeRests();
        return std::move(run_);
    }

  private:
    // True when it is over, one way or another.
    bool WaitsForATick() {
        const HANDLE events[] = {family_.Launcher(), interruption_.Event()};
        const DWORD event = WaitForMultipleObjects(2, events, FALSE, kTick);
        if (event == WAIT_OBJECT_0) return true;
        if (event == WAIT_OBJECT_0 + 1)
            run_.endedBy = EndedBy::Interrupt;
        else if (request_.timeLimit && GetTickCount64() - start_ >= *request_.timeLimit)
            run_.endedBy = EndedBy::TimeLimit;
        return run_.endedBy != EndedBy::Launcher;
    }

    // What was written until the installer is seen for the first time may be either's.
    void FollowStreams() {
        TakeLines();
        if (installerIsThere_ || !family_.LookForInstaller()) return;
        TakeLines();
        installerIsThere_ = true;
    }

    void TakeLines() {
        for (WatchedStream* const stream : {&output_, &errors_})
            Add(stream->TakeLines(installerIsThere_));
    }

    void TakeRests() {
        for (WatchedStream* const stream : {&output_, &errors_})
            Add(stream->TakeRest());
    }

    void Add(const std::vector<SeenLine>& lines) {
        if (!lines.empty()) witness_.Saw(lines);
        run_.lines.insert(run_.lines.end(), lines.begin(), lines.end());
    }

    void AnswerBoxes() {
        if (GetTickCount64() - reportersLookedFor_ >= kReportsEvery) {
            reporters_ = family_.CrashReporters();
            reportersLookedFor_ = GetTickCount64();
        }
        for (const SeenBox& box : boxes_.Look(reporters_)) {
            run_.boxes.push_back({box, Now()});
            witness_.Saw(run_.boxes.back());
        }
    }

    void TakeExitCode() {
        DWORD code = 0;
        GetExitCodeProcess(family_.Launcher(), &code);
        run_.exitCode = code;
    }

    // The launcher may have started the installer just before.
    void EndProcesses() {
        const int exitCode = run_.endedBy == EndedBy::TimeLimit ? kTimeLimitReached : kInterrupted;
        run_.exitCode = static_cast<std::uint32_t>(exitCode);
        if (request_.endInstaller)
            family_.EndAll(run_.exitCode);
        else
            family_.EndLauncher(run_.exitCode);
        FollowStreams();
    }

    const RunRequest& request_;
    const Interruption& interruption_;
    Witness& witness_;
    WatchedStream output_{Origin::LauncherOutput, Origin::InstallerOutput};
    WatchedStream errors_{Origin::LauncherErrors, Origin::InstallerErrors};
    Family family_;
    const ULONGLONG start_ = GetTickCount64();
    BoxWatcher boxes_;
    std::vector<DWORD> reporters_;
    ULONGLONG reportersLookedFor_ = 0;
    bool installerIsThere_ = false;
    WatchedRun run_;
};

}  // namespace

WatchedRun RunWatched(const RunRequest& request, const Interruption& interruption,
                      Witness& witness) {
    if (interruption.HasCome()) return {kInterrupted, EndedBy::Interrupt, 0, {}, {}, {}};
    // Wine starts the desktop for the process that first asks for one, as its child: not the
    // launcher's, then. Windows has it.
    GetDesktopWindow();
    return Watch(request, interruption, witness).ToTheEnd();
}

}  // namespace launcher::mediatool
