#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {

// What one program did, and the names of the hostile libraries that it loaded.
struct AttackedRun {
    LauncherRun run;
    std::set<std::string> loaded;
};

// A test of a medium that an attacker can write to. Beside the launcher lies the control program,
// which shows that an attack works and what no program can prevent. Both have names of their own,
// for settings of Wine that hold for this test alone.
class AttackedTest : public LauncherTest {
  protected:
    AttackedTest();

    AttackedRun RunAttackedLauncher(const std::vector<std::string>& arguments) const {
        return RunAttacked(media.Launcher(), arguments);
    }
    AttackedRun RunControl(const std::vector<std::string>& actions) const {
        return RunAttacked(control, actions);
    }
    Media media;
    std::filesystem::path control;

  private:
    AttackedRun RunAttacked(const std::filesystem::path& program,
                            const std::vector<std::string>& arguments) const;
};

}  // namespace launcher::test
