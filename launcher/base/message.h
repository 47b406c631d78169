#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace launcher {

class LaunchOptions;

// While it is exactly one character long, progress messages are shown in boxes.
inline constexpr char kTraceBoxVar[] = "ZEP_TraceMsgBox";

// The three levels of a message; any other value is printed without a severity word.
enum class Severity : std::uint32_t { Plain = 0, Info = 1, Warning = 2, Error = 3 };

// Shows `text` (UTF-8) to the user: in a message box while `useGui` is set and `noBox` is not, and
// otherwise as a line on a console stream, prefixed with the severity, continuation lines indented.
// Warnings and errors go to the standard error stream, the rest to the standard output; a plain
// message goes where the one before it went. A failure to show it is ignored.
// https://learn.microsoft.com/windows/win32/api/winuser/nf-winuser-messageboxw
void ReportMessage(const LaunchOptions& options, const std::string& text, Severity severity,
                   bool noBox);

// Shows a progress message: on a console stream only, or, when IsTraceSwitchOn() at the first call,
// in a message box only.
void TraceMessage(const LaunchOptions& options, const std::string& text, Severity severity);

// True while kTraceBoxVar says so.
bool IsTraceSwitchOn();

// Reports a fatal problem (severity Error, in a box while `useGui` is set) and ends the process
// with exit code 1.
[[noreturn]] void ReportErrorAndExit(const LaunchOptions& options, const std::string& text);

// Reports a failed system call as `text`, `detail`, the thread's last error code and its system
// text, each on its own line, and ends the process with exit code 1.
[[noreturn]] void ReportLastErrorAndExit(const LaunchOptions& options, std::string_view detail,
                                         std::string_view text);

}  // namespace launcher
