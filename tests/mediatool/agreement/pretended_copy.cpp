// What a dry run has in its temporary copy, which mediatool's output only counts.
//
//   pretended_copy MEDIA PICKED OPTION... -- ARGUMENT...
//
// PICKED is empty when the folder dialog is cancelled; of the dry run's other options only
// --old-web-library and --admin no change what is copied. Prints JSON.

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include <algorithm>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/dry_run/dry_run.h"

namespace launcher::mediatool {
namespace {

std::vector<std::string> Arguments() {
    int count = 0;
    const LocalMemory<wchar_t*> split(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(ToNarrow(split.Get()[i]));
    return arguments;
}

DryRunRequest RequestOf(const std::vector<std::string>& arguments) {
    DryRunRequest request;
    const auto end = std::ranges::find(arguments, "--");
    request.media = arguments.at(0);
    if (!arguments.at(1).empty()) request.machine.picked = arguments[1];
    request.machine.hasOldWebLibrary =
        std::find(arguments.begin(), end, "--old-web-library") != end;
    if (std::find(arguments.begin(), end, "--admin") != end)
        request.machine.isAdministrator = false;
    request.arguments.assign(end + 1, arguments.end());
    return request;
}

}  // namespace
}  // namespace launcher::mediatool

int wmain() {
    using namespace launcher::mediatool;
    const DryRun run = RunDry(RequestOf(Arguments()));
    nlohmann::json files = nlohmann::json::object();
    for (const auto& [name, file] : run.journal.copy.contents)
        files[name] = file.source;
    const nlohmann::json output = {{"files", files}, {"script", run.journal.wroteRemoveScript}};
    std::fputs(output.dump().c_str(), stdout);
    return 0;
}
