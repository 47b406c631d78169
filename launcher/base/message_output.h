#pragma once

#include <cstdint>
#include <string>

namespace launcher {

enum class Severity : std::uint32_t;

// What messages do to the world: the last step of each function of launcher/base/message.h.

// A message box with `text` (UTF-8) and its OK button; returns when it is closed. The icon is that
// of an error whatever the severity.
// https://learn.microsoft.com/windows/win32/api/winuser/nf-winuser-messageboxw
void ShowBox(const std::string& text, Severity severity);

// What a line on the console begins with, by its severity; further lines of a text begin as a plain
// one does.
inline constexpr const char* kLinePrefixes[] = {"       ", " INFO: ", " WARN: ", "ERROR: "};

// `text` (UTF-8) as a line on the standard error stream or the standard output, flushed: the
// severity in front, further lines of the text indented to stand under its first.
void WriteConsoleLine(const std::string& text, Severity severity, bool toErrors);

// Whether trace messages are boxes: IsTraceSwitchOn() at the first call.
bool TracesInBoxes();

// Ends the process at once, without unwinding.
[[noreturn]] void EndProcess(int exitCode);

}  // namespace launcher
