#include "mediatool/run/command_line.h"

#include "fs/environment.h"
#include "mediatool/base/files.h"
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

bool AsksForVolumes(const std::vector<std::string>& arguments) {
    constexpr char kQuery[] = "ZEPAdmODTMultiVolumes";
    bool asks = !GetEnvVar(kQuery).empty();
    for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments[i] != "-env" && arguments[i] != "-installerPath") continue;
        const std::string& value = arguments[i + 1];
        const std::size_t equals = value.find('=');
        if (arguments[i] == "-env" && SameName(value.substr(0, equals), kQuery))
            asks = equals == std::string::npos || equals + 1 < value.size();
        ++i;
    }
    return asks;
}

}  // namespace launcher::mediatool
