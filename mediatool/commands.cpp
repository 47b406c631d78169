#include "mediatool/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <nlohmann/json.hpp>

#include "fs/path.h"
#include "mediatool/arguments.h"
#include "mediatool/base/console.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/json.h"
#include "mediatool/base/sentences.h"
#include "mediatool/create_command.h"
#include "mediatool/dry_run/dry_run.h"
#include "mediatool/run/command.h"
#include "mediatool/validate/findings.h"
#include "mediatool/validate/validate.h"

namespace launcher::mediatool {
namespace {

struct ValidateCommand {
    explicit ValidateCommand(CLI::App& app)
        : command(app.add_subcommand("validate", "Look for mistakes on a medium.")) {
        command
            ->add_option("media", request.folders,
                         "The medium's folder; or the folders of its volumes.")
            ->required();
        command
            ->add_option("--temp", temp,
                         "The temporary folder of the users it is for (default: the longest "
                         "usual one).")
            ->type_name("FOLDER");
        command->add_flag("--strict", request.isStrict, "Warnings count as errors do.");
        command->add_flag("--no-content", noContent,
                          "Leave out the lists of checksums, SHA256SUMS.");
        command->add_flag("--json", json, "Print JSON.");
        command->footer(
            "Exit code: 0 clean, 1 a finding of severity error, or warning with --strict, 2 wrong "
            "use.");
    }

    int Run() {
        Progress line;
        request.progress = [&line](std::size_t count) {
            line.Show("Entries looked at: " + std::to_string(count));
        };
        request.verifying = ShownOn(line);
        request.content = !noContent;
        if (command->count("--temp") > 0) request.temp = temp;
        const Validation validation = Validate(request);
        line.Clear();
        PrintOut(json ? Printed(JsonOf(validation)) : TextOf(validation));
        return validation.IsClean() ? kSuccess : kFailure;
    }

    CLI::App* command;
    ValidateRequest request;
    std::string temp;
    bool noContent = false;
    bool json = false;
};

struct DryRunCommand {
    explicit DryRunCommand(CLI::App& app)
        : command(app.add_subcommand("dry-run", "Rehearse a run of a medium's launcher.")) {
        command->add_option("media", request.media, "The medium's folder.")->required();
        command->add_option("--windows", windows, "The pretended Windows: 7, 8, 8.1, 10 or 11.")
            ->check(OneOf({"7", "8", "8.1", "10", "11"}));
        command->add_option("--bits", bits, "Its bits: 32 or 64.")->check(OneOf({"32", "64"}));
        command->add_option("--admin", administrator, "An administrator runs it: yes or no.")
            ->check(OneOf({"yes", "no"}));
        command->add_flag("--old-web-library", request.machine.hasOldWebLibrary,
                          "Its web library is older than that of Internet Explorer 10.");
        MayBeGivenAgain(command
                            ->add_option("--env", variables,
                                         "A variable of its environment; may be given again.")
                            ->type_name("NAME=VALUE"));
        command->add_option("--temp", temp, "Its TEMP folder.")->type_name("FOLDER");
        command->add_option("--pick", pick, "The folder that is picked in the folder dialog.")
            ->type_name("FOLDER");
        command->add_flag("--all", everything,
                          "Show all that was looked for, every variable and every copied file.");
        command->add_flag("--check", check, "Give the verdict as exit code.");
        command->add_flag("--json", json, "Print JSON.");
        command->footer(
            "The launcher's own arguments stand after --, as in: mediatool dry-run D:\\ -- -wait\n"
            "Exit code: 0 whatever the launcher would do, 2 wrong use; with --check, 0 when it "
            "starts the installer without waiting for anybody, 3 when it would wait, 4 when it "
            "does not start it.");
    }

    int Run(std::vector<std::string> launcherArguments) {
        request.arguments = std::move(launcherArguments);
        PretendedMachine& machine = request.machine;
        if (!windows.empty()) machine.isWindows8OrNewer = windows != "7";
        if (windows == "7" || windows.starts_with("8")) machine.longPaths = false;
        if (!bits.empty()) machine.is64Bit = bits == "64";
        if (!administrator.empty()) machine.isAdministrator = administrator == "yes";
        if (command->count("--pick") > 0) machine.picked = pick;
        if (command->count("--temp") > 0) PretendTemp();
        for (const std::string& variable : variables)
            AddAssignment(variable);
        const DryRun run = RunDry(request);
        if (machine.picked && std::ranges::none_of(run.journal.messages, &Message::dialog))
            PrintError("mediatool: --pick changes nothing: no folder dialog comes in this run.\n");
        PrintOut(json ? Printed(JsonOf(run)) : TextOf(run, everything));
        return check ? ExitCodeOf(run.verdict) : kSuccess;
    }

    static int ExitCodeOf(Verdict verdict) {
        constexpr int kWouldWait = 3;
        constexpr int kRefused = 4;
        if (verdict == Verdict::Refused) return kRefused;
        return verdict == Verdict::Waits ? kWouldWait : kSuccess;
    }

