#pragma once

#include <windows.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "installer/installer_process.h"
#include "tests/mediatool/support/mediatool_run.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

// A mediatool.exe that runs, with a console of its own that nobody sees. Texts are UTF-8.
class MediatoolProcess {
  public:
    // As RunMediatool. An `output` is its standard output, in place of the file that Output()
    // reads.
    MediatoolProcess(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                     const std::map<std::string, std::string>& variables, HANDLE output = nullptr);

    DWORD Id() const { return process_.dwProcessId; }
    bool EndsWithin(DWORD milliseconds) const;
    // Presses Ctrl+C in its console. False when the system does not let anybody.
    bool Interrupt() const;
    // Ends it at once.
    void Kill() const;
    // Waits for the end. Throws std::runtime_error, and ends it, when that takes too long.
    MediatoolRun Finish() const;
    // What it has written so far.
    std::string Output() const;

  private:
    TemporaryFolder streams_;
    ProcessInformation process_;
};

// An event with a name of its own, which lets programs that wait for it go on.
class NamedEvent {
  public:
    NamedEvent();
    NamedEvent(const NamedEvent&) = delete;
    NamedEvent& operator=(const NamedEvent&) = delete;
    // Lets all go on that still wait.
    ~NamedEvent();

    const std::string& Name() const { return name_; }
    void Set() const;
    void Reset() const;

  private:
    std::string name_;
    HANDLE event_;
};

// The programs below a folder that are running, one number for each process.
std::vector<DWORD> RunningBelow(const std::filesystem::path& folder);

// Whether there are none of them, or soon none any more.
bool NoneRunsBelow(const std::filesystem::path& folder);

}  // namespace launcher::test
