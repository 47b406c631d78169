#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace launcher::fuzz {

// What the installer's command line is made from.
struct CommandLineParts {
    std::string installer;  // its path
    std::string mediaDir;   // normalised
    std::vector<std::string> arguments;
    bool softMgt = false;
    std::string action;
    std::string debugProgram;  // "DEBUGCMD_INSTALLK7"
};

// What stands in the line in front of the installer's arguments.
std::string StartOfLine(const CommandLineParts& parts);
// All arguments for the installer, before anything is done to their ends.
std::vector<std::string> AllArguments(const CommandLineParts& parts);
// The variables set meanwhile, in order.
std::vector<std::pair<std::string, std::string>> VariablesSet(const CommandLineParts& parts);

// Reads a row of quoted arguments, each after one blank, as they were before a last backslash was
// doubled. None of them may hold a quote. Nothing when the row has another form.
std::optional<std::vector<std::string>> ReadQuotedRow(std::string_view row);

// How Windows programs split a command line: CommandLineToArgvW.
// https://learn.microsoft.com/windows/win32/api/shellapi/nf-shellapi-commandlinetoargvw
std::vector<std::string> SplitAsWindowsDoes(std::string_view line);

}  // namespace launcher::fuzz
