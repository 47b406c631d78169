// Handles that the launcher has open while it works: none that a child process would inherit.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "fs/copy.h"
#include "fs/owners.h"
#include "launcher/remove_script.h"
#include "media/volume_files.h"
#include "platform/administrator.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

// The values of the handles of this process that a child would inherit.
std::set<std::uintptr_t> InheritableHandles() {
    std::set<std::uintptr_t> handles;
    for (std::uintptr_t value = 4; value < 0x1000; value += 4) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags) &&
            (flags & HANDLE_FLAG_INHERIT) != 0)
            handles.insert(value);
    }
    return handles;
}

// Looks at the handles of this process at each call of a Windows function.
template <class Function>
class Lookout {
  public:
    explicit Lookout(const char* function)
        : before_(InheritableHandles()), hook_(function, [this](auto real, auto... arguments) {
              ++calls_;
              EXPECT_EQ(InheritableHandles(), before_);
              return real(arguments...);
          }) {}

    int Calls() const { return calls_; }

  private:
    std::set<std::uintptr_t> before_;
    int calls_ = 0;
    Hook<Function> hook_;
};

class Inheritance : public testing::Test {
  protected:
    TemporaryFolder folder_;
};

TEST_F(Inheritance, IsSeenByThisTest) {
    const std::set<std::uintptr_t> before = InheritableHandles();
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, TRUE};
    const FileHandle file(CreateFileW(FromUtf8(folder_.Text("file")).c_str(), GENERIC_WRITE, 0,
                                      &attributes, CREATE_ALWAYS, 0, nullptr));
    EXPECT_EQ(InheritableHandles().size(), before.size() + 1);
}

// The source, the destination and the searches of two levels are open at the same time.
TEST_F(Inheritance, DoesNotConcernFilesAndSearchesOfACopy) {
    folder_.Write("source/folder/file", "content");
    const Lookout<decltype(&::WriteFile)> lookout("WriteFile");
    Copy(folder_.Text("source"), folder_.Text("destination"));
    EXPECT_GT(lookout.Calls(), 0);
}

TEST_F(Inheritance, DoesNotConcernMarkerFiles) {
    const std::string marker = folder_.Write("1.txt", "MTBDIR=SET\r\n");
    const Lookout<decltype(&::ReadFile)> lookout("ReadFile");
    EXPECT_EQ(ReadMtbDir(marker), "SET");
    EXPECT_GT(lookout.Calls(), 0);
}

TEST_F(Inheritance, DoesNotConcernTheCleanUpScript) {
    const Lookout<decltype(&::WriteFile)> lookout("WriteFile");
    WriteRemoveScript(folder_.Text() + "\\");
    EXPECT_GT(lookout.Calls(), 0);
}

TEST_F(Inheritance, DoesNotConcernTheTokenOfTheUser) {
    const Lookout<decltype(&::GetTokenInformation)> lookout("GetTokenInformation");
    if (!DetectAdministrator()) GTEST_SKIP() << "a standard user's token is not opened";
    EXPECT_GT(lookout.Calls(), 0);
}

}  // namespace
}  // namespace launcher::test
