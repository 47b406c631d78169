#pragma once

#include <string>
#include <vector>

namespace launcher::mediatool {

// Exit codes of every subcommand but run, which has those of mediatool/run/run.h.
inline constexpr int kSuccess = 0;
inline constexpr int kFailure = 1;  // validate: a mistake was found; create: not written to its end
inline constexpr int kWrongUse = 2;  // the command line, or what it names, cannot be worked with

// Runs mediatool with the arguments after its own name, in UTF-8. Returns the exit code.
int RunMediatool(const std::vector<std::string>& arguments);

}  // namespace launcher::mediatool
