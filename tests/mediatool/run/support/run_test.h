#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/e2e/support/launcher_test.h"
#include "tests/mediatool/run/support/watched_process.h"

namespace launcher::test {

using Json = nlohmann::json;

// One run of mediatool run --json.
struct WatchedOutcome {
    MediatoolRun run;
    Json report;

    std::vector<std::string> BoxTexts() const;
    // The lines of one of "output", "errors", "installer-output", "installer-errors".
    std::vector<std::string> Lines(const std::string& stream) const;
};
void PrintTo(const WatchedOutcome& outcome, std::ostream* stream);

// Runs of a real launcher that mediatool watches. What they start lies in the test's folder; none
// of it may be left.
class RunTest : public LauncherTest {
  protected:
    RunTest();
    ~RunTest() override;

    // The options of mediatool, and the launcher's arguments.
    using Words = std::vector<std::string>;
    WatchedOutcome Watched(const Media& media, const Words& launcherArguments,
                           const Words& options = {}) const;
    MediatoolProcess Started(const Media& media, const Words& launcherArguments,
                             const Words& options = {}) const {
        return MediatoolProcess(LineOf(media, launcherArguments, options), scratch.Dir(),
                                Variables());
    }
    // One that Ctrl+C meets after these milliseconds, unless it has ended by then.
    MediatoolRun Interrupted(const Media& media, const Words& launcherArguments,
                             const Words& options, DWORD milliseconds) const;
    // The texts that people read.
    MediatoolRun Told(const Media& media, const Words& launcherArguments,
                      const Words& options = {}) const;

    // A media whose installer does these things (acting_installer.cpp).
    Media ActingMedia(const std::string& acts);
    // One whose setup.exe is no launcher but the stand-in installer.
    Media StandInAsLauncher() const;

    bool IsBrokenByCtrlC(const MediatoolProcess& process) const;
    Words LineOf(const Media& media, const Words& launcherArguments, Words options) const;
    std::map<std::string, std::string> Variables() const;

    std::filesystem::path temp;  // of mediatool and all it starts
};

}  // namespace launcher::test
