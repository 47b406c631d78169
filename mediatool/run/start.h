#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

#include "mediatool/run/family.h"

namespace launcher::mediatool {

// Nothing was started; what() is one sentence.
class NotStarted : public std::runtime_error {
  public:
    NotStarted(const std::string& sentence, int exitCode)
        : std::runtime_error(sentence), exitCode_(exitCode) {}
    int ExitCode() const { return exitCode_; }

  private:
    int exitCode_;
};

// Throws NotStarted when there is no such file, or none that can be looked at.
void CheckProgram(const std::string& program);

// Starts `program` with a command line of its own (both UTF-8) as this process was started: with
// its environment, current folder, rights, error mode and desktop. It inherits the two streams, an
// input that is at its end, and nothing else. `bound`: see Family::BindTogether. Throws NotStarted.
Family StartFamily(const std::string& program, const std::string& commandLine, HANDLE output,
                   HANDLE errors, bool bound);

}  // namespace launcher::mediatool
