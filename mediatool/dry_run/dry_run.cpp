#include "mediatool/dry_run/dry_run.h"

#include <algorithm>
#include <exception>
#include <map>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/text.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "launcher/choose_installer.h"
#include "launcher/driver.h"
#include "launcher/installer_command_line.h"
#include "launcher/temporary_copy.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/media_set.h"
#include "mediatool/media/program_file.h"

namespace launcher::mediatool {
namespace {

// What the C runtime ends a process with after an exception that nobody catches.
constexpr int kAbnormalEnd = 3;

// What is left of the launcher's own variables when it has ended.
struct LauncherState {
    std::optional<LaunchOptions> options;  // nothing after a bad command line
    Path media;                            // the one that was started, not its copy
};

// The launcher's run from its command line to its exit code.
int Rehearse(const DryRunRequest& request, Rehearsal& rehearsal, LauncherState& state) {
    std::vector<std::wstring> texts = {ToWide(rehearsal.machine.launcherPath)};
    for (const std::string& argument : request.arguments)
        texts.push_back(ToWide(argument));
    std::vector<const wchar_t*> argv(texts.size());
    std::ranges::transform(texts, argv.begin(),
                           [](const std::wstring& text) { return text.c_str(); });
    const RehearsalScope scope(rehearsal);
    try {
        state.options.emplace(static_cast<int>(argv.size()), argv.data(), kInstallerName, true,
                              false);
        state.media = state.options->mediaDir;
        return RunLauncher(*state.options);
    } catch (const ProcessEnd& end) {
        return end.exitCode;
    } catch (const std::exception& failure) {
        rehearsal.journal.messages.push_back(
            {std::string("The launcher crashes: ") + failure.what(), Severity::Error, false, true,
             false});
        rehearsal.journal.crashed = true;
        return kAbnormalEnd;
    }
}

std::string OriginName(InstallerOrigin origin) {
    return NameIn({"", "current-media", "-installerPath", kInstallerFolderVar, "folder-dialog"},
                  origin);
}

bool HasInstaller(const LauncherState& state) {
    return state.options && state.options->installerOrigin != InstallerOrigin::None;
}

// By ProgramKind().
std::string FaultOf(const std::string& program) {
    static const std::map<std::string, std::string> faults = {
        {"folder", "it is a folder"},
        {"library", "it is a library"},
        {"no program", "it is no program"},
        {"other machine", "it is for another processor"},
        {"cut off", "the end of it is missing"},
        {"unreadable", "it cannot be read"}};
    const auto fault = faults.find(program);
    return fault == faults.end() ? std::string() : fault->second;
}

ChosenInstaller InstallerOf(const LaunchOptions& options) {
    const std::string program = ProgramKind(Path(options.installerFoundAt));
    return {options.installerExePath,
            options.installerFoundAt,
            options.osFolder,
            OriginName(options.installerOrigin),
            program,
            FaultOf(program)};
}

bool AreVolumesSearched(CopySkipped reason) {
    return reason != CopySkipped::BySoftMgt && reason != CopySkipped::ByRepository;
}

std::string SkippedText(CopySkipped reason) {
    return NameIn(
        {"The option --mgt, --uninst or --pipeserver runs the installer from where it is.",
         "Software management runs the installer from where it is.",
         "ZEP_Online_Installation_Caf_Repositiory is set.", "The medium is not split.",
         "All volumes are there."},
        reason);
}

// For the variables as they were during the run.
CopyDecision DecisionOf(const LauncherState& state) {
    if (!HasInstaller(state)) return {false, "The run does not get that far."};
    if (IsVolumeCountAskedFor()) return {false, "Only the number of volumes is asked for."};
    if (state.options->temporaryCopyMade)
        return {true, "Not all volumes of the medium can be put together."};
    if (IsCopyForbidden()) return {false, "ZEPAdmInstDontCopyInstaller is set."};
    if (state.options->skipTemporaryCopy) return {false, SkippedText(state.options->copySkipped)};
    return {false, "The copy fails."};
}

std::string MeaningOf(const DryRun& run) {
    if (run.showsCommandLine)
        return run.exitCodeIsInstallers
                   ? "That of the console, for which the launcher waits; no installer runs."
                   : "A console was started in place of the installer, which is not run.";
    if (run.exitCodeIsInstallers) return "The installer's own, for which the launcher waits.";
    if (run.started) return "The installer was started; the launcher does not wait for it.";
    if (run.countsVolumes)
        return std::string("The number of volumes, which ") + kVolumesQuery +
               " asks for; nothing is started.";
    if (run.journal.crashed) return "The launcher crashes.";
    return "The launcher refuses; the message says why.";
}

std::string LauncherPath(const std::string& media) {
    const MediaSet set = OpenMediaSet({media});
    const Path launcher = Join(set.first, kLauncherName);
    if (!IsFile(launcher)) throw BadInput("\"" + launcher.Text() + "\" is no program.");
    return launcher.Text();
}

// What is told of the run shows no name that only this rehearsal has.
void HidePretendedUuid(DryRun& run) {
    const auto hideIn = [](std::string& text) { ReplaceAll(text, kPretendedUuid, kUuidShown, 0); };
    for (Message& message : run.journal.messages)
        hideIn(message.text);
    for (auto& [key, file] : run.journal.copy.contents)
        hideIn(file.path);
    if (run.journal.commandLine) hideIn(*run.journal.commandLine);
    for (std::string& argument : run.installerArguments)
        hideIn(argument);
    for (Change& change : run.environment)
        if (change.after) hideIn(*change.after);
    if (run.installer) hideIn(run.installer->path);
}

// As the dialog would name it.
std::string PickedFolder(const std::string& text) {
    const Path folder = FullPath(text);
    if (!IsFolder(folder))
        throw BadInput("\"" + text + "\" cannot be picked: there is no such folder.");
    return folder.Text();
}

// What the run was and did, while the variables are as it left them.
void WriteDownRun(DryRun& run, const Rehearsal& rehearsal, const LauncherState& state) {
    run.machine = rehearsal.machine;
    run.journal = rehearsal.journal;
    run.temp = GetEnvVar("TEMP");
    run.workingFolder = FullPath(".").Text();
    run.isAdministrator = rehearsal.isAdministrator.value_or(true);
    run.tracesInBoxes = rehearsal.tracesInBoxes.value_or(false);
    run.started = run.journal.commandLine.has_value();
    run.showsCommandLine = run.started && IsCommandLineOnlyShown();
    run.exitCodeIsInstallers = run.journal.waited;
    if (run.started) run.installerArguments = ArgumentsIn(ToWide(*run.journal.commandLine));
    run.copy = DecisionOf(state);
    if (!HasInstaller(state)) return;  // the search for volumes comes next
    run.countsVolumes = IsVolumeCountAskedFor();
    run.installer = InstallerOf(*state.options);
    run.volumesChecked = AreVolumesSearched(state.options->copySkipped);
    run.volumes = ViewOf(state.media);
}

// Of another Windows, nobody knows whether it takes long paths.
void AddEndWithLongPaths(DryRun& run, DryRunRequest request) {
    request.machine.longPaths = true;
    run.hints.push_back(
        "With LongPathsEnabled on that Windows, paths of more than 259 characters are not too "
        "long there: " +
        RunDry(request).summary);
}

}  // namespace

std::size_t DryRun::Waits() const {
    const auto boxes = std::ranges::count(journal.messages, true, &Message::box);
    return static_cast<std::size_t>(boxes) + (showsCommandLine ? 1 : 0);
}

DryRun RunDry(const DryRunRequest& request) {
    DryRun run;
    run.launcher = LauncherPath(request.media);
    run.doubt = WhyNotThisLauncher(Path(run.launcher));
    run.arguments = request.arguments;
    Rehearsal rehearsal;
    rehearsal.machine = request.machine;
    rehearsal.machine.launcherPath = run.launcher;
    if (request.machine.picked) rehearsal.machine.picked = PickedFolder(*request.machine.picked);
    std::optional<bool>& longPaths = rehearsal.machine.longPaths;
    const bool isOtherWindows = request.machine.isWindows8OrNewer.has_value();
    if (!longPaths && !isOtherWindows) longPaths = AreLongPathsEnabled();

    const Environment own = CurrentEnvironment();
    for (const auto& [name, value] : request.environment) {
        SetEnvVar(name, value);
        run.variables.push_back(name);
    }
    run.setVariables = SetVariables();
    const Environment before = CurrentEnvironment();
    LauncherState state;
    run.exitCode = Rehearse(request, rehearsal, state);
    run.environment = Changes(before, CurrentEnvironment());
    WriteDownRun(run, rehearsal, state);
    RestoreEnvironment(own);

    run.meaning = MeaningOf(run);
    HidePretendedUuid(run);
    run.verdict = VerdictOf(run);
    run.summary = SummaryOf(run);
    run.hints = HintsOf(run, state.options ? &*state.options : nullptr);
    if (!longPaths && run.journal.metLongPaths) AddEndWithLongPaths(run, request);
    return run;
}

}  // namespace launcher::mediatool
