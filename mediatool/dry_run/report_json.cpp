#include <nlohmann/json.hpp>

#include "launcher/base/message.h"
#include "mediatool/dry_run/report.h"

namespace launcher::mediatool {
namespace {

template <class T>
Json OrNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json();
}

const char* SeverityName(Severity severity) {
    switch (severity) {
        case Severity::Info:
            return "info";
        case Severity::Warning:
            return "warning";
        case Severity::Error:
            return "error";
        case Severity::Plain:
            break;
    }
    return "plain";
}

Json MessagesOf(const DryRun& run) {
    Json messages = Json::array();
    for (const Message& message : run.journal.messages) {
        Json json = {{"text", message.text},
                     {"severity", SeverityName(message.severity)},
                     {"box", message.box},
                     {"dialog", message.dialog}};
        json["stream"] = message.box ? Json() : Json(message.toErrors ? "errors" : "output");
        messages.push_back(json);
    }
    return messages;
}

Json LookupsOf(const DryRun& run) {
    Json lookups = Json::array();
    for (const Lookup& lookup : run.journal.lookups)
        lookups.push_back({{"path", lookup.path}, {"found", lookup.found}});
    return lookups;
}

Json EnvironmentOf(const DryRun& run) {
    Json environment = Json::object();
    for (const Change& change : run.environment)
        environment[change.name] = {{"before", OrNull(change.before)},
                                    {"after", OrNull(change.after)}};
    return environment;
}

Json InstallerOf(const DryRun& run) {
    if (!run.installer) return nullptr;
    return {{"path", run.installer->path},
            {"foundAt", run.installer->foundAt},
            {"osFolder", run.installer->osFolder},
            {"foundBy", run.installer->foundBy},
            {"program", run.installer->program}};
}

Json VolumesOf(const DryRun& run) {
    if (!run.volumes) return nullptr;
    const LauncherView& volumes = *run.volumes;
    return {{"count", volumes.count ? Json(volumes.count->count) : Json()},
            {"layout", run.volumesChecked ? LayoutName(volumes.layout) : "not-checked"},
            {"folders", volumes.folders}};
}

Json CopyOf(const DryRun& run) {
    const PretendedCopy& copy = run.journal.copy;
    return {{"made", run.copy.made},
            {"reason", run.copy.reason},
            {"files", copy.contents.size()},
            {"bytes", copy.bytes},
            {"room", OrNull(copy.room)}};
}

Json MachineOf(const DryRun& run) {
    const PretendedMachine& machine = run.machine;
    return {{"is64Bit", OrNull(machine.is64Bit)},
            {"isAdministrator", OrNull(machine.isAdministrator)},
            {"isWindows8OrNewer", OrNull(machine.isWindows8OrNewer)},
            {"hasOldWebLibrary", machine.hasOldWebLibrary},
            {"temp", run.temp}};
}

}  // namespace

Json JsonOf(const DryRun& run) {
    return {{"schema", 1},
            {"command", "dry-run"},
            {"launcher", run.launcher},
            {"doubt", run.doubt.empty() ? Json() : Json(run.doubt)},
            {"launcherArguments", run.arguments},
            {"pretended", MachineOf(run)},
            {"exitCode", run.exitCode},
            {"exitCodeIsInstallers", run.exitCodeIsInstallers},
            {"meaning", run.meaning},
            {"started", run.started},
            {"waits", run.Waits()},
            {"commandLine", OrNull(run.journal.commandLine)},
            {"arguments", run.installerArguments},
            {"messages", MessagesOf(run)},
            {"environment", EnvironmentOf(run)},
            {"lookups", LookupsOf(run)},
            {"installer", InstallerOf(run)},
            {"volumes", VolumesOf(run)},
            {"temporaryCopy", CopyOf(run)}};
}

}  // namespace launcher::mediatool
