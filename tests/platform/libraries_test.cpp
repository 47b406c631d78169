#include "platform/libraries.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "tests/support/hook.h"

namespace launcher {
namespace {

std::vector<DWORD> asked;

template <BOOL answer>
BOOL WINAPI Restrict(DWORD flags) {
    asked.push_back(flags);
    return answer;
}

// kernel32 has `function` as its SetDefaultDllDirectories while this lives; null: it has none.
class Kernel {
  public:
    explicit Kernel(decltype(&SetDefaultDllDirectories) function) : function_(function) {
        asked.clear();
    }

  private:
    decltype(&SetDefaultDllDirectories) function_;
    test::Hook<decltype(&GetProcAddress)> hook_{
        "GetProcAddress", [this](auto real, HMODULE library, LPCSTR name) {
            if (name != std::string("SetDefaultDllDirectories")) return real(library, name);
            EXPECT_EQ(library, GetModuleHandleW(L"kernel32"));
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function_));
        }};
};

TEST(RestrictDllSearch, AllowsTheSystemsFolderOnly) {
    const Kernel kernel(Restrict<TRUE>);
    RestrictDllSearch();
    EXPECT_EQ(asked, std::vector<DWORD>{0x800});
}

TEST(RestrictDllSearch, GoesOnWhenItIsRefused) {
    const Kernel kernel(Restrict<FALSE>);
    RestrictDllSearch();
    EXPECT_EQ(asked.size(), 1u);
}

TEST(RestrictDllSearch, DoesNothingOnASystemWithoutTheFunction) {
    const Kernel kernel(nullptr);
    RestrictDllSearch();
    EXPECT_TRUE(asked.empty());
}

}  // namespace
}  // namespace launcher
