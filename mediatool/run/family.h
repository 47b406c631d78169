#pragma once

#include <windows.h>

#include <optional>
#include <vector>

#include "mediatool/base/owners.h"

namespace launcher::mediatool {

// A process, held so that its number goes to no other.
struct Member {
    DWORD id = 0;
    KernelObject process;
    bool wasToldToEnd = false;
};

struct SeenProcess {
    DWORD processId = 0;
    bool stillRunning = false;
    bool wasEnded = false;  // it did not end by itself
};

// A launcher and the processes that come from it.
class Family {
  public:
    explicit Family(Member launcher);

    // Has all that the launcher starts from now on end with it in EndAll, also what its parents no
    // longer tell of. For a launcher that was just started. On a Windows without nested jobs (7)
    // inside a job of the caller's, it does nothing.
    void BindTogether();

    HANDLE Launcher() const { return members_.front().process.Get(); }
    DWORD LauncherId() const { return members_.front().id; }

    // Looks for what the launcher has started: the installer, or what DEBUGCMD_INSTALLK7 names.
    // True once it has been seen; one that begins and ends between two looks is not.
    bool LookForInstaller();
    SeenProcess SeenLauncher() const { return Seen(members_.front()); }
    std::optional<SeenProcess> Installer() const;

    // Ends the launcher, with this exit code, and returns when it has ended, or does not in ten
    // seconds. What it started goes on.
    void EndLauncher(UINT exitCode);
    // Ends the whole family likewise.
    void EndAll(UINT exitCode);

    // The processes of Windows that show a report of the launcher's crash.
    std::vector<DWORD> CrashReporters() const;

  private:
    static SeenProcess Seen(const Member& member);
    bool AdoptChildren();
    void Tell(Member& member, UINT exitCode);
    bool AnyRuns() const;

    std::vector<Member> members_;  // the launcher first, then the installer
    KernelObject job_;
};

}  // namespace launcher::mediatool
