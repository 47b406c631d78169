#include "platform/web_library.h"

#include <windows.h>

#include "fs/encoding.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"

namespace launcher {
namespace {

using test::Hook;
using testing::ElementsAre;

// A system with or without the web library and its newer function.
class WebLibraryTest : public test::IsolatedTest {
  protected:
    bool hasLibrary_ = true;
    bool hasFunction_ = true;

  private:
    HMODULE Library() { return reinterpret_cast<HMODULE>(this); }

    const Hook<decltype(&LoadLibraryExW)> load_{
        "LoadLibraryExW", [this](auto, LPCWSTR name, HANDLE file, DWORD flags) {
            EXPECT_EQ(file, nullptr);
            test::Record("load " + ToNarrow(name) + " with " + std::to_string(flags));
            return hasLibrary_ ? Library() : nullptr;
        }};
    const Hook<decltype(&GetProcAddress)> find_{
        "GetProcAddress", [this](auto, HMODULE library, LPCSTR name) {
            EXPECT_EQ(library, Library());
            test::Record(std::string("look for ") + name);
            return hasFunction_ ? reinterpret_cast<FARPROC>(Library()) : nullptr;
        }};
    const Hook<decltype(&FreeLibrary)> free_{"FreeLibrary", [this](auto, HMODULE library) {
                                                 EXPECT_EQ(library, Library());
                                                 test::Record("free");
                                                 return TRUE;
                                             }};
};

TEST_F(WebLibraryTest, MustHaveTheFunction) {
    EXPECT_TRUE(HasRequiredWebLibrary());
    hasFunction_ = false;
    EXPECT_FALSE(HasRequiredWebLibrary());
}

// Flag 1 maps the library and runs nothing of it.
TEST_F(WebLibraryTest, IsOnlyMappedAndReleased) {
    HasRequiredWebLibrary();
    EXPECT_THAT(test::journal,
                ElementsAre("load wininet.dll with 1", "look for HttpWebSocketReceive", "free"));
}

TEST_F(WebLibraryTest, MayBeMissingAltogether) {
    hasLibrary_ = false;
    EXPECT_TRUE(HasRequiredWebLibrary());
    EXPECT_THAT(test::journal, ElementsAre("load wininet.dll with 1"));
}

}  // namespace
}  // namespace launcher
