#include "fs/environment.h"

#include <windows.h>

#include <string>

#include "fs/encoding.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"

namespace launcher {
namespace {

constexpr char kName[] = "LAUNCHER_TEST_VARIABLE";
constexpr wchar_t kWideName[] = L"LAUNCHER_TEST_VARIABLE";

class EnvironmentTest : public test::IsolatedTest {};

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

TEST_F(EnvironmentTest, ReadsAnUnsetAndAnEmptyVariableAsEmpty) {
    EXPECT_EQ(GetEnvVar(kName), "");
    ASSERT_TRUE(SetEnvironmentVariableW(kWideName, L""));
    EXPECT_EQ(GetEnvVar(kName), "");
}

TEST_F(EnvironmentTest, ReadsWhatItWroteInAnyLanguageAndHandsItToChildren) {
    SetEnvVar(kName, "a longer first value");
    const std::string value = "gr\xC3\xB6\xC3\x9F \xF0\x9F\x92\xBF = %PATH% \"q\"";
    SetEnvVar(kName, value);
    EXPECT_EQ(GetEnvVar("Launcher_Test_Variable"), value);  // names are case-insensitive
    EXPECT_TRUE(ChildInherits(kWideName + std::wstring(L"=") + ToWide(value)));
}

// Lengths around every size that the reading buffer can have, up to the longest that Windows takes.
TEST_F(EnvironmentTest, ReadsValuesOfEveryLength) {
    for (const std::size_t length : {1u, 510u, 511u, 512u, 513u, 514u, 1023u, 1024u, 32766u}) {
        const std::string value(length, 'v');
        SetEnvVar(kName, value);
        EXPECT_EQ(GetEnvVar(kName), value) << "length " << length;
    }
}

// Windows ends a value at its first zero byte: nothing is left of the second one.
TEST_F(EnvironmentTest, RemovesTheVariableWithAnEmptyValue) {
    for (const std::string& empty : {std::string(), std::string("\0after", 6)}) {
        SetEnvVar(kName, "value");
        SetEnvVar(kName, empty);
        EXPECT_EQ(InheritedEnvironment().find(kWideName), std::wstring::npos);
    }
}

// Windows keeps variables of its own under such names, and "-env" may set one.
TEST_F(EnvironmentTest, TakesANameThatBeginsWithAnEqualsSign) {
    SetEnvVar("=LAUNCHER_TEST", "value");
    EXPECT_EQ(GetEnvVar("=LAUNCHER_TEST"), "value");
    EXPECT_TRUE(ChildInherits(L"=LAUNCHER_TEST=value"));
    SetEnvVar("=LAUNCHER_TEST", "");
    EXPECT_EQ(GetEnvVar("=LAUNCHER_TEST"), "");
}

TEST_F(EnvironmentTest, DoesNotReadTheEnvironmentForAnEmptyName) {
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

TEST_F(EnvironmentTest, DoesNotWriteTheEnvironmentForAnEmptyName) {
    int writes = 0;
    const test::Hook<decltype(&SetEnvironmentVariableW)> hook(
        "SetEnvironmentVariableW", [&](auto real, LPCWSTR name, LPCWSTR value) {
            ++writes;
            return real(name, value);
        });
    SetEnvVar("", "value");
    EXPECT_EQ(writes, 0);
    SetEnvVar(kName, "value");
    EXPECT_EQ(writes, 1);
}

TEST_F(EnvironmentTest, DoesNotReportAWriteThatFails) {
    const test::Hook<decltype(&SetEnvironmentVariableW)> hook(
        "SetEnvironmentVariableW", test::FailsWith(ERROR_ACCESS_DENIED, FALSE));
    EXPECT_NO_THROW(SetEnvVar(kName, "value"));
}

}  // namespace
}  // namespace launcher
