#include "launcher/base/message.h"

#include <windows.h>

#include "fs/environment.h"
#include "fs/exceptions.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message_output.h"

namespace launcher {

void ReportMessage(const LaunchOptions& options, const std::string& text, Severity severity,
                   bool noBox) {
    if (options.useGui && !noBox) {
        ShowBox(text, severity);
        return;
    }
    if (severity == Severity::Warning || severity == Severity::Error)
        options.lastMessageWasProblem = true;
    else if (severity == Severity::Info)
        options.lastMessageWasProblem = false;
    WriteConsoleLine(text, severity, options.lastMessageWasProblem);
}

bool IsTraceSwitchOn() {
    return GetEnvVar(kTraceBoxVar).size() == 1;
}

void TraceMessage(const LaunchOptions& options, const std::string& text, Severity severity) {
    if (TracesInBoxes())
        ShowBox(text, severity);
    else
        ReportMessage(options, text, severity, /*noBox=*/true);
}

void ReportErrorAndExit(const LaunchOptions& options, const std::string& text) {
    ReportMessage(options, text, Severity::Error, /*noBox=*/false);
    EndProcess(1);
}

void ReportLastErrorAndExit(const LaunchOptions& options, std::string_view detail,
                            std::string_view text) {
    const DWORD code = GetLastError();
    std::string message(text);
    message.append("\n").append(detail);
    message += "\nrc=" + std::to_string(code) + "\nmsg=" + FormatSystemMessage(code, 0);
    ReportErrorAndExit(options, message);
}

}  // namespace launcher
