#pragma once

#include <windows.h>

#include <filesystem>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/e2e/support/box_watcher.h"
#include "tests/e2e/support/installer_report.h"

namespace launcher::test {

// How to start the launcher. Texts are UTF-8.
struct LauncherStart {
    std::filesystem::path program;
    std::vector<std::string> arguments;
    // On top of this process's own variables, of which none that the launcher reads is handed on.
    // An empty value removes one.
    std::map<std::string, std::string> variables;
    // A folder of the run's own for "TEMP" and for what the programs write.
    std::filesystem::path workFolder;
    // Both streams are the standard output, so that the order of its lines shows.
    bool oneStream = false;
};

// One run of the launcher, from outside.
struct LauncherRun {
    DWORD exitCode = 0;
    std::vector<Box> boxes;
    std::vector<std::string> dialogs;  // titles
    std::string output;                // bytes on the standard output
    std::string errors;                // bytes on the standard error stream
    std::optional<InstallerReport> report;
    std::filesystem::path temp;  // its "TEMP"

    std::vector<std::string> BoxTexts() const;
    // What the installer saw. Throws std::runtime_error when it was not started.
    const InstallerReport& Installer() const;
    // The names in "TEMP".
    std::vector<std::string> LeftInTemp() const;
};

// What a failed expectation shows of a run.
void PrintTo(const LauncherRun& run, std::ostream* stream);

// Starts the launcher, answers its boxes, and returns when it and all it started have ended. Throws
// std::runtime_error, and ends them all, when that takes too long.
LauncherRun RunToEnd(const LauncherStart& start);

// The launcher's process, for tests that look at it while it runs. It and all it started end with
// this object.
class LauncherProcess {
  public:
    explicit LauncherProcess(const LauncherStart& start);
    LauncherProcess(const LauncherProcess&) = delete;
    LauncherProcess& operator=(const LauncherProcess&) = delete;
    ~LauncherProcess();

    // Whether the launcher itself ends within this time. Answers its boxes meanwhile.
    bool EndsWithin(DWORD milliseconds);
    // Waits for the end of all that was started.
    LauncherRun Finish();

  private:
    void Start();
    bool AllEnded() const;
    std::string Situation();

    LauncherStart start_;
    std::filesystem::path temp_;
    HANDLE job_ = nullptr;
    PROCESS_INFORMATION process_{};
    std::optional<BoxWatcher> watcher_;
};

// A command line that CommandLineToArgvW splits into these again.
std::string QuoteArguments(const std::vector<std::string>& arguments);

}  // namespace launcher::test