    // An empty one pretends that there is no TEMP.
    void PretendTemp() {
        if (!temp.empty() && !IsFull(Path(temp)))
            throw BadInput("--temp takes a full path, not \"" + temp + "\".");
        request.environment.emplace_back("TEMP", temp);
    }

    void AddAssignment(const std::string& text) {
        const std::size_t equals = text.find('=');
        if (equals == 0 || equals == std::string::npos)
            throw BadInput("--env takes NAME=VALUE, not \"" + text + "\".");
        const std::string name = text.substr(0, equals);
        if (command->count("--temp") > 0 && SameName(name, "TEMP"))
            throw BadInput("--temp and --env " + name + "=... contradict each other.");
        for (const auto& [other, value] : request.environment)
            if (SameName(name, other)) throw BadInput("--env " + name + "=... is given twice.");
        request.environment.emplace_back(name, text.substr(equals + 1));
    }

    CLI::App* command;
    DryRunRequest request;
    std::string windows;
    std::string bits;
    std::string administrator;
    std::vector<std::string> variables;
    std::string temp;
    std::string pick;
    bool everything = false;
    bool check = false;
    bool json = false;
};

class Mediatool {
  public:
    Mediatool()
        : app_("Checks, makes, rehearses and runs installation media.", "mediatool"),
          run_(WithoutSlashOptions(app_)),
          dryRun_(app_),
          validate_(app_),
          create_(app_),
          checksum_(app_) {
        app_.require_subcommand(1);
        for (CLI::App* const command : {run_.command, dryRun_.command})
            TakesLaunchersToo(*command);
        app_.set_version_flag("--version", "mediatool " LAUNCHER_VERSION);
    }

    int Run(const std::vector<std::string>& all) {
        // What follows -- is the launcher's, to the letter: nothing of it is an option or a list.
        const auto end = std::ranges::find(all, "--");
        const bool hasEnd = end != all.end();
        std::vector<std::string> arguments(all.begin(), end);
        std::vector<std::string> launcherArguments(hasEnd ? end + 1 : end, all.end());
        isJson_ = std::ranges::count(arguments, "--json") > 0;
        arguments = WithHelpAsked(std::move(arguments));
        command_ = CommandOf(app_, arguments);
        const bool startsLauncher = command_ == run_.command || command_ == dryRun_.command;
        if (command_ != nullptr)
            arguments =
                Checked(*command_, arguments,
                        startsLauncher ? " (the launcher's own arguments go after --)" : "");
        std::ranges::reverse(arguments);  // as CLI11 wants them
        app_.parse(std::move(arguments));
        if (dryRun_.command->parsed()) return dryRun_.Run(std::move(launcherArguments));
        if (run_.command->parsed()) return run_.Run(std::move(launcherArguments));
        if (hasEnd)
            throw BadInput("Only run and dry-run take arguments of the launcher, after --.");
        if (validate_.command->parsed()) return validate_.Run();
        if (checksum_.command->parsed()) return checksum_.Run();
        return create_.Run();
    }

    // Help and the version, which CLI11 asks for by exceptions, or a mistake in the command line.
    int Answer(const CLI::ParseError& request) const {
        if (request.get_name() == "CallForVersion") {
            PrintOut(std::string(request.what()) + "\n");
            return kSuccess;
        }
        if (request.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
            PrintOut(app_.help());
            return kSuccess;
        }
        return Complain(request, WrongUse());
    }

    // Says why it does not go on; to programs too, which read the standard output.
    int Complain(const std::exception& failure, int exitCode) const {
        const std::string sentence = OnOneLine(failure.what());
        PrintError("mediatool: " + sentence + "\n");
        const std::string name = command_ != nullptr ? command_->get_name() : "";
        if (isJson_) PrintOut(Printed(FailureJson(name, exitCode, sentence)));
        return exitCode;
    }

    // Those of run have to differ from the launcher's.
    int WrongUse() const { return command_ == run_.command ? kOwnMistake : kWrongUse; }

  private:
    // They would be inherited by the commands: a path may begin with a slash.
    static CLI::App& WithoutSlashOptions(CLI::App& app) {
        app.allow_windows_style_options(false);
        return app;
    }

    CLI::App app_;
    RunCommand run_;
    DryRunCommand dryRun_;
    ValidateCommand validate_;
    CreateCommand create_;
    ChecksumCommand checksum_;
    const CLI::App* command_ = nullptr;  // that was given
    bool isJson_ = false;
};

}  // namespace

int RunMediatool(const std::vector<std::string>& arguments) {
    AskNobodyForDiscs();
    Mediatool mediatool;
    try {
        return mediatool.Run(arguments);
    } catch (const CLI::ParseError& request) {
        return mediatool.Answer(request);
    } catch (const Refused& failure) {
        return mediatool.Complain(failure, kFailure);
    } catch (const std::exception& failure) {
        return mediatool.Complain(failure, mediatool.WrongUse());
    }
}

}  // namespace launcher::mediatool
