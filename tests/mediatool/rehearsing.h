#pragma once

#include <utility>

#include "mediatool/dry_run/dry_run.h"
#include "tests/e2e/support/media.h"
#include "tests/mediatool/support/sample_media.h"
#include "tests/support/isolated_test.h"

namespace launcher::test {

using mediatool::Layout;
using Variables = std::vector<std::pair<std::string, std::string>>;

inline constexpr char kInstallerOfMedia[] = "inst/win_b64/code/bin/ZEPInsAppliGUI.exe";

// Dry runs in this process, by an administrator on a 64-bit Windows unless a test says otherwise.
class Rehearsing : public IsolatedTest {
  protected:
    Rehearsing() {
        request_.machine.isAdministrator = true;
        request_.machine.is64Bit = true;
    }

    // A media whose installer is a program that Windows starts.
    static SampleMedia Startable(Layout layout = Layout::NotSplit) {
        SampleMedia media(layout);
        CopyStandIn(FromUtf8(media.Text(kInstallerOfMedia)));
        return media;
    }

    // One that is copied.
    static SampleMedia Incomplete() {
        SampleMedia media = Startable(Layout::Siblings);
        media.Remove("../3");
        return media;
    }

    mediatool::DryRun Dry(const SampleMedia& media, std::vector<std::string> arguments = {},
                          Variables variables = {}) const {
        mediatool::DryRunRequest request = request_;
        request.media = media.Text();
        request.arguments = std::move(arguments);
        request.environment = std::move(variables);
        request.environment.insert(request.environment.begin(), {"TEMP", temp_.Text()});
        return mediatool::RunDry(request);
    }

    mediatool::DryRunRequest request_;
    TemporaryFolder temp_;
};

}  // namespace launcher::test
