#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace launcher::mediatool {

// mediatool's own arguments, those before "--". CLI11 would take what begins with a slash for an
// option, and says what is wrong in words of its own: so it gets only what is in order, in a form
// that leaves nothing to guess.

// Asks for help in one way: "help COMMAND", "/?" and others become "COMMAND --help". Throws
// BadInput for help on more than one.
std::vector<std::string> WithHelpAsked(std::vector<std::string> arguments);

// The subcommand that the first of them names; null for --help and --version. Throws BadInput.
const CLI::App* CommandOf(const CLI::App& app, const std::vector<std::string>& arguments);

// Those of `command`, its name first: each option as a word and its value as the next. `hint`: what
// to say besides when there is one too many. Throws BadInput.
std::vector<std::string> Checked(const CLI::App& command, const std::vector<std::string>& arguments,
                                 const std::string& hint);

// Has the help of `command` say that the launcher's arguments may stand behind its own.
void TakesLaunchersToo(CLI::App& command);

// One value for each time that the option is given.
CLI::Option* MayBeGivenAgain(CLI::Option* option);

// For a value that has to be one of these.
CLI::Validator OneOf(const std::vector<std::string>& values);

}  // namespace launcher::mediatool
