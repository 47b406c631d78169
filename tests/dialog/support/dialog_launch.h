#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/dialog/support/dialog_driver.h"
#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {

inline constexpr char kNotFound[] =
    "The installer is not found, please read the file \"ReadMe_Windows.txt\".";

// A medium without an installer, "far\near\between\media" in the test's folder: "near" is where its
// dialog opens. The launcher has another name in each test, because Windows remembers by that name
// in which folder a dialog was closed.
class DialogTest : public LauncherTest {
  protected:
    using Steps = std::function<void(DialogDriver&)>;

    Media MarkedMedia(const std::string& osFolder = "win_b64") const;
    // The stand-in installer, in a folder that is named relative to the test's; the folder's text.
    std::string AddInstallerIn(const std::string& folder,
                               const std::string& osFolder = "win_b64") const;
    std::string InstallerOf(const std::string& folder,
                            const std::string& osFolder = "win_b64") const;

    // A run in whose dialog a person takes these steps, the last of which closes it.
    static LauncherRun RunWithDialog(const LauncherStart& start, const Steps& steps);
    LauncherRun RunWithDialog(const Media& media, const Steps& steps) const {
        return RunWithDialog(StartOf(media, {}), steps);
    }
    // The same with the usual media, on a drive of its own. `root` is the folder above it that the
    // drive begins with, relative to the test's.
    LauncherRun RunOnDrive(char letter, const std::string& root, const Steps& steps) const;
};

}  // namespace launcher::test
