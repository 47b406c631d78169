#include "installer/com.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "fs/encoding.h"
#include "tests/support/hook.h"

namespace launcher {
namespace {

struct Counted {
    int references = 1;
    void Release() { --references; }
    int Answer() const { return 42; }
};

TEST(ComPtr, ReleasesOneReference) {
    Counted object;
    {
        const ComPtr<Counted> pointer(&object);
        EXPECT_EQ(pointer->Answer(), 42);
        EXPECT_EQ(object.references, 1);
    }
    EXPECT_EQ(object.references, 0);
}

TEST(ComApartment, IsSingleThreadedWhileItLives) {
    HRESULT inside = S_OK;
    {
        const ComApartment apartment;
        // A second, different kind of apartment on the same thread is refused.
        inside = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    }
    EXPECT_EQ(inside, RPC_E_CHANGED_MODE);
    const HRESULT after = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (SUCCEEDED(after)) CoUninitialize();
    EXPECT_EQ(after, S_OK);
}

TEST(ComApartment, DoesNotEndWhatItCouldNotBegin) {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    { const ComApartment refused; }
    EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_FALSE);
    CoUninitialize();
    CoUninitialize();
}

TEST(ComApartment, LoadsTheLibraryOfComFromTheSystemOnly) {
    std::vector<std::string> loaded;
    const test::Hook<decltype(&LoadLibraryW)> hook("LoadLibraryW", [&](auto real, LPCWSTR name) {
        loaded.push_back(ToNarrow(name));
        return real(name);
    });
    { const ComApartment apartment; }
    EXPECT_EQ(loaded, std::vector<std::string>{"ole32.dll"});
}

DWORD recordedModel = 0;

// In place of CoInitializeEx.
HRESULT WINAPI RecordModel(void* reserved, DWORD model) {
    recordedModel = reserved == nullptr ? model : 0;
    return E_FAIL;
}

TEST(ComApartment, AsksForASingleThreadWithoutOle1) {
    const test::Hook<decltype(&GetProcAddress)> hook(
        "GetProcAddress", [](auto real, HMODULE library, LPCSTR name) {
            if (std::string(name) != "CoInitializeEx") return real(library, name);
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(RecordModel));
        });
    { const ComApartment apartment; }
    EXPECT_EQ(recordedModel, 6u);
}

TEST(ComApartment, CreatesObjects) {
    const ComApartment apartment;
    ComPtr<IMalloc> none;
    EXPECT_EQ(apartment.CreateInstance(CLSID_NULL, IID_PPV_ARGS(none.Put())), REGDB_E_CLASSNOTREG);
    ComPtr<IGlobalInterfaceTable> table;
    EXPECT_EQ(apartment.CreateInstance(CLSID_StdGlobalInterfaceTable, IID_PPV_ARGS(table.Put())),
              S_OK);
    EXPECT_TRUE(table);
}

TEST(ComApartment, CreatesNothingOnASystemWithoutCom) {
    const test::Hook<decltype(&GetProcAddress)> hook("GetProcAddress",
                                                     [](auto&&...) { return FARPROC{nullptr}; });
    const ComApartment apartment;
    ComPtr<IGlobalInterfaceTable> table;
    EXPECT_EQ(apartment.CreateInstance(CLSID_StdGlobalInterfaceTable, IID_PPV_ARGS(table.Put())),
              E_NOTIMPL);
}

void* freedMemory = nullptr;

// In place of CoTaskMemFree.
void WINAPI RecordMemory(void* memory) {
    freedMemory = memory;
}

TEST(ComMemory, IsFreedByTheFunctionOfCom) {
    const ComApartment apartment;
    int memory = 0;
    {
        const test::Hook<decltype(&GetProcAddress)> hook(
            "GetProcAddress", [](auto real, HMODULE library, LPCSTR name) {
                return std::string(name) == "CoTaskMemFree"
                           ? reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&RecordMemory))
                           : real(library, name);
            });
        const ComMemory<int> owner(&memory);
    }
    EXPECT_EQ(freedMemory, &memory);
}

}  // namespace
}  // namespace launcher
