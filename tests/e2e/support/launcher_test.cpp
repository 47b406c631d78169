#include "tests/e2e/support/launcher_test.h"

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shlobj.h>

#include <cctype>

#include "platform/owners.h"

namespace launcher::test {

bool IsElevated() {
    TokenHandle token;
    TOKEN_ELEVATION elevation{};
    DWORD length = 0;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Put());
    GetTokenInformation(token.Get(), TokenElevation, &elevation, sizeof elevation, &length);
    return elevation.TokenIsElevated != 0 && IsUserAnAdmin();
}

void LauncherTest::SetUp() {
    // The launcher would refuse to start any installer. tools/wine-run.sh gives these rights on
    // Wine, the README asks for them on Windows.
    if (!IsElevated()) GTEST_SKIP() << "needs a console that runs as administrator";
}

std::string OsTrace() {
    return Is64BitWindows() ? "64-bit OS" : "32-bit OS";
}

std::string Lines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

std::string TestName(const std::string& text) {
    std::string name;
    for (const char c : text)
        if (std::isalnum(static_cast<unsigned char>(c))) name += c;
    return name;
}

}  // namespace launcher::test
