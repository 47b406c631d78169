#include "launcher/base/message_output.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "fs/encoding.h"
#include "fs/text.h"
#include "launcher/base/message.h"

namespace launcher {

void ShowBox(const std::string& text, Severity) {
    // Deliberate: the error icon whatever the severity.
    MessageBoxW(nullptr, ToWide(text).c_str(), nullptr, MB_ICONERROR);
}

void WriteConsoleLine(const std::string& text, Severity severity, bool toErrors) {
    const auto level = static_cast<std::size_t>(severity);
    std::string line = kLinePrefixes[level < std::size(kLinePrefixes) ? level : 0] + text;
    ReplaceAll(line, "\n", std::string("\n") + kLinePrefixes[0], 0);
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
