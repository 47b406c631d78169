#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "mediatool/create/checksum.h"
#include "mediatool/create/create.h"

namespace launcher::mediatool {

// The subcommand "create".
class CreateCommand {
  public:
    // Adds it to the options of the program.
    explicit CreateCommand(CLI::App& app);

    // Does what was parsed. Returns the exit code. Throws BadInput and Refused.
    int Run();

    CLI::App* command;

  private:
    CreateRequest request_;
    std::string layout_;
    std::string volumes_;
    std::string firstOuter_;
    std::vector<const CLI::Option*> ofOuter_;  // the options of that layout
    bool json_ = false;
};

// The subcommand "checksum".
class ChecksumCommand {
  public:
    explicit ChecksumCommand(CLI::App& app);

    int Run();

    CLI::App* command;

  private:
    ChecksumRequest request_;
    bool json_ = false;
};

}  // namespace launcher::mediatool
