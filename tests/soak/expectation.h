#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

#include "tests/e2e/support/launcher_run.h"
#include "tests/e2e/support/media.h"

namespace launcher::soak {

// What becomes of the installer's part of the media.
enum class Copying { None, Complete, Failed };

// A message box: its text, or how it begins.
struct BoxText {
    std::string text;
    bool whole = true;
};

// What a run has to do.
struct Expectation {
    DWORD exitCode = 0;
    std::vector<BoxText> boxes;  // after that of a failed copy
    bool startsInstaller = true;
    Copying copying = Copying::None;
    std::string installerName = test::kGuiInstaller;
    std::vector<std::string> arguments;            // the installer's, after those for the media
    std::map<std::string, std::string> variables;  // the installer's; empty for one not there
    std::string output;
    std::string errors;
};

// What is wrong with a run; empty when it is right.
std::vector<std::string> Problems(const test::LauncherRun& run, const Expectation& expected,
                                  const test::Media& media);

// Lines as they stand in a file that a standard stream was sent to.
std::string Lines(const std::vector<std::string>& lines);

}  // namespace launcher::soak
