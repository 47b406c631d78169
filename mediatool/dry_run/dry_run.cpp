#include "mediatool/dry_run/dry_run.h"

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include <algorithm>
#include <exception>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/owners.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "launcher/driver.h"
#include "media/folder_names.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/media/media_set.h"
#include "mediatool/media/program_file.h"

namespace launcher::mediatool {
namespace {

// What the C runtime ends a process with after an exception that nobody catches.
constexpr int kAbnormalEnd = 3;

using Options = std::optional<LaunchOptions>;

// The launcher's run from its command line to its exit code. The options are there once the
// command line was good.
int Rehearse(const DryRunRequest& request, Rehearsal& rehearsal, Options& options) {
    std::vector<std::wstring> texts = {ToWide(rehearsal.machine.launcherPath)};
    for (const std::string& argument : request.arguments)
        texts.push_back(ToWide(argument));
    std::vector<const wchar_t*> argv;
    argv.reserve(texts.size());
    for (const std::wstring& text : texts)
        argv.push_back(text.c_str());
    const RehearsalScope scope(rehearsal);
    try {
        options.emplace(static_cast<int>(argv.size()), argv.data(), kInstallerName, true, false);
        return RunLauncher(*options);
    } catch (const ProcessEnd& end) {
        return end.exitCode;
    } catch (const std::exception& failure) {
        rehearsal.journal.messages.push_back(
            {std::string("The launcher crashes: ") + failure.what(), Severity::Error, false, true,
             false});
        return kAbnormalEnd;
    }
}

std::vector<std::string> ArgumentsOf(const std::string& commandLine) {
    int count = 0;
    const LocalMemory<wchar_t*> split(CommandLineToArgvW(ToWide(commandLine).c_str(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(ToNarrow(split.Get()[i]));
    return arguments;
}

std::string KindOf(const std::string& file) {
    const Path path(file);
    if (IsFolder(path)) return "folder";
    if (!ReadStart(path, 1)) return "unreadable";
    const auto program = ReadProgramFile(path);
    if (!program) return "no program";
    if (program->isCutOff) return "cut off";
    if (program->isLibrary) return "library";
    if (program->Is64Bit()) return "64-bit";
    return program->Is32Bit() ? "32-bit" : "other machine";
}

// Where the installer was found: the last lookup that found a file of its name.
std::string FoundAt(const Journal& journal, const LaunchOptions& options) {
    for (auto lookup = journal.lookups.rbegin(); lookup != journal.lookups.rend(); ++lookup)
        if (lookup->found && SameName(FileName(Path(lookup->path)), options.installerExeName))
            return lookup->path;
    return {};
}

std::string OriginName(InstallerOrigin origin) {
    switch (origin) {
        case InstallerOrigin::Option:
            return "-installerPath";
        case InstallerOrigin::Variable:
            return "ZEP_TALVOR_Installer";
        case InstallerOrigin::Dialog:
            return "folder-dialog";
        case InstallerOrigin::CurrentMedia:
        case InstallerOrigin::None:
            break;
    }
    return "current-media";
}

std::optional<ChosenInstaller> InstallerOf(const Journal& journal, const Options& options) {
    if (!options || options->installerOrigin == InstallerOrigin::None) return std::nullopt;
    const std::string foundAt = FoundAt(journal, *options);
    return ChosenInstaller{options->installerExePath, foundAt, options->osFolder,
                           OriginName(options->installerOrigin), KindOf(foundAt)};
}

// What the launcher read of its environment during the run, as it is at its end.
bool IsSet(const char* name) {
    return !GetEnvVar(name).empty();
}

// The volumes are searched for after the installer: the first lookup is the count file's.
bool CameToVolumes(const Journal& journal) {
    return std::ranges::any_of(journal.lookups, [](const Lookup& lookup) {
        return SameName(FileName(Path(lookup.path)), kCountFile);
    });
}

// The media that was started, not its copy.
Path MediaOf(const LaunchOptions& options) {
    return options.temporaryCopyMade ? Path(GetEnvVar("ZEPAdmInstOriginalMediaDir"))
                                     : options.mediaDir;
}

std::string WhyNotCopied(const LaunchOptions& options, const DryRun& run) {
    if (IsSet("ZEPAdmInstDontCopyInstaller")) return "ZEPAdmInstDontCopyInstaller is set.";
    if (!run.volumesChecked)
        return options.softMgt ? "Software management runs the installer from where it is."
                               : "ZEP_Online_Installation_Caf_Repositiory is set.";
    if (run.volumes->layout == Layout::NotSplit) return "The media is not split.";
    if (run.volumes->layout != Layout::Incomplete) return "All volumes are there.";
    return "The option --mgt, --uninst or --pipeserver runs the installer from where it is.";
}

CopyDecision DecisionOf(const Options& options, const DryRun& run) {
    if (!run.volumes) return {false, "The run does not come so far."};
    if (IsSet("ZEPAdmODTMultiVolumes")) return {false, "Only the number of volumes is asked for."};
    if (options->temporaryCopyMade)
        return {true, "Not all volumes of the media can be put together."};
    if (!options->skipTemporaryCopy && !IsSet("ZEPAdmInstDontCopyInstaller"))
        return {false, "The copy fails."};
    return {false, WhyNotCopied(*options, run)};
}

bool AnyMessage(const Journal& journal, const char* start) {
    return std::ranges::any_of(journal.messages, [start](const Message& message) {
        return message.text.starts_with(start);
    });
}

std::string MeaningOf(const DryRun& run) {
    if (run.showsCommandLine)
        return run.exitCodeIsInstallers
                   ? "That of the console, for which the launcher waits; no installer runs."
                   : "A console was started in place of the installer, which is not run.";
    if (run.exitCodeIsInstallers) return "The installer's own, for which the launcher waits.";
    if (run.started) return "The installer was started; the launcher does not wait for it.";
    if (run.volumes && IsSet("ZEPAdmODTMultiVolumes"))
        return "The number of volumes, which ZEPAdmODTMultiVolumes asks for; nothing is started.";
    if (AnyMessage(run.journal, "The launcher crashes: ")) return "The launcher crashes.";
    return "The launcher refuses; the message says why.";
}

std::string LauncherPath(const std::string& media) {
    const MediaSet set = OpenMediaSet({media});
    const Path launcher = Join(set.first, kLauncherName);
    if (!IsFile(launcher)) throw BadInput("\"" + launcher.Text() + "\" is no program.");
    return launcher.Text();
}

// As the dialog would name it.
std::string PickedFolder(const std::string& text) {
    const Path folder = FullPath(text);
    if (!IsFolder(folder))
        throw BadInput("\"" + text + "\" cannot be picked: there is no such folder.");
    return folder.Text();
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
    const Environment own = CurrentEnvironment();
    for (const auto& [name, value] : request.environment) {
        SetEnvVar(name, value);
        run.variables.push_back(name);
    }
    const Environment before = CurrentEnvironment();

    Options options;
    run.exitCode = Rehearse(request, rehearsal, options);

    run.machine = rehearsal.machine;
    run.journal = rehearsal.journal;
    run.environment = Changes(before, CurrentEnvironment());
    run.temp = GetEnvVar("TEMP");
    run.started = run.journal.commandLine.has_value();
    run.showsCommandLine = run.started && GetEnvVar("DEBUGCMD_INSTALLK7") == "1";
    run.exitCodeIsInstallers = run.journal.waited;
    if (run.started) run.installerArguments = ArgumentsOf(*run.journal.commandLine);
    run.installer = InstallerOf(run.journal, options);
    if (CameToVolumes(run.journal)) {
        run.volumesChecked = !options->softMgt && !IsSet("ZEP_Online_Installation_Caf_Repositiory");
        const Environment after = CurrentEnvironment();
        run.volumes = ViewOf(MediaOf(*options));
        RestoreEnvironment(after);
    }
    run.copy = DecisionOf(options, run);
    run.meaning = MeaningOf(run);
    RestoreEnvironment(own);
    return run;
}

}  // namespace launcher::mediatool
