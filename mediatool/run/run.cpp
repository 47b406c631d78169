#include "mediatool/run/run.h"

#include <algorithm>
#include <exception>

#include "mediatool/base/interruption.h"
#include "mediatool/run/command_line.h"
#include "mediatool/run/start.h"
#include "mediatool/run/streams.h"

namespace launcher::mediatool {
namespace {

constexpr DWORD kTick = 50;               // milliseconds
constexpr ULONGLONG kReportsEvery = 500;  // to look for reports of a crash, which costs more

constexpr ULONGLONG kLastLinesTime = 10000;  // milliseconds without a line that is taken
constexpr std::size_t kBytesBesideALine = 100;

int ExitCodeOf(EndedBy endedBy) {
    if (endedBy == EndedBy::TimeLimit) return kTimeLimitReached;
    return endedBy == EndedBy::Interrupt ? kInterrupted : kOwnMistake;
}

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
        Try(&Watch::Follow);
        if (run_.endedBy == EndedBy::Launcher)
            TakeExitCode();
        else
            Try(&Watch::EndProcesses);
        Try(&Watch::TakeWhatIsLeft);
        if (run_.endedBy == EndedBy::Failure) EndAfterFailure();
        return std::move(run_);
    }

  private:
    // Whatever it is: what was started must not be left to itself because of it.
    void Try(void (Watch::*step)()) {
        try {
            (this->*step)();
        } catch (const std::exception& failure) {
            run_.endedBy = EndedBy::Failure;
            run_.failure = failure.what();
        }
    }

    void Follow() {
        witness_.Started(request_);
        bool ended = false;
        while (!ended) {
            ended = WaitsForATick();
            FollowStreams();
            AnswerBoxes();
            run_.milliseconds = GetTickCount64() - start_;
            witness_.TimePassed(run_.milliseconds);
        }
    }

    // True when it is over, one way or another.
    bool WaitsForATick() {
        const HANDLE events[] = {family_.Launcher(), interruption_.Event()};
        const DWORD event = WaitForMultipleObjects(2, events, FALSE, isBehind_ ? 0 : kTick);
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
        if (installerIsThere_ || !family_.LookForInstaller() || !witness_.TakesMore()) return;
        TakeLines();
        installerIsThere_ = true;
    }

    // Some at a time: boxes and the time limit cannot wait for megabytes of them.
    void TakeLines() {
        isBehind_ = false;
        if (!witness_.TakesMore()) return;
        for (WatchedStream* const stream : {&output_, &errors_}) {
            const std::uint64_t before = stream->Taken();
            Add(stream->TakeLines(installerIsThere_));
            if (stream->Taken() > before && stream->HasMore()) isBehind_ = true;
        }
    }

    // What was written by now: somebody may go on writing. The one who takes the lines may be slow,
    // but must not stand still for long; nor must a file of which a part is locked.
    void TakeWhatIsLeft() {
        run_.launcher = family_.SeenLauncher();
        run_.installer = family_.Installer();
        const std::uint64_t sizes[] = {output_.Size(), errors_.Size()};
        const auto bytesLeft = [&] {
            return sizes[0] - std::min(sizes[0], output_.Taken()) + sizes[1] -
                   std::min(sizes[1], errors_.Taken());
        };
        std::uint64_t left = bytesLeft();
        for (ULONGLONG taken = GetTickCount64();
             left > 0 && GetTickCount64() - taken < kLastLinesTime;) {
            TakeLines();
            if (bytesLeft() < left)
                taken = GetTickCount64();
            else
                Sleep(kTick);
            left = bytesLeft();
        }
        if (left > 0) run_.bytesLeftOut = left + output_.RestSize() + errors_.RestSize();
        if (run_.bytesLeftOut > 0 || (run_.installer && run_.installer->stillRunning)) return;
        for (WatchedStream* const stream : {&output_, &errors_})
            Add(stream->TakeRest());
    }

    void Add(const std::vector<SeenLine>& lines) {
        if (!lines.empty()) witness_.Saw(lines);
        for (const SeenLine& line : lines) {
            keptBytes_ += line.text.size() + kBytesBesideALine;
            if (keptBytes_ <= kKeptLines)
                run_.lines.push_back(line);
            else
                ++run_.linesLeftOut;
        }
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
        run_.exitCode = static_cast<std::uint32_t>(ExitCodeOf(run_.endedBy));
        if (request_.endInstaller)
            family_.EndAll(run_.exitCode);
        else
            family_.EndLauncher(run_.exitCode);
        family_.LookForInstaller();
    }

    void EndAfterFailure() {
        run_.exitCode = static_cast<std::uint32_t>(kOwnMistake);
        family_.EndLauncher(run_.exitCode);
        run_.launcher = family_.SeenLauncher();
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
    bool isBehind_ = false;      // lines were taken, and there are more to take at once
    std::size_t keptBytes_ = 0;  // what the lines so far come to
    WatchedRun run_;
};

}  // namespace

WatchedRun RunWatched(const RunRequest& request, const Interruption& interruption,
                      Witness& witness) {
    if (interruption.HasCome()) {
        WatchedRun run;
        run.exitCode = kInterrupted;
        run.endedBy = EndedBy::Interrupt;
        return run;
    }
    // Wine starts the desktop for the process that first asks for one, as its child: not the
    // launcher's, then. Windows has it.
    GetDesktopWindow();
    return Watch(request, interruption, witness).ToTheEnd();
}

}  // namespace launcher::mediatool
