#include "launcher/message.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "fs/environment.h"
#include "fs/exceptions.h"
#include "fs/text.h"
#include "launcher/launch_options.h"

namespace launcher {
namespace {

constexpr char kBlankPrefix[] = "       ";

std::string Prefix(Severity severity) {
    switch (severity) {
        case Severity::Info:
            return " INFO: ";
        case Severity::Warning:
            return " WARN: ";
        case Severity::Error:
            return "ERROR: ";
        case Severity::Plain:
            break;
    }
    return kBlankPrefix;
}

// The error icon whatever the severity: every box of this program has always looked the same.
void ShowBox(const std::string& text) {
    MessageBoxW(nullptr, ToWide(text).c_str(), nullptr, MB_ICONERROR);
}

void WriteLine(std::FILE* stream, const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stream);
    std::fputc('\n', stream);
    std::fflush(stream);
}

}  // namespace

void ReportMessage(LaunchOptions& options, const std::string& text, Severity severity, bool noBox) {
    if (options.useGui && !noBox) {
        ShowBox(text);
        return;
    }
    if (severity == Severity::Warning || severity == Severity::Error)
        options.lastMessageWasProblem = true;
    else if (severity == Severity::Info)
        options.lastMessageWasProblem = false;
    std::string line = Prefix(severity) + text;
    ReplaceAll(line, "\n", std::string("\n") + kBlankPrefix, 0);
    WriteLine(options.lastMessageWasProblem ? stderr : stdout, line);
}

void TraceMessage(LaunchOptions& options, const std::string& text, Severity severity) {
    static const bool inBoxes = GetEnvVar("ZEP_TraceMsgBox").size() == 1;
    if (inBoxes)
        ShowBox(text);
    else
        ReportMessage(options, text, severity, true);
}

void ReportErrorAndExit(LaunchOptions& options, const std::string& text) {
    ReportMessage(options, text, Severity::Error, false);
    std::exit(1);
}

void ReportLastErrorAndExit(LaunchOptions& options, std::string_view detail,
                            std::string_view text) {
    const DWORD code = GetLastError();
    std::string message(text);
    message.append("\n").append(detail);
    message += "\nrc=" + std::to_string(code) + "\nmsg=" + FormatSystemMessage(code, 0);
    ReportErrorAndExit(options, message);
}

}  // namespace launcher
