// What the launcher does to the world: messages, the end of the process, the installer, the dialog
// and the clean-up script.

#include <utility>

#include "installer/folder_dialog.h"
#include "installer/installer_process.h"
#include "launcher/base/message.h"
#include "launcher/base/message_output.h"
#include "launcher/remove_script.h"
#include "media/installer_media.h"
#include "mediatool/dry_run/rehearsal/process_start.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"

namespace launcher {
namespace {

using mediatool::CurrentRehearsal;
using mediatool::Message;

void WriteDown(Message message) {
    if (mediatool::Rehearsal* const rehearsal = CurrentRehearsal())
        rehearsal->journal.messages.push_back(std::move(message));
}

}  // namespace

// A box ends at a zero byte.
void ShowBox(const std::string& text, Severity severity) {
    WriteDown({text.substr(0, text.find('\0')), severity, /*box=*/true, /*toErrors=*/false,
               /*dialog=*/false});
}

void WriteConsoleLine(const std::string& text, Severity severity, bool toErrors) {
    WriteDown({text, severity, /*box=*/false, toErrors, /*dialog=*/false});
}

bool TracesInBoxes() {
    mediatool::Rehearsal* const rehearsal = CurrentRehearsal();
    return rehearsal != nullptr &&
           mediatool::FirstAnswer(rehearsal->tracesInBoxes, IsTraceSwitchOn);
}

void EndProcess(int exitCode) {
    throw mediatool::ProcessEnd{exitCode};
}

InstallerProcess::InstallerProcess(std::string commandLine)
    : commandLine_(std::move(commandLine)) {}

bool InstallerProcess::Start(bool) {
    const mediatool::ProcessStart start = mediatool::ForeseeStart(commandLine_);
    if (start.error == ERROR_SUCCESS) CurrentRehearsal()->journal.commandLine = start.commandLine;
    SetLastError(start.error);
    return start.error == ERROR_SUCCESS;
}

std::int32_t InstallerProcess::WaitForExit() {
    CurrentRehearsal()->journal.waited = true;
    return 0;
}

bool SelectInstallerFolder(LaunchOptions& options) {
    const std::optional<std::string>& picked = CurrentRehearsal()->machine.picked;
    const bool isFound = picked && LocateInstaller(options, *picked, /*quiet=*/true);
    const std::string end =
        !picked   ? "here it is cancelled."
        : isFound ? "here \"" + *picked + "\" is picked."
                  : "it does not let \"" + *picked + "\" be picked, and is cancelled here.";
    WriteDown({"The folder dialog is open, for the folder of the installer media; " + end,
               Severity::Info, /*box=*/true, /*toErrors=*/false, /*dialog=*/true});
    return isFound;
}

void WriteRemoveScript(const std::string&) {
    CurrentRehearsal()->journal.wroteRemoveScript = true;
}

}  // namespace launcher
