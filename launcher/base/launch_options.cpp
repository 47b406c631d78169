#include "launcher/base/launch_options.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "launcher/base/message.h"
#include "platform/module_path.h"

namespace launcher {
namespace {

// The arguments after the program's name, taken in order.
class Arguments {
  public:
    Arguments(int argc, const wchar_t* const* argv) : argc_(argc), argv_(argv) {}

    bool AtEnd() const { return next_ >= argc_; }
    std::string Take() { return ToNarrow(argv_[next_++]); }

    // The value of `option`, the argument just taken.
    std::string TakeValue(const LaunchOptions& options, const std::string& option) {
        if (AtEnd() || argv_[next_] == nullptr)
            ReportErrorAndExit(options, "Bad " + option + " argument");
        return Take();
    }

  private:
    int argc_;
    const wchar_t* const* argv_;
    int next_ = 1;
};

void ApplyAssignment(LaunchOptions&, const std::string& text) {
    const Assignment assignment = ParseAssignment(text);
    SetEnvVar(assignment.name, assignment.value);
}

void ApplyPipeServer(LaunchOptions& options, const std::string&) {
    options.skipTemporaryCopy = true;
    options.interactiveSession = false;
    options.wait = true;
    options.installerExeName = kPipeServerName;
}

void ApplyOdt(LaunchOptions& options, const std::string&) {
    options.wait = true;
    options.installerExeName = kOdtName;
    options.mediaDir = Path(GetEnvVar(kCurrentMediaVar));
}

void ApplyMaintenance(LaunchOptions& options, const char* option, bool uninstall) {
    options.skipTemporaryCopy = true;
    options.uninstall = uninstall;
    options.installerArgs.emplace_back(option);
}

void ApplyReadOnlyAction(LaunchOptions& options, const char* action) {
    options.softMgtAction = action;
    options.softMgtReadOnly = true;
}

using Text = std::string;

constexpr Option kOptions[] = {
    {"-wait", false, [](LaunchOptions& options, const Text&) { options.wait = true; }},
    {"-UI", false, [](LaunchOptions& options, const Text&) { options.useGui = true; }},
    {kEnvOption, true, ApplyAssignment},
    {"-installerPath", true,
     [](LaunchOptions& options, const Text& value) { options.installerPath = value; }},
    {"-SoftMgt", false, [](LaunchOptions& options, const Text&) { options.softMgt = true; }},
    {"-List", false,
     [](LaunchOptions& options, const Text&) { ApplyReadOnlyAction(options, "List"); }},
    // "Check1" is the installer's own word for it.
    {"-Check", false,
     [](LaunchOptions& options, const Text&) { ApplyReadOnlyAction(options, "Check1"); }},
    {"-Commit", false,
     [](LaunchOptions& options, const Text&) { options.softMgtAction = "Commit"; }},
    {"-Rollback", false,
     [](LaunchOptions& options, const Text&) { options.softMgtAction = "Rollback"; }},
    {"--pipeserver", false, ApplyPipeServer},
    {"--odt", false, ApplyOdt},
    {"--mgt", false,
     [](LaunchOptions& options, const Text&) {
         ApplyMaintenance(options, "--mgt", /*uninstall=*/false);
     }},
    {"--uninst", false,
     [](LaunchOptions& options, const Text&) {
         ApplyMaintenance(options, "--uninst", /*uninstall=*/true);
     }},
};

void ParseArgument(LaunchOptions& options, Arguments& arguments) {
    const std::string argument = arguments.Take();
    if (const Option* const option = FindOption(argument))
        option->apply(options, option->takesValue ? arguments.TakeValue(options, argument) : "");
    else
        options.installerArgs.push_back(argument);
}

void ValidateSoftMgt(const LaunchOptions& options) {
    if (options.softMgt && options.softMgtAction.empty())
        ReportErrorAndExit(options,
                           "-SoftMgt must be used with another flag (either -List, -Check, "
                           "-Commit or -Rollback).");
    if (!options.softMgt && !options.softMgtAction.empty()) {
        const std::string option =
            options.softMgtAction == "Check1" ? "Check" : options.softMgtAction;
        ReportErrorAndExit(options, "-" + option + " must be used with the -SoftMgt flag.");
    }
}

}  // namespace

std::span<const Option> AllOptions() {
    return kOptions;
}

const Option* FindOption(const std::string& argument) {
    const auto* const found = std::ranges::find(kOptions, argument, &Option::name);
    return found != std::end(kOptions) ? found : nullptr;
}

Assignment ParseAssignment(const std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) return {text, "1"};
    return {text.substr(0, equals), text.substr(equals + 1)};
}

LaunchOptions::LaunchOptions(int argc, const wchar_t* const* argv, std::string exeName,
                             bool useGuiDefault, bool waitDefault)
    : wait(waitDefault),
      useGui(useGuiDefault),
      mediaDir(GetModuleDirectory()),
      installerExeName(std::move(exeName)) {
    if (argv == nullptr) return;
    for (Arguments arguments(argc, argv); !arguments.AtEnd();)
        ParseArgument(*this, arguments);
    ValidateSoftMgt(*this);
}

}  // namespace launcher
