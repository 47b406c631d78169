// COM on a system whose library cannot be loaded.

#include <gtest/gtest.h>
#include <windows.h>

#include "installer/com.h"
#include "tests/support/hook.h"

namespace launcher {
namespace {

using test::Hook;

HMODULE WINAPI FindNoModule(LPCWSTR) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

TEST(MissingCom, CreatesNothingAndReleasesNothing) {
    const Hook<decltype(&LoadLibraryW)> missing(
        "LoadLibraryW", test::FailsWith(ERROR_MOD_NOT_FOUND, HMODULE{nullptr}));
    const test::ImportPatch notLoaded("GetModuleHandleW", reinterpret_cast<void*>(FindNoModule));
    int released = 0;
    const Hook<decltype(&FreeLibrary)> release("FreeLibrary", [&](auto real, HMODULE library) {
        ++released;
        return real(library);
    });
    {
        const ComApartment com;
        ComPtr<IUnknown> object;
        EXPECT_EQ(com.CreateInstance(CLSID_NULL, IID_PPV_ARGS(object.Put())), E_NOTIMPL);
        EXPECT_FALSE(object);
    }
    EXPECT_EQ(released, 0);
}

}  // namespace
}  // namespace launcher
