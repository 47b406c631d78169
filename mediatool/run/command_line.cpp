#include "mediatool/run/command_line.h"

#include "fs/environment.h"
#include "mediatool/base/files.h"
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
