#include <nlohmann/json.hpp>

#include "launcher/base/message.h"
#include "mediatool/base/sentences.h"
#include "mediatool/dry_run/dry_run.h"

namespace launcher::mediatool {
namespace {

template <class T>
Json OrNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json();
}

const char* SeverityName(Severity severity) {
    return NameIn({"plain", "info", "warning", "error"}, severity);
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

Json VariablesOf(const DryRun& run) {
    Json variables = Json::object();
    for (const SetVariable& variable : run.setVariables)
        variables[variable.name] = {{"value", variable.value}, {"effect", variable.effect}};
    return variables;
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
    Json json = JsonOf(*run.volumes);
    if (!run.volumesChecked) json["layout"] = "not-checked";
    return json;
}

Json CopyOf(const DryRun& run) {
    const PretendedCopy& copy = run.journal.copy;
    Json contents = Json::array();
    for (const auto& [key, file] : copy.contents)
        contents.push_back({{"path", file.path}, {"source", file.source}, {"bytes", file.bytes}});
    return {{"made", run.copy.made},
            {"reason", run.copy.reason},
            {"files", copy.contents.size()},
            {"bytes", copy.bytes},
            {"room", OrNull(copy.room)},
            {"contents", contents},
            {"removeScript", run.journal.wroteRemoveScript}};
}

Json MachineOf(const DryRun& run) {
    const PretendedMachine& machine = run.machine;
    return {{"is64Bit", OrNull(machine.is64Bit)},
            {"isAdministrator", OrNull(machine.isAdministrator)},
            {"isWindows8OrNewer", OrNull(machine.isWindows8OrNewer)},
            {"hasOldWebLibrary", machine.hasOldWebLibrary},
            {"temp", run.temp},
            {"variables", run.variables},
            {"picked", OrNull(machine.picked)}};
}

}  // namespace

Json JsonOf(const DryRun& run) {
    return {{"schema", 1},
            {"command", "dry-run"},
            {"launcher", run.launcher},
            {"verdict", VerdictName(run.verdict)},
            {"summary", run.summary},
            {"hints", run.hints},
            {"doubt", run.doubt.empty() ? Json() : Json(run.doubt)},
            {"launcherArguments", run.arguments},
            {"workingFolder", run.workingFolder},
            {"pretended", MachineOf(run)},
            {"variables", VariablesOf(run)},
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
