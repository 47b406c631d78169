#include "fs/environment.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "fs/encoding.h"
#include "tests/support/hook.h"

namespace launcher {
namespace {

constexpr char kName[] = "LAUNCHER_TEST_VARIABLE";
constexpr wchar_t kWideName[] = L"LAUNCHER_TEST_VARIABLE";

class Environment : public testing::Test {
  protected:
    ~Environment() override { SetEnvironmentVariableW(kWideName, nullptr); }
};

// What a child process inherits, as one text in which every "NAME=value" ends in a line feed.
std::wstring InheritedEnvironment() {
    wchar_t* const block = GetEnvironmentStringsW();
    std::wstring text;
    for (const wchar_t* line = block; *line != 0; line += std::wstring(line).size() + 1)
        text.append(line).append(L"\n");
    FreeEnvironmentStringsW(block);
    return text;
}

bool ChildInherits(const std::wstring& assignment) {
    return (L"\n" + InheritedEnvironment()).find(L"\n" + assignment + L"\n") != std::wstring::npos;
}

// The exit code of a command processor that runs `command`.
DWORD RunCommand(const std::wstring& command) {
    std::wstring line = L"cmd.exe /d /c " + command;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process))
        return GetLastError();
    WaitForSingleObject(process.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return code;
}

TEST_F(Environment, ReadsAnUnsetVariableAsEmpty) {
    EXPECT_EQ(GetEnvVar(kName), "");
}

TEST_F(Environment, ReadsAnEmptyVariableLikeAnUnsetOne) {
    ASSERT_TRUE(SetEnvironmentVariableW(kWideName, L""));
    EXPECT_EQ(GetEnvVar(kName), "");
}

TEST_F(Environment, ReadsWhatItWroteInAnyLanguage) {
    const std::string value = "gr\xC3\xB6\xC3\x9F \xF0\x9F\x92\xBF = %PATH% \"q\"";
    SetEnvVar(kName, value);
    EXPECT_EQ(GetEnvVar(kName), value);
    EXPECT_TRUE(ChildInherits(kWideName + std::wstring(L"=") + ToWide(value)));
}

TEST_F(Environment, ComparesNamesWithoutRegardToCase) {
    SetEnvVar(kName, "value");
    EXPECT_EQ(GetEnvVar("Launcher_Test_Variable"), "value");
}

TEST_F(Environment, OverwritesAValue) {
    SetEnvVar(kName, "a longer first value");
    SetEnvVar(kName, "second");
    EXPECT_EQ(GetEnvVar(kName), "second");
}

// Lengths around every size that the reading buffer can have, up to the longest that Windows takes.
TEST_F(Environment, ReadsValuesOfEveryLength) {
    for (const std::size_t length : {1u, 510u, 511u, 512u, 513u, 514u, 1023u, 1024u, 32766u}) {
        const std::string value(length, 'v');
        SetEnvVar(kName, value);
        EXPECT_EQ(GetEnvVar(kName), value) << "length " << length;
    }
}

TEST_F(Environment, RemovesTheVariableWithAnEmptyValue) {
    SetEnvVar(kName, "value");
    SetEnvVar(kName, "");
    EXPECT_EQ(InheritedEnvironment().find(kWideName), std::wstring::npos);
}

// Windows ends the value at its first zero byte, so here nothing of it is left.
TEST_F(Environment, RemovesTheVariableWithAValueThatBeginsWithAZeroByte) {
    SetEnvVar(kName, "value");
    SetEnvVar(kName, std::string("\0after", 6));
    EXPECT_EQ(InheritedEnvironment().find(kWideName), std::wstring::npos);
}

TEST_F(Environment, ReachesAChildProcess) {
    const std::wstring question = L"if defined " + std::wstring(kWideName) + L" exit 7";
    EXPECT_EQ(RunCommand(question), 0u);
    SetEnvVar(kName, "value");
    EXPECT_EQ(RunCommand(question), 7u);
    EXPECT_EQ(RunCommand(L"if \"%" + std::wstring(kWideName) + L"%\"==\"value\" exit 8"), 8u);
    SetEnvVar(kName, "");
    EXPECT_EQ(RunCommand(question), 0u);
}

// Windows keeps variables of its own under such names, and "-env" may set one.
TEST_F(Environment, TakesANameThatBeginsWithAnEqualsSign) {
    SetEnvVar("=LAUNCHER_TEST", "value");
    EXPECT_EQ(GetEnvVar("=LAUNCHER_TEST"), "value");
    EXPECT_TRUE(ChildInherits(L"=LAUNCHER_TEST=value"));
    SetEnvVar("=LAUNCHER_TEST", "");
    EXPECT_EQ(GetEnvVar("=LAUNCHER_TEST"), "");
}

TEST_F(Environment, DoesNotReadTheEnvironmentForAnEmptyName) {
    int reads = 0;
    const test::Hook<decltype(&GetEnvironmentVariableW)> hook(
        "GetEnvironmentVariableW", [&](auto real, LPCWSTR name, LPWSTR value, DWORD size) {
            ++reads;
            return real(name, value, size);
        });
    EXPECT_EQ(GetEnvVar(""), "");
    EXPECT_EQ(reads, 0);
    GetEnvVar(kName);
    EXPECT_EQ(reads, 1);
}

TEST_F(Environment, ChangesNothingForAnEmptyName) {
    const std::wstring before = InheritedEnvironment();
    SetEnvVar("", "value");
    SetEnvVar("", "");
    EXPECT_EQ(InheritedEnvironment(), before);
}

TEST_F(Environment, DoesNotReportAWriteThatFails) {
    int writes = 0;
    const test::Hook<decltype(&SetEnvironmentVariableW)> hook("SetEnvironmentVariableW",
                                                              [&](auto&&...) {
                                                                  ++writes;
                                                                  SetLastError(ERROR_ACCESS_DENIED);
                                                                  return FALSE;
                                                              });
    EXPECT_NO_THROW(SetEnvVar(kName, "value"));
    EXPECT_EQ(writes, 1);
    EXPECT_EQ(GetEnvVar(kName), "");
}

}  // namespace
}  // namespace launcher
