#include "platform/architecture.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/hook.h"
#include "tests/support/own_process.h"

namespace launcher {
namespace {

// One system: which functions its kernel32 has, and what they answer.
struct System {
    const char* name;
    bool hasIsWow64Process;
    bool isWow64;
    bool hasGetNativeSystemInfo;
    WORD native;    // what GetNativeSystemInfo answers
    WORD ordinary;  // what GetSystemInfo answers
    bool is64Bit;
};

constexpr WORD kX86 = 0;
constexpr WORD kItanium = 6;
constexpr WORD kX64 = 9;
constexpr WORD kArm64 = 12;
constexpr WORD kUnknown = 0xFFFF;

const System* playing = nullptr;
std::vector<std::string> lookedUp;

BOOL WINAPI PlayedIsWow64Process(HANDLE process, PBOOL answer) {
    EXPECT_EQ(process, GetCurrentProcess());
    EXPECT_FALSE(*answer);
    if (playing->isWow64) *answer = TRUE;
    return FALSE;  // only the flag counts
}

void WINAPI PlayedGetNativeSystemInfo(LPSYSTEM_INFO information) {
    information->wProcessorArchitecture = playing->native;
}

FARPROC Played(std::string_view function) {
    if (function == "IsWow64Process" && playing->hasIsWow64Process)
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&PlayedIsWow64Process));
    if (function == "GetNativeSystemInfo" && playing->hasGetNativeSystemInfo)
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&PlayedGetNativeSystemInfo));
    return nullptr;
}

// Plays `system` while it lives.
class Play {
  public:
    explicit Play(const System& system) { playing = &system; }

  private:
    test::Hook<decltype(&GetProcAddress)> lookUp_{
        "GetProcAddress", [](auto, HMODULE module, LPCSTR name) {
            EXPECT_EQ(module, GetModuleHandleW(L"kernel32"));
            lookedUp.emplace_back(name);
            return Played(name);
        }};
    test::Hook<decltype(&GetSystemInfo)> ordinary_{
        "GetSystemInfo", [](auto, LPSYSTEM_INFO information) {
            information->wProcessorArchitecture = playing->ordinary;
        }};
};

// Under WOW64 the native answer counts, otherwise the ordinary one; where a function is missing,
// the ordinary one serves. Each in a process of its own: what is looked up is kept.
TEST(Is64BitWindowsDeathTest, GivesTheSystemsAnswer) {
    for (const System& system :
         {System{"X64", true, false, true, kUnknown, kX64, true},
          System{"X86ProcessOnX64", true, true, true, kX64, kX86, true},
          System{"X86", true, false, true, kUnknown, kX86, false},
          System{"X86ThatSaysSoTwice", true, true, true, kX86, kX64, false},
          System{"NoIsWow64Process", false, true, true, kX86, kX64, true},
          System{"NoGetNativeSystemInfo", true, true, false, kX64, kX86, false},
          System{"NeitherFunctionOnX64", false, false, false, kX86, kX64, true},
          System{"Arm64", true, false, true, kUnknown, kArm64, false},
          System{"X86ProcessOnArm64", true, true, true, kArm64, kX86, false},
          System{"Itanium", true, false, true, kUnknown, kItanium, false}}) {
        SCOPED_TRACE(system.name);
        test::ExpectInOwnProcess([&] {
            const Play play(system);
            EXPECT_EQ(Is64BitWindows(), system.is64Bit);
        });
    }
}

TEST(Is64BitWindowsDeathTest, LooksTheFunctionsUpOnceAndAsksThemEachTime) {
    test::ExpectInOwnProcess([] {
        System system{"", true, true, true, kX64, kX86, true};
        const Play play(system);
        EXPECT_TRUE(Is64BitWindows());
        system.native = kArm64;
        EXPECT_FALSE(Is64BitWindows());
        EXPECT_THAT(lookedUp,
                    testing::UnorderedElementsAre("GetNativeSystemInfo", "IsWow64Process"));
    });
}

TEST(Is64BitWindows, AgreesWithTheRunningSystem) {
    SYSTEM_INFO information{};
    GetNativeSystemInfo(&information);
    EXPECT_EQ(Is64BitWindows(), information.wProcessorArchitecture == kX64);
}

}  // namespace
}  // namespace launcher
