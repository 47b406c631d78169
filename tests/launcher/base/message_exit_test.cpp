#include <gmock/gmock.h>
#include <windows.h>

#include <cwchar>
#include <string>

#include "fs/exceptions.h"
#include "launcher/base/message.h"
#include "tests/launcher/base/message_boxes.h"
#include "tests/launcher/base/options_fields.h"
#include "tests/support/import_patch.h"

namespace launcher {
namespace {

using testing::ExitedWithCode;
using testing::StrEq;

// Reports the last error `code` as the launch does, and ends the process.
[[noreturn]] void ReportFailure(DWORD code, bool useGui) {
    LaunchOptions options = test::ParseOptions({}, useGui);
    SetLastError(code);
    ReportLastErrorAndExit(options, "\"setup.exe\" \"x\"", "Setup failed to create process");
}

// The system's own text, with the line break that it has. (A stream in text mode doubles the CR of
// it when writing and takes one away when reading.)
std::string SystemText(DWORD code) {
    return SystemErrorText(code) + "\r\n";
}

TEST(MessageExitDeathTest, ReportsAnErrorAndEndsWithExitCode1) {
    LaunchOptions options = test::ParseOptions({}, false);
    EXPECT_EXIT(ReportErrorAndExit(options, "text"), ExitedWithCode(1), StrEq("ERROR: text\n"));
}

TEST(MessageExitDeathTest, ReportsAFailedCallWithItsCodeAndTheSystemsText) {
    EXPECT_EXIT(
        {
            const test::MessageBoxPrinter printer;
            ReportFailure(ERROR_FILE_NOT_FOUND, true);
        },
        ExitedWithCode(1),
        StrEq("box: Setup failed to create process\n\"setup.exe\" \"x\"\nrc=2\nmsg=" +
              SystemText(ERROR_FILE_NOT_FOUND) + "\n"));
}

TEST(MessageExitDeathTest, ReportsAFailedCallOnTheErrorStreamWhereBoxesAreOff) {
    EXPECT_EXIT(ReportFailure(ERROR_ACCESS_DENIED, false), ExitedWithCode(1),
                StrEq("ERROR: Setup failed to create process\n"
                      "       \"setup.exe\" \"x\"\n"
                      "       rc=5\n"
                      "       msg=" +
                      SystemText(ERROR_ACCESS_DENIED) + "       \n"));
}

TEST(MessageExitDeathTest, WritesTheCodeAsAnUnsignedNumber) {
    EXPECT_EXIT(ReportFailure(0xE0000001, false), ExitedWithCode(1),
                testing::HasSubstr("\n       rc=3758096385\n"));
}

DWORD WINAPI FailToFormat(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, va_list*) {
    return 0;
}

TEST(MessageExitDeathTest, HasNoSystemTextWhereThereIsNone) {
    EXPECT_EXIT(
        {
            const test::ImportPatch patch("FormatMessageW", FailToFormat);
            ReportFailure(ERROR_FILE_NOT_FOUND, false);
        },
        ExitedWithCode(1),
        StrEq("ERROR: Setup failed to create process\n"
              "       \"setup.exe\" \"x\"\n"
              "       rc=2\n"
              "       msg=\n"));
}

DWORD WINAPI DescribeRequest(DWORD flags, LPCVOID source, DWORD code, DWORD language, LPWSTR buffer,
                             DWORD, va_list* arguments) {
    auto* const text = static_cast<wchar_t*>(LocalAlloc(LPTR, 200 * sizeof(wchar_t)));
    *reinterpret_cast<wchar_t**>(buffer) = text;
    return static_cast<DWORD>(std::swprintf(text, 200, L"flags 0x%lx code %lu language %lu%ls",
                                            flags, code, language,
                                            source || arguments ? L" and more" : L""));
}

TEST(MessageExitDeathTest, AsksTheSystemForItsTextInItsOwnLanguage) {
    EXPECT_EXIT(
        {
            const test::ImportPatch patch("FormatMessageW", DescribeRequest);
            ReportFailure(1234, false);
        },
        ExitedWithCode(1), testing::HasSubstr("msg=flags 0x1100 code 1234 language 0\n"));
}

}  // namespace
}  // namespace launcher
