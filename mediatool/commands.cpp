#include "mediatool/commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <exception>
#include <map>
#include <nlohmann/json.hpp>

#include "fs/path.h"
#include "mediatool/base/console.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/json.h"
#include "mediatool/create/report.h"
#include "mediatool/create/writer.h"
#include "mediatool/dry_run/dry_run.h"
#include "mediatool/dry_run/report.h"
#include "mediatool/run/command.h"
#include "mediatool/validate/findings.h"
#include "mediatool/validate/report.h"

namespace launcher::mediatool {
namespace {

const std::map<std::string, Layout> kLayouts = {
    {"one-folder", Layout::OneFolder}, {"siblings", Layout::Siblings}, {"outer", Layout::Outer}};

// One value for each time that the option is given.
CLI::Option* MayBeGivenAgain(CLI::Option* option) {
    return option->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false);
}

struct ValidateCommand {
    explicit ValidateCommand(CLI::App& app)
        : command(app.add_subcommand("validate", "Look for mistakes in a media.")) {
        command
            ->add_option("media", request.folders,
                         "The media's folder; or the folders of its volumes.")
            ->required();
        command->add_option("--temp", temp,
                            "The temporary folder of the users it is for (default: the longest "
                            "usual one).");
        command->add_flag("--json", json, "Print JSON.");
        command->footer("Exit code: 0 clean, 1 a finding of severity error, 2 wrong use.");
    }

    int Run() {
        Progress progress("Entries looked at:");
        ValidateRequest watched = request;
        watched.progress = [&progress](std::size_t count) { progress.Show(count); };
        if (command->count("--temp") > 0) watched.temp = temp;
        const Validation validation = Validate(watched);
        PrintOut(json ? Printed(JsonOf(validation)) : TextOf(validation));
        return validation.findings.Count(Level::Error) == 0 ? kSuccess : kFailure;
    }

    CLI::App* command;
    ValidateRequest request;
    std::string temp;
    bool json = false;
};

struct CreateCommand {
    explicit CreateCommand(CLI::App& app)
        : command(app.add_subcommand("create", "Write the count file and markers of a media.")) {
        command->add_option("--id", request.id, "The identifier of the media.")->required();
        command->add_option("--layout", layout, "How the volumes lie.")
            ->required()
            ->check(CLI::IsMember({"one-folder", "siblings", "outer"}));
        command->add_option("--volumes", volumes, "How many volumes: 1 to 99.")->required();
        MayBeGivenAgain(command->add_option(
            "--from", from,
            "A folder with the content of a volume, once for each, volume 1 first."));
        ofOuter = {
            command->add_option("--outer-id", request.outerId,
                                "The identifier of the outer volumes (default: ID-outer)."),
            command->add_option("--first-outer", firstOuter,
                                "The number of the first outer volume (default: 1)."),
            command->add_option("--inner", request.inner,
                                "The folder in each outer volume that the media is in (default: "
                                "media).")};
        command->add_flag("--force", request.force, "Write over files that are there.");
        command->add_flag("--json", json, "Print JSON.");
        command->add_option("out", request.out, "The folder to write into.")->required();
        command->footer(
            "Exit code: 0 written, 1 not written, 2 wrong use. When writing fails half-way, new "
            "files are taken back; with --force, files may have been written over before.");
    }

    int Run() {
        request.from = from;
        request.layout = kLayouts.at(layout);
        request.volumes = NumberGiven("--volumes", volumes);
        for (const CLI::Option* option : ofOuter)
            if (option->count() > 0 && request.layout != Layout::Outer)
                throw BadInput(option->get_name() + " goes with --layout outer only.");
        if (ofOuter[1]->count() > 0) request.firstOuter = NumberGiven("--first-outer", firstOuter);
        if (ofOuter.front()->count() > 0 && request.outerId.empty())
            throw BadInput("--outer-id is empty.");
        Progress progress("Files copied:");
        CreateRequest watched = request;
        watched.progress = [&progress](std::size_t count) { progress.Show(count); };
        const Creation creation = Create(watched);
        PrintOut(json ? Printed(JsonOf(creation, request)) : TextOf(creation) + NextStep(creation));
        return kSuccess;
    }

    // CLI11 would only say that it cannot convert the text.
    static int NumberGiven(const std::string& option, const std::string& text) {
        int number = 0;
        const char* const end = text.data() + text.size();
        const auto [rest, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || rest != end)
            throw BadInput(option + " takes a number from 1 to 99, not \"" + text + "\".");
        return number;
    }

