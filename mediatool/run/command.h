#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "mediatool/run/run.h"

namespace launcher::mediatool {

// The subcommand "run".
class RunCommand {
  public:
    // Adds it to the options of the program.
    explicit RunCommand(CLI::App& app);

    // Runs what was parsed, with the launcher's arguments. Returns the exit code. Throws BadInput
    // before anything is started.
    int Run(std::vector<std::string> launcherArguments);

    CLI::App* command;

  private:
    RunRequest Request(std::vector<std::string> launcherArguments) const;

    std::string media_;
    std::string timeLimit_;
    std::string log_;
    bool json_ = false;
    bool endInstaller_ = false;
};

}  // namespace launcher::mediatool
