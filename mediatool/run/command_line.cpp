#include "mediatool/run/command_line.h"

#include "mediatool/base/sentences.h"

namespace launcher::mediatool {

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
