#include "tests/installer/fakes.h"

#include "fs/exceptions.h"
#include "media/installer_media.h"
#include "platform/administrator.h"
#include "tests/launcher/base/options_fields.h"

namespace launcher {

bool IsAdministrator() {
    ++test::below.administratorChecks;
    if (test::below.administratorCheckFails) throw ZEPInsException(test::kCheckFailed);
    return test::below.isAdministrator;
}

bool LocateInstaller(LaunchOptions&, const std::string& folder, bool quiet) {
    test::Record("look in " + folder + (quiet ? " quietly" : ""));
    return test::below.findsInstaller;
}

namespace test {

FakeBelow below;

InstallerTest::InstallerTest() : options_(ParseOptions({})) {
    below = {};
    ClearJournal();
    options_.mediaDir = Path("D:\\Media");
    options_.osFolder = "win_b64";
}

}  // namespace test
}  // namespace launcher
