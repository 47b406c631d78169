#include "mediatool/run/command_line.h"

#include "launcher/base/launch_options.h"
#include "launcher/driver.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {

std::string CommandLineOf(const std::string& program, const std::vector<std::string>& arguments) {
    std::string line = Quoted(program);
    for (const std::string& argument : arguments)
        line += " " + QuotedArgument(argument);
    return line;
}

namespace {

// The options among the arguments, with their values, in their order. The last may lack its value:
// that the launcher refuses.
template <class Visit>
void ForEachOption(const std::vector<std::string>& arguments, const Visit& visit) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const Option* const option = FindOption(arguments[i]);
        if (option == nullptr) continue;
        if (option->takesValue && ++i == arguments.size()) return;
        visit(*option, option->takesValue ? arguments[i] : "");
    }
}

}  // namespace

bool WaitsForInstaller(const std::vector<std::string>& arguments) {
    LaunchOptions options(0, nullptr, kInstallerName, false, false);
    ForEachOption(arguments, [&options](const Option& option, const std::string& value) {
        if (!option.takesValue) option.apply(options, value);
    });
    return options.wait;
}

bool AsksForVolumes(const std::vector<std::string>& arguments) {
    bool asks = IsVolumeCountAskedFor();
    ForEachOption(arguments, [&asks](const Option& option, const std::string& value) {
        if (option.name != std::string(kEnvOption)) return;
        const Assignment assignment = ParseAssignment(value);
        if (SameName(assignment.name, kVolumesQuery)) asks = !assignment.value.empty();
    });
    return asks;
}

}  // namespace launcher::mediatool
