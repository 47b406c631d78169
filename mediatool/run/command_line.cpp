#include "mediatool/run/command_line.h"

#include "mediatool/base/sentences.h"

namespace launcher::mediatool {
namespace {

// Backslashes are themselves, but in front of a quote each pair of them is one.
std::string QuotedArgument(const std::string& argument) {
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '"') text.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, '\\') + "\"";
}

}  // namespace

std::string CommandLineOf(const std::string& program, const std::vector<std::string>& arguments) {
    std::string line = Quoted(program);
    for (const std::string& argument : arguments)
        line += " " + QuotedArgument(argument);
    return line;
}

bool WaitsForInstaller(const std::vector<std::string>& arguments) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "-wait" || argument == "--pipeserver" || argument == "--odt") return true;
        if (argument == "-env" || argument == "-installerPath") ++i;  // the next is its value
    }
    return false;
}

}  // namespace launcher::mediatool
