#include <algorithm>

#include "launcher/base/message.h"
#include "launcher/driver.h"
#include "launcher/installer_command_line.h"
#include "media/flavours.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/dry_run/dry_run.h"
#include "mediatool/media/remedies.h"
#include "platform/administrator.h"

namespace launcher::mediatool {
namespace {

struct Reason {
    std::string cause;
    std::string remedy;
};

// Messages that a variable may bring about.
struct Culprit {
    const char* message;
    const char* variable;
};
constexpr Culprit kCulprits[] = {
    {"The installer must be run from an elevated Command Prompt", kNotAdministratorVar},
    {"This media is not for Windows operating system.", kFlavourMarkerVar},
    {"Setup failed to create process", kDebugVar}};

// By its command line, or before the run.
bool IsSet(const DryRun& run, const std::string& name) {
    for (const Change& change : run.environment)
        if (SameName(change.name, name)) return change.after.has_value();
    return std::ranges::count(run.setVariables, name, &SetVariable::name) > 0;
}

Reason LeftoverVariable(const std::string& name) {
    return {name + " is set", "clear that variable"};
}

std::string FirstLine(const std::string& text) {
    return text.substr(0, text.find_first_of("\r\n"));
}

// "in a box", "in the folder dialog and 2 boxes"
std::string Places(const DryRun& run) {
    const auto dialogs = std::ranges::count(run.journal.messages, true, &Message::dialog);
    const auto boxes = std::ranges::count(run.journal.messages, true, &Message::box) - dialogs;
    std::string text = dialogs > 0 ? "in the folder dialog" : "";
    if (boxes > 0) text += text.empty() ? "in " : " and ";
    if (boxes == 1) text += "a box";
    if (boxes > 1) text += std::to_string(boxes) + " boxes";
    if (run.showsCommandLine) text += (text.empty() ? "in " : " and ") + std::string("a console");
    return text;
}

// Of a process that Windows does not create.
Reason FailedStart(const DryRun& run, Reason reason) {
    const std::string& text = run.journal.messages.back().text;
    const std::size_t code = text.rfind("\nrc=");
    if (run.installer && !run.installer->fault.empty())
        reason.cause += ": " + run.installer->fault;
    else if (code != std::string::npos)
        reason.cause += " (code " + FirstLine(text.substr(code + 4)) + ")";
    return reason;
}

Reason ReasonOf(const DryRun& run, const std::string& text) {
    for (const Culprit& culprit : kCulprits)
        if (text.starts_with(culprit.message) && IsSet(run, culprit.variable))
            return LeftoverVariable(culprit.variable);
    const std::optional<Remedy> known = KnownMessage(text);
    if (!known) return {FirstLine(text), {}};
    Reason reason = {known->cause, known->remedy};
    if (text.starts_with("Setup failed to create process")) return FailedStart(run, reason);
    // The second message names the file.
    if (text.starts_with("Cannot copy the installer"))
        reason.cause = FirstLine(run.journal.messages.back().text);
    return reason;
}

// The first message in a box that says why the run waits or is refused.
Reason ReasonOf(const DryRun& run) {
    if (run.countsVolumes) return LeftoverVariable(kVolumesQuery);
    const bool refused = !run.started;
    for (const Message& message : run.journal.messages)
        if (message.box && !message.dialog && (message.severity == Severity::Error || !refused) &&
            KnownMessage(message.text))
            return ReasonOf(run, message.text);
    if (refused) return ReasonOf(run, run.journal.messages.back().text);
    if (run.showsCommandLine) return LeftoverVariable(kDebugVar);
    if (run.tracesInBoxes) return LeftoverVariable(kTraceBoxVar);
    return {"the installer is on a medium of its own",
            "give its folder with -installerPath FOLDER"};
}

std::string Beginning(const DryRun& run) {
    const std::string exitCode = "exit code " + std::to_string(run.exitCode);
    if (run.countsVolumes) return "Starts nothing, " + exitCode;
    if (run.journal.crashed) return "Crashes, " + exitCode;
    if (!run.started) return "Refused, " + exitCode + ", waits " + Places(run);
    return "Waits " + Places(run) +
           (run.showsCommandLine ? "; no installer runs" : ", then starts the installer");
}

}  // namespace

Verdict VerdictOf(const DryRun& run) {
    if (!run.started) return Verdict::Refused;
    return run.Waits() > 0 ? Verdict::Waits : Verdict::Starts;
}

std::string VerdictName(Verdict verdict) {
    return NameIn({"starts", "waits", "refused"}, verdict);
}

std::string SummaryOf(const DryRun& run) {
    if (VerdictOf(run) == Verdict::Starts)
        return run.exitCodeIsInstallers
                   ? "Starts the installer and waits for it; the exit code is the installer's."
                   : "Starts the installer, exit code 0 at once: it does not wait for it.";
    const Reason reason = ReasonOf(run);
    return Beginning(run) + ": " + reason.cause +
           (reason.remedy.empty() ? "" : "; " + reason.remedy);
}

}  // namespace launcher::mediatool
