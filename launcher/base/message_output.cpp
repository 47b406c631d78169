#include "launcher/base/message_output.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>

#include "fs/encoding.h"
#include "fs/text.h"
#include "launcher/base/message.h"

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

}  // namespace

void ShowBox(const std::string& text, Severity) {
    // Deliberate: the error icon whatever the severity.
    MessageBoxW(nullptr, ToWide(text).c_str(), nullptr, MB_ICONERROR);
}

void WriteConsoleLine(const std::string& text, Severity severity, bool toErrors) {
    std::string line = Prefix(severity) + text;
    ReplaceAll(line, "\n", std::string("\n") + kBlankPrefix, 0);
    std::FILE* const stream = toErrors ? stderr : stdout;
    std::fwrite(line.data(), 1, line.size(), stream);
    std::fputc('\n', stream);
    std::fflush(stream);
}

bool TracesInBoxes() {
    static const bool answer = IsTraceSwitchOn();
    return answer;
}

void EndProcess(int exitCode) {
    std::exit(exitCode);
}

}  // namespace launcher
