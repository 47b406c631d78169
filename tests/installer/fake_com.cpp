#include "tests/installer/fake_com.h"

#include "installer/com.h"
#include "tests/launcher/journal.h"

namespace launcher {

ComApartment::ComApartment() : initialised_(false) {
    test::Record("COM begins");
}

ComApartment::~ComApartment() {
    test::Record("COM ends");
}

HRESULT ComApartment::CreateInstance(REFCLSID classId, REFIID iid, void** object) const {
    return test::com.createInstance(classId, iid, object);
}

void FreeComMemory(void* memory) {
    ++test::com.freed;
    CoTaskMemFree(memory);
}

namespace test {

FakeCom com;

}  // namespace test
}  // namespace launcher
