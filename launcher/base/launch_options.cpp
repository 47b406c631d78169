#include "launcher/base/launch_options.h"

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

// "NAME=VALUE"; without "=", or with nothing before it, the whole text is the name and the value is
// "1".
void ApplyAssignment(const std::string& assignment) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos || equals == 0)
        SetEnvVar(assignment, "1");
    else
        SetEnvVar(assignment.substr(0, equals), assignment.substr(equals + 1));
}

void ParseSoftMgtAction(LaunchOptions& options, const std::string& action, bool readOnly) {
    options.softMgtAction = action;
    if (readOnly) options.softMgtReadOnly = true;
}

void ParsePipeServer(LaunchOptions& options) {
    options.skipTemporaryCopy = true;
    options.interactiveSession = false;
    options.wait = true;
    options.installerExeName = kPipeServerName;
}

void ParseOdt(LaunchOptions& options) {
    options.wait = true;
    options.installerExeName = kOdtName;
    options.mediaDir = Path(GetEnvVar("CurrentMediaDir"));
}

void ParseMaintenance(LaunchOptions& options, const std::string& argument, bool uninstall) {
    options.skipTemporaryCopy = true;
    options.uninstall = uninstall;
    options.installerArgs.push_back(argument);
}

void ParseArgument(LaunchOptions& options, Arguments& arguments) {
    const std::string argument = arguments.Take();
    if (argument == "-wait")
        options.wait = true;
    else if (argument == "-UI")
        options.useGui = true;
    else if (argument == "-env")
        ApplyAssignment(arguments.TakeValue(options, argument));
    else if (argument == "-installerPath")
        options.installerPath = arguments.TakeValue(options, argument);
    else if (argument == "-SoftMgt")
        options.softMgt = true;
    else if (argument == "-List")
        ParseSoftMgtAction(options, "List", /*readOnly=*/true);
    // "Check1" is the installer's own word for it.
    else if (argument == "-Check")
        ParseSoftMgtAction(options, "Check1", /*readOnly=*/true);
    else if (argument == "-Commit")
        ParseSoftMgtAction(options, "Commit", /*readOnly=*/false);
    else if (argument == "-Rollback")
        ParseSoftMgtAction(options, "Rollback", /*readOnly=*/false);
    else if (argument == "--pipeserver")
        ParsePipeServer(options);
    else if (argument == "--odt")
        ParseOdt(options);
    else if (argument == "--mgt")
        ParseMaintenance(options, argument, /*uninstall=*/false);
    else if (argument == "--uninst")
        ParseMaintenance(options, argument, /*uninstall=*/true);
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
