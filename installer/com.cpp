#include "installer/com.h"

#include "platform/libraries.h"

namespace launcher {
namespace {

template <class Function>
Function ComFunction(const char* name) {
    return ModuleFunction<Function>(L"ole32", name);
}

}  // namespace

ComApartment::ComApartment() : library_(LoadLibraryW(L"ole32.dll")), initialised_(false) {
    const auto initialise = ComFunction<decltype(&CoInitializeEx)>("CoInitializeEx");
    if (initialise == nullptr) return;
    initialised_ =
        SUCCEEDED(initialise(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
}

ComApartment::~ComApartment() {
    if (initialised_) ComFunction<decltype(&CoUninitialize)>("CoUninitialize")();
}

HRESULT ComApartment::CreateInstance(REFCLSID classId, REFIID iid, void** object) const {
    const auto create = ComFunction<decltype(&CoCreateInstance)>("CoCreateInstance");
    return create == nullptr ? E_NOTIMPL : create(classId, nullptr, CLSCTX_ALL, iid, object);
}

void FreeComMemory(void* memory) {
    ComFunction<decltype(&CoTaskMemFree)>("CoTaskMemFree")(memory);
}

}  // namespace launcher
