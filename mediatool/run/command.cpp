#include "mediatool/run/command.h"

#include <exception>
#include <utility>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/interruption.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/media_set.h"
#include "mediatool/run/command_line.h"
#include "mediatool/run/log_file.h"
#include "mediatool/run/reporter.h"
#include "mediatool/run/start.h"
#include "mediatool/run/time_limit.h"

namespace launcher::mediatool {
RunCommand::RunCommand(CLI::App& app)
    : command(app.add_subcommand("run", "Run a medium's launcher unattended.")) {
    command->add_option("media", media_, "The medium's folder.")->required();
    command
        ->add_option("--time-limit", timeLimit_,
                     "End the launcher after this time: a number of seconds, or with m, h or d "
                     "of minutes, hours or days; a year at most.")
        ->type_name("TIME");
    command->add_option("--log", log_, "Add the lines, boxes and summary to a text file.")
        ->type_name("FILE");
    command->add_flag("--json", json_, "Print JSON, at the end.");
    command->add_flag("--end-installer", endInstaller_,
                      "At the time limit and at Ctrl+C, end the installer too.");
    command->footer(
        "The launcher's own arguments stand after --, as in: mediatool run D:\\ -- -wait\n"
        "Exit code: the launcher's own; else 124 the time limit is over, 125 wrong use or a "
        "failure of mediatool, 126 the launcher cannot be started, 127 there is none, 130 "
        "interrupted.");
}

int RunCommand::Run(std::vector<std::string> launcherArguments) {
    const Interruption interruption;
    const RunRequest request = Request(std::move(launcherArguments));
    const std::string commandLine = CommandLineOf(request.launcher, request.arguments);
    if (WideLength(commandLine) > kLongestCommandLine)
        throw BadInput("The launcher's arguments are longer than Windows takes.");
    Reporter reporter(IsNoLog(log_) ? "" : log_, json_);
    reporter.Begin(commandLine);
    try {  // the log must end with the reason too, of a share that cannot be reached for instance
        const Path folder = FullPath(media_);
        CheckIsNoFile(folder);
        if (!IsFolder(folder)) throw BadInput("There is no folder " + Quoted(media_) + ".");
        CheckProgram(request.launcher);
        const WatchedRun run = RunWatched(request, interruption, reporter);
        reporter.Conclude(run, request);
        return static_cast<int>(run.exitCode);
    } catch (const NotStarted& failure) {
        reporter.ConcludeWith(failure.what(), failure.ExitCode());
        return failure.ExitCode();
    } catch (const std::exception& failure) {
        reporter.ConcludeWith(failure.what(), kOwnMistake);
        return kOwnMistake;
    }
}

RunRequest RunCommand::Request(std::vector<std::string> launcherArguments) const {
    RunRequest request;
    const Path folder = FullPath(media_);
    request.launcher = Join(folder, kLauncherName).Text();
    request.arguments = std::move(launcherArguments);
    if (command->count("--time-limit") > 0) request.timeLimit = TimeLimitOf(timeLimit_);
    if (command->count("--log") > 0) CheckLog(folder, Path(request.launcher), log_);
    request.endInstaller = endInstaller_;
    return request;
}

}  // namespace launcher::mediatool
