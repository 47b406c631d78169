#include "tests/installer/fakes.h"

#include "fs/exceptions.h"
#include "installer/com.h"
#include "media/installer_media.h"
#include "platform/administrator.h"

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

ComApartment::ComApartment() : initialised_(true) {
    test::Record("COM begins");
}

ComApartment::~ComApartment() {
    if (initialised_) test::Record("COM ends");
}

HRESULT ComApartment::CreateInstance(REFCLSID classId, REFIID iid, void** object) const {
    return test::below.createInstance(classId, iid, object);
}

void FreeComMemory(void* memory) {
    ++test::below.freed;
    CoTaskMemFree(memory);
}

namespace test {

FakeBelow below;

InstallerTest::InstallerTest() : options_(ParseOptions({})) {
    below = {};
    options_.mediaDir = Path("D:\\Media");
    options_.osFolder = "win_b64";
}

}  // namespace test
}  // namespace launcher
