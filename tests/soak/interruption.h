#pragma once

#include <filesystem>

#include "tests/e2e/support/launcher_run.h"
#include "tests/soak/situations.h"

namespace launcher::soak {

// Waits until the copy has come to some place in its course, and a moment more. False when the
// launcher ended before.
bool WaitIntoCopy(test::LauncherProcess& process, const std::filesystem::path& temp,
                  Random& random);

// A media folder under another name while this lives, so that nothing finds it.
class HiddenFolder {
  public:
    // Windows lets nobody rename a folder while a file in it is open: tries again until `process`
    // has ended.
    HiddenFolder(const std::filesystem::path& folder, test::LauncherProcess& process);
    HiddenFolder(const HiddenFolder&) = delete;
    HiddenFolder& operator=(const HiddenFolder&) = delete;
    ~HiddenFolder();

    bool IsHidden() const { return isHidden_; }

  private:
    std::filesystem::path folder_;
    std::filesystem::path hidden_;
    bool isHidden_ = false;
};

}  // namespace launcher::soak
