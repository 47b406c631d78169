// The installer's command line: its text, how it reads back by the rules that made it, and what an
// installer gets after Windows has split it.

#include <algorithm>
#include <string>
#include <vector>

#include "launcher/base/launch_options.h"
#include "launcher/installer_command_line.h"
#include "tests/fuzz/fakes/fake_environment.h"
#include "tests/fuzz/models/command_line_model.h"
#include "tests/fuzz/models/path_model.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/input.h"

namespace launcher::fuzz {
namespace {

constexpr std::string_view kAlphabet = "\\\" a:/\tb'=?-C";

CommandLineParts TakeParts(Input& input) {
    constexpr const char* kActions[] = {"", "List", "Check1", "Commit", "Rollback"};
    constexpr const char* kDebugPrograms[] = {"", "", "1", "11", "debugger.exe -v"};
    CommandLineParts parts;
    const unsigned shape = input.Byte();
    parts.softMgt = (shape & 1) != 0;
    parts.action = kActions[input.Below(std::size(kActions))];
    parts.debugProgram = kDebugPrograms[input.Below(std::size(kDebugPrograms))];
    if ((shape & 2) != 0) parts.installer = '"';
    parts.installer += input.Text(kAlphabet);
    // Rooted more often than chance would have it.
    const char* const root = (shape & 4) != 0 ? "C:\\" : (shape & 8) != 0 ? "\\\\srv\\share\\" : "";
    parts.mediaDir = MakePath(root + input.Text(kAlphabet)).Text();
    while (!input.AtEnd() && parts.arguments.size() < 6)
        parts.arguments.push_back(input.Text(kAlphabet));
    return parts;
}

LaunchOptions OptionsFor(const CommandLineParts& parts) {
    LaunchOptions options(0, nullptr, "installer.exe", true, false);
    options.installerExePath = parts.installer;
    options.mediaDir = Path(parts.mediaDir);
    options.installerArgs = parts.arguments;
    options.softMgt = parts.softMgt;
    options.softMgtAction = parts.action;
    FakeEnvironment::Instance().Clear();
    FakeEnvironment::Instance().Start("DEBUGCMD_INSTALLK7", parts.debugProgram);
    return options;
}

bool HasQuote(const std::string& text) {
    return text.find('"') != std::string::npos;
}

// More than one backslash at the end is not what the doubling of one is made for.
bool ComesBack(const std::string& argument) {
    return !HasQuote(argument) && !argument.ends_with("\\\\");
}

void CheckSplit(const std::string& line, const CommandLineParts& parts,
                std::vector<std::string> arguments) {
    const bool plain = parts.debugProgram.empty() && !HasQuote(parts.installer);
    if (!plain || !std::ranges::all_of(arguments, ComesBack)) return;
    arguments.insert(arguments.begin(), parts.installer);
    CheckEqual("CommandLineToArgvW", line, SplitAsWindowsDoes(line), arguments);
}

}  // namespace

void TestOneInput(Input input) {
    const CommandLineParts parts = TakeParts(input);
    // A path that would not stay as it is stands for no media folder.
    if (MakePath(parts.mediaDir).Text() != parts.mediaDir) return;
    LaunchOptions options = OptionsFor(parts);
    const std::string line = BuildInstallerCommandLine(options);

    const std::vector<std::string> arguments = AllArguments(parts);
    std::vector<std::string> ended = arguments;
    for (std::string& argument : ended)
        if (argument.ends_with('\\')) argument += '\\';
    CheckEqual("installerArgs", line, options.installerArgs, ended);

    const std::string start = StartOfLine(parts);
    std::string expected = start;
    for (const std::string& argument : ended)
        expected += " \"" + argument + "\"";
    CheckEqual("BuildInstallerCommandLine", line, line, expected);
    CheckEqual("SetEnvVar", line, Flatten(FakeEnvironment::Instance().Assignments()),
               Flatten(VariablesSet(parts)));

    if (std::ranges::none_of(arguments, HasQuote))
        CheckEqual("The quoted arguments", line,
                   ReadQuotedRow(line.substr(start.size())).value_or(std::vector<std::string>{"?"}),
                   arguments);
    CheckSplit(line, parts, arguments);
}

}  // namespace launcher::fuzz
