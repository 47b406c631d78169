#include "platform/module_path.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>

#include "tests/support/hook.h"
#include "tests/support/own_process.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/throws.h"

namespace launcher {
namespace {

using test::ThrowsSystemError;

// A process whose executable has this path.
class Executable {
  public:
    explicit Executable(std::wstring path) : path_(std::move(path)) {}

    int calls = 0;
    DWORD error = 0;

  private:
    // As Windows does it: a path that does not fit is cut, terminated, and the size is the answer.
    DWORD Give(LPWSTR buffer, DWORD size) {
        ++calls;
        if (error != 0) {
            SetLastError(error);
            return 0;
        }
        const std::size_t length = std::min<std::size_t>(path_.size(), size - 1);
        std::copy_n(path_.begin(), length, buffer);
        buffer[length] = 0;
        if (length == path_.size()) return static_cast<DWORD>(length);
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return size;
    }

    std::wstring path_;
    test::Hook<decltype(&GetModuleFileNameW)> hook_{
        "GetModuleFileNameW", [this](auto, HMODULE module, LPWSTR buffer, DWORD size) {
            EXPECT_EQ(module, nullptr);
            EXPECT_EQ(size, 260u);
            return Give(buffer, size);
        }};
};

TEST(ModulePath, IsTheRunningExecutable) {
    const std::filesystem::path path = test::FromUtf8(GetModuleFileNameText());
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(path.filename(), "platform_test.exe");
    EXPECT_EQ(GetModuleDirectory() + "\\platform_test.exe", GetModuleFileNameText());
}

// The folder has no trailing backslash, even at a drive's root.
TEST(ModulePathDeathTest, HasTheFolderOfTheExecutable) {
    const std::pair<const wchar_t*, const char*> rows[] = {
        std::pair{L"C:\\media\\disk 1\\setup.exe", "C:\\media\\disk 1"},
        std::pair{L"D:\\setup.exe", "D:"},
        std::pair{L"\\\\server\\share\\setup.exe", "\\\\server\\share"},
        std::pair{L"C:\\gr\u00FC\u00DF \xD83D\xDCBF\\setup.exe",
                  "C:\\gr\xC3\xBC\xC3\x9F \xF0\x9F\x92\xBF"}};
    for (const auto& row : rows)
        test::ExpectInOwnProcess([&row] {
            const Executable executable(row.first);
            EXPECT_EQ(GetModuleDirectory(), row.second);
        });
}

TEST(ModulePathDeathTest, IsAskedOfWindowsOnce) {
    test::ExpectInOwnProcess([] {
        const Executable executable(L"C:\\media\\setup.exe");
        EXPECT_EQ(GetModuleDirectory(), "C:\\media");
        EXPECT_EQ(GetModuleDirectory(), "C:\\media");
        EXPECT_EQ(GetModuleFileNameText(), "C:\\media\\setup.exe");
        EXPECT_EQ(executable.calls, 1);
    });
}

std::wstring PathOfLength(std::size_t length) {
    std::wstring path = L"C:\\";
    while (path.size() < length)
        path += path.size() % 50 == 0 ? L'\\' : L'd';
    return path;
}

// The longest path that fits comes whole; a longer one is used as Windows cuts it.
TEST(ModulePathDeathTest, OfMoreThan259CharactersIsUsedAsItWasCut) {
    test::ExpectInOwnProcess([] {
        const Executable executable(PathOfLength(259));
        EXPECT_EQ(GetModuleFileNameText().size(), 259u);
    });
    test::ExpectInOwnProcess([] {
        const Executable executable(PathOfLength(245) + L"\\bin\\deep\\deeper\\setup.exe");
        EXPECT_EQ(GetModuleFileNameText().size(), 259u);
        EXPECT_TRUE(GetModuleFileNameText().ends_with("\\bin\\deep\\deep"));
        EXPECT_TRUE(GetModuleDirectory().ends_with("\\bin\\deep"));
    });
}

TEST(ModulePathDeathTest, ThrowsWhenWindowsCannotTellAndTriesAgain) {
    test::ExpectInOwnProcess([] {
        Executable executable(L"C:\\media\\setup.exe");
        executable.error = ERROR_NOT_ENOUGH_MEMORY;
        EXPECT_THAT([] { GetModuleFileNameText(); },
                    ThrowsSystemError("GetModuleFileName failed.", ERROR_NOT_ENOUGH_MEMORY));
        EXPECT_THAT([] { GetModuleDirectory(); },
                    ThrowsSystemError("GetModuleFileName failed.", ERROR_NOT_ENOUGH_MEMORY));
        executable.error = 0;
        EXPECT_EQ(GetModuleDirectory(), "C:\\media");
    });
}

}  // namespace
}  // namespace launcher
