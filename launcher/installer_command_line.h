#pragma once

#include <string>

namespace launcher {

class LaunchOptions;

// With the value "1" the installer's command line is only echoed in a console window; any other
// value is a program, with its arguments, to run in front of the line.
inline constexpr char kDebugVar[] = "DEBUGCMD_INSTALLK7";

// Completes `installerArgs` and returns the installer's command line; for software management, also
// sets the two variables that the installer then reads. Call it once.
//
// The line (UTF-8) is the installer's quoted path, "-CDpath" and the media folder (or, for software
// management, further arguments that ask for it, after the others), and the arguments given to the
// launcher, each in quotes. A backslash at the end of an argument is doubled, so that it does not
// escape the closing quote; nothing else is escaped. What kDebugVar asks for precedes it all.
std::string BuildInstallerCommandLine(LaunchOptions& options);

// True while kDebugVar is "1": the line is echoed in a console that stays open.
bool IsCommandLineOnlyShown();

}  // namespace launcher
