#include "tests/e2e/support/launcher_test.h"

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shlobj.h>

#include <cctype>

namespace launcher::test {

void LauncherTest::SetUp() {
    if (!IsUserAnAdmin()) GTEST_SKIP() << "needs a console that runs as administrator";
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