    CLI::App* command;
    CreateRequest request;
    std::string layout;
    std::string volumes;
    std::string firstOuter;
    std::vector<const CLI::Option*> ofOuter;  // the options of that layout
    std::vector<std::string> from;
    bool json = false;
};

struct DryRunCommand {
    explicit DryRunCommand(CLI::App& app)
        : command(app.add_subcommand("dry-run", "Rehearse a run of a media's launcher.")) {
        command->add_option("media", request.media, "The media's folder.")->required();
        command->add_option("--windows", windows, "The pretended Windows: 7, 8, 8.1, 10 or 11.")
            ->check(CLI::IsMember({"7", "8", "8.1", "10", "11"}));
        command->add_option("--bits", bits, "Its bits: 32 or 64.")
            ->check(CLI::IsMember({"32", "64"}));
        command->add_option("--admin", administrator, "An administrator runs it: yes or no.")
            ->check(CLI::IsMember({"yes", "no"}));
        command->add_flag("--old-web-library", request.machine.hasOldWebLibrary,
                          "Its web library is older than that of Internet Explorer 10.");
        MayBeGivenAgain(command
                            ->add_option("--env", variables,
                                         "A variable of its environment; may be given again.")
                            ->type_name("NAME=VALUE"));
        command->add_option("--temp", temp, "Its TEMP folder.");
        command->add_option("--pick", pick, "The folder that is picked in the folder dialog.");
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
        if (windows.starts_with("7") || windows.starts_with("8")) machine.longPaths = false;
        if (!bits.empty()) machine.is64Bit = bits == "64";
        if (!administrator.empty()) machine.isAdministrator = administrator == "yes";
        if (command->count("--pick") > 0) machine.picked = pick;
        if (command->count("--temp") > 0) request.environment.emplace_back("TEMP", CheckedTemp());
        for (const std::string& variable : variables)
            request.environment.push_back(CheckedAssignment(variable));
        const DryRun run = RunDry(request);
        PrintOut(json ? Printed(JsonOf(run)) : TextOf(run, everything));
        return check ? ExitCodeOf(run.verdict) : kSuccess;
    }

    static int ExitCodeOf(Verdict verdict) {
        constexpr int kWouldWait = 3;
        constexpr int kRefused = 4;
        if (verdict == Verdict::Refused) return kRefused;
        return verdict == Verdict::Waits ? kWouldWait : kSuccess;
    }

    // Nothing pretends that there is no TEMP; a folder of the current one is a slip.
    const std::string& CheckedTemp() const {
        if (!temp.empty() && Path(temp).RootEnd() == Path::kRelative)
            throw BadInput("--temp takes a full path, not \"" + temp + "\".");
        return temp;
    }

    std::pair<std::string, std::string> CheckedAssignment(const std::string& text) const {
        const std::size_t equals = text.find('=');
        if (equals == 0 || equals == std::string::npos)
            throw BadInput("--env takes NAME=VALUE, not \"" + text + "\".");
        const std::string name = text.substr(0, equals);
        if (command->count("--temp") > 0 && SameName(name, "TEMP"))
            throw BadInput("--temp and --env " + name + "=... contradict each other.");
        return {name, text.substr(equals + 1)};
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
          run_(app_),
          dryRun_(app_),
          validate_(app_),
          create_(app_) {
        app_.require_subcommand(1);
        app_.set_version_flag("--version", "mediatool " LAUNCHER_VERSION);
    }

    int Run(const std::vector<std::string>& all) {
        // What follows -- is the launcher's, to the letter: nothing of it is an option or a list.
        const auto end = std::ranges::find(all, "--");
        const bool hasEnd = end != all.end();
        std::vector<std::string> arguments(all.begin(), end);
        std::vector<std::string> launcherArguments(hasEnd ? end + 1 : end, all.end());
        CheckCommand(arguments);
        isRun_ = IsFor(run_.command, arguments);
        startsLauncher_ = isRun_ || IsFor(dryRun_.command, arguments);
        std::ranges::reverse(arguments);  // as CLI11 wants them
        app_.parse(std::move(arguments));
        if (dryRun_.command->parsed()) return dryRun_.Run(std::move(launcherArguments));
        if (run_.command->parsed()) return run_.Run(std::move(launcherArguments));
        if (hasEnd)
            throw BadInput("Only run and dry-run take arguments of the launcher, after --.");
        if (validate_.command->parsed()) return validate_.Run();
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
        const bool isLaunchers =
            startsLauncher_ &&
            request.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError);
        PrintError(std::string("mediatool: ") + request.what() +
                   (isLaunchers ? " (the launcher's own arguments go after --)" : "") + "\n");
        return WrongUse();
    }

    // Those of run have to differ from the launcher's.
    int WrongUse() const { return isRun_ ? kOwnMistake : kWrongUse; }

  private:
    static bool IsFor(const CLI::App* command, const std::vector<std::string>& arguments) {
        return !arguments.empty() && arguments.front() == command->get_name();
    }

    // CLI11 would only say that a command is missing.
    void CheckCommand(const std::vector<std::string>& arguments) const {
        if (arguments.empty() || arguments.front().starts_with('-')) return;
        const std::string& name = arguments.front();
        for (const CLI::App* command :
             {run_.command, dryRun_.command, validate_.command, create_.command})
            if (command->get_name() == name) return;
        throw BadInput("There is no command \"" + name +
                       "\"; there are run, dry-run, validate and create.");
    }

    CLI::App app_;
    RunCommand run_;
    DryRunCommand dryRun_;
    ValidateCommand validate_;
    CreateCommand create_;
    bool isRun_ = false;           // the command is
    bool startsLauncher_ = false;  // or rehearses it: the command is run or dry-run
};

int Complain(const std::exception& failure, int exitCode) {
    PrintError(std::string("mediatool: ") + failure.what() + "\n");
    return exitCode;
}

}  // namespace

int RunMediatool(const std::vector<std::string>& arguments) {
    Mediatool mediatool;
    try {
        return mediatool.Run(arguments);
    } catch (const CLI::ParseError& request) {
        return mediatool.Answer(request);
    } catch (const Refused& failure) {
        return Complain(failure, kFailure);
    } catch (const BadInput& failure) {
        return Complain(failure, mediatool.WrongUse());
    } catch (const std::exception& failure) {
        return Complain(failure, mediatool.WrongUse());
    }
}

}  // namespace launcher::mediatool
