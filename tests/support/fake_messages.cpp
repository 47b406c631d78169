#include "tests/support/fake_messages.h"

#include <windows.h>

#include "launcher/base/message.h"
#include "tests/support/journal.h"

namespace launcher {
namespace {

std::string Word(Severity severity) {
    constexpr const char* kWords[] = {"plain", "info", "warning", "error"};
    return kWords[static_cast<std::size_t>(severity)];
}

}  // namespace

void ReportMessage(const LaunchOptions&, const std::string& text, Severity severity, bool noBox) {
    test::Record(Word(severity) + (noBox ? " on console: " : ": ") + text);
}

void TraceMessage(const LaunchOptions&, const std::string& text, Severity severity) {
    test::Record((severity == Severity::Info ? "trace: " : Word(severity) + " trace: ") + text);
}

void ReportErrorAndExit(const LaunchOptions& options, const std::string& text) {
    ReportMessage(options, text, Severity::Error, false);
    throw test::ProcessExit();
}

void ReportLastErrorAndExit(const LaunchOptions& options, std::string_view detail,
                            std::string_view text) {
    const DWORD code = GetLastError();
    std::string message(text);
    ReportErrorAndExit(options,
                       message.append("\n").append(detail) + "\nrc=" + std::to_string(code));
}

}  // namespace launcher
