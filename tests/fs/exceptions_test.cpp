#include "fs/exceptions.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include "tests/support/hook.h"
#include "tests/support/throws.h"

namespace launcher {
namespace {

// With va_list as the plain pointer that it is on Windows.
using FormatMessageFunction = DWORD(WINAPI*)(DWORD, LPCVOID, DWORD, DWORD, LPWSTR, DWORD, char**);

// FormatMessageW as a system that has just `text` for every code, or none at all.
class MessageTable {
  public:
    explicit MessageTable(std::optional<std::wstring> text) : text_(std::move(text)) {}

    DWORD flags = 0;
    DWORD code = 0;
    DWORD language = 1;
    LPCVOID source = this;
    const void* arguments = this;
    HLOCAL allocated = nullptr;

  private:
    DWORD Answer(LPWSTR buffer) {
        if (!text_) return 0;
        const std::size_t bytes = (text_->size() + 1) * sizeof(wchar_t);
        allocated = LocalAlloc(LMEM_FIXED, bytes);
        std::memcpy(allocated, text_->c_str(), bytes);
        std::memcpy(buffer, &allocated, sizeof allocated);
        return static_cast<DWORD>(text_->size());
    }

    std::optional<std::wstring> text_;
    test::Hook<FormatMessageFunction> hook_{
        "FormatMessageW", [this](auto, DWORD asked, LPCVOID from, DWORD error, DWORD lang,
                                 LPWSTR buffer, DWORD, char** inserts) {
            flags = asked;
            source = from;
            code = error;
            language = lang;
            arguments = inserts;
            return Answer(buffer);
        }};
};

TEST(SystemErrorText, IsEmptyForZeroWithoutAsking) {
    const MessageTable table(L"not asked for");
    EXPECT_EQ(SystemErrorText(0), "");
    EXPECT_EQ(table.flags, 0u);
}

TEST(SystemErrorText, IsEmptyWhenTheSystemHasNone) {
    const MessageTable table(std::nullopt);
    EXPECT_EQ(SystemErrorText(5), "");
}

TEST(SystemErrorText, AsksForTheSystemsTextWithoutInserts) {
    const MessageTable table(L"text");
    EXPECT_EQ(SystemErrorText(0xC0000135), "text");
    EXPECT_EQ(table.flags, 0x1300u);
    EXPECT_EQ(table.code, 0xC0000135u);
    EXPECT_EQ(table.language, 0u);
    EXPECT_EQ(table.source, nullptr);
    EXPECT_EQ(table.arguments, nullptr);
}

// One line break goes from the end; blanks, full stops and whatever else stay.
TEST(SystemErrorText, CutsOneTrailingLineBreak) {
    const std::pair<const wchar_t*, const char*> rows[] = {
        std::pair{L"Done. \r\n", "Done. "},
        std::pair{L"Done.\r\n\r\n", "Done.\r\n"},
        std::pair{L"\r\n", ""},
        std::pair{L".", "."},
        std::pair{L"Done.\n", "Done.\n"},
        std::pair{L"Done.\r", "Done.\r"},
        std::pair{L"a\r\nb", "a\r\nb"},
        std::pair{L"gr\u00F6\u00DF\r\n", "gr\xC3\xB6\xC3\x9F"}};
    for (const auto& [text, result] : rows) {
        const MessageTable table(text);
        EXPECT_EQ(SystemErrorText(5), result);
    }
}

TEST(SystemErrorText, GivesTheSystemsBufferBackOnce) {
    const MessageTable table(L"text");
    int freed = 0;
    const test::Hook<decltype(&LocalFree)> hook("LocalFree", [&](auto real, HLOCAL memory) {
        EXPECT_EQ(memory, table.allocated);
        ++freed;
        return real(memory);
    });
    SystemErrorText(5);
    EXPECT_EQ(freed, 1);
}

TEST(SystemErrorText, OfTheRunningSystemEndsInNoLineBreak) {
    const std::string text = SystemErrorText(ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(text.find_first_of("\r\n"), std::string::npos) << text;
}

TEST(FormatSystemMessage, KeepsTheLineBreakAndPassesTheFlagsOn) {
    const MessageTable table(L"Done.\r\n");
    EXPECT_EQ(FormatSystemMessage(5, 0), "Done.\r\n");
    EXPECT_EQ(table.flags, 0x1100u);
    EXPECT_EQ(FormatSystemMessage(5, FORMAT_MESSAGE_MAX_WIDTH_MASK), "Done.\r\n");
    EXPECT_EQ(table.flags, 0x11FFu);
}

TEST(ErrnoText, IsTheRuntimesText) {
    EXPECT_EQ(ErrnoText(ENOENT), "No such file or directory");
    EXPECT_EQ(ErrnoText(9999), std::strerror(9999));
}

TEST(ZEPInsException, EndsInALineFeedAfterTheSystemsText) {
    EXPECT_STREQ(ZEPInsException("message").what(), "message\n");
    const MessageTable table(L"Access is denied.\r\n");
    EXPECT_STREQ(ZEPInsException("message", 5).what(), "message - Access is denied.\n");
    EXPECT_EQ(table.code, 5u);
    EXPECT_STREQ(ZEPInsException("message", 0).what(), "message - \n");
}

TEST(ZEPInsExceptionErrno, AddsTheRuntimesText) {
    EXPECT_STREQ(ZEPInsExceptionErrno("message", ENOENT).what(),
                 "message - No such file or directory\n");
}

// With a heap that changes the last error (hostile_heap.cpp), the thrown one must be read first.
TEST(ThrowLastError, GivesTheErrorOfTheCallBefore) {
    const std::string object(100, 'o');
    const auto after = [&object](auto thrower) {
        return [&object, thrower] {
            SetLastError(ERROR_FILE_NOT_FOUND);
            thrower("Call - ", object);
        };
    };
    EXPECT_THAT(after(ThrowLastError),
                test::ThrowsSystemError("Call - " + object, ERROR_FILE_NOT_FOUND));
    EXPECT_THAT(after(ThrowLastErrorAsErrno), test::ThrowsErrno("Call - " + object, ENOENT));
}

// The two are siblings below runtime_error: a handler of one does not take the other.
TEST(Exceptions, AreSiblingRuntimeErrors) {
    static_assert(std::is_base_of_v<std::runtime_error, ZEPInsException>);
    static_assert(std::is_base_of_v<std::runtime_error, ZEPInsExceptionErrno>);
    static_assert(!std::is_base_of_v<ZEPInsException, ZEPInsExceptionErrno>);
    static_assert(!std::is_base_of_v<ZEPInsExceptionErrno, ZEPInsException>);
    const ZEPInsException original("message");
    const ZEPInsException copy = original;
    EXPECT_STREQ(copy.what(), original.what());
}

}  // namespace
}  // namespace launcher
