#include "launcher/requirements.h"

#include <windows.h>

#include <optional>

#include "fs/encoding.h"
#include "tests/launcher/base/options_fields.h"
#include "tests/launcher/isolated_test.h"
#include "tests/launcher/journal.h"
#include "tests/support/import_patch.h"

namespace launcher {
namespace {

using testing::ElementsAre;

// Stand-ins for the system: what it has, and what it was asked for.
struct FakeSystem {
    bool hasLibrary = true;
    bool hasExport = true;
    bool isNewEnough = true;
    std::optional<OSVERSIONINFOEXW> wanted;
    DWORD fields = 0;
    ULONGLONG conditions = 0;
};
FakeSystem fake;

const auto kLibrary = reinterpret_cast<HMODULE>(&fake);

HMODULE WINAPI LoadFakeLibrary(LPCWSTR name, HANDLE file, DWORD flags) {
    test::Record("load " + ToNarrow(name) + (file ? " from file" : "") + " with " +
                 std::to_string(flags));
    return fake.hasLibrary ? kLibrary : nullptr;
}

INT_PTR WINAPI FakeExport() {
    return 0;
}

FARPROC WINAPI FindFakeExport(HMODULE library, LPCSTR name) {
    test::Record(std::string("look for ") + name);
    return fake.hasExport && library == kLibrary ? FakeExport : nullptr;
}

BOOL WINAPI FreeFakeLibrary(HMODULE library) {
    test::Record(library == kLibrary ? "free" : "free another library");
    return TRUE;
}

BOOL WINAPI VerifyFakeVersion(LPOSVERSIONINFOEXW wanted, DWORD fields, DWORDLONG conditions) {
    fake.wanted = *wanted;
    fake.fields = fields;
    fake.conditions = conditions;
    return fake.isNewEnough;
}

class RequirementsTest : public testing::Test {
  protected:
    RequirementsTest() {
        fake = {};
        test::ClearJournal();
    }

    LaunchOptions options_ = test::ParseOptions({});

  private:
    const test::ImportPatch load_{"LoadLibraryExW", LoadFakeLibrary};
    const test::ImportPatch find_{"GetProcAddress", FindFakeExport};
    const test::ImportPatch free_{"FreeLibrary", FreeFakeLibrary};
    const test::ImportPatch verify_{"VerifyVersionInfoW", VerifyFakeVersion};
};

TEST_F(RequirementsTest, AreMetByAWebLibraryWithTheExport) {
    EXPECT_TRUE(CheckWebLibrary(options_));
    EXPECT_THAT(test::Journal(),
                ElementsAre("load wininet.dll with 1", "look for HttpWebSocketReceive", "free"));
}

TEST_F(RequirementsTest, AreMetWithoutAWebLibrary) {
    fake.hasLibrary = false;
    EXPECT_TRUE(CheckWebLibrary(options_));
    EXPECT_THAT(test::Journal(), ElementsAre("load wininet.dll with 1"));
}

TEST_F(RequirementsTest, AreNotMetByAWebLibraryWithoutTheExport) {
    fake.hasExport = false;
    EXPECT_FALSE(CheckWebLibrary(options_));
    EXPECT_THAT(test::Journal(),
                ElementsAre("load wininet.dll with 1", "look for HttpWebSocketReceive", "free",
                            "error: Internet Explorer 10 or later is required to run the "
                            "installer. Please install it and try again."));
}

TEST_F(RequirementsTest, SayNothingOnANewWindows) {
    WarnOfOldWindows(options_);
    EXPECT_THAT(test::Journal(), ElementsAre());
}

TEST_F(RequirementsTest, WarnOfAnOldWindows) {
    fake.isNewEnough = false;
    WarnOfOldWindows(options_);
    EXPECT_THAT(test::Journal(),
                ElementsAre("warning: This version of Windows is not supported anymore.\n"
                            "Please check the certified platforms in the Program Directory."));
}

TEST_F(RequirementsTest, AskForWindows8OrNewer) {
    WarnOfOldWindows(options_);
    ASSERT_TRUE(fake.wanted);
    EXPECT_EQ(fake.wanted->dwOSVersionInfoSize, sizeof(OSVERSIONINFOEXW));
    EXPECT_EQ(fake.wanted->dwMajorVersion, 6u);
    EXPECT_EQ(fake.wanted->dwMinorVersion, 2u);
    EXPECT_EQ(fake.wanted->wServicePackMajor, 0u);
    EXPECT_EQ(fake.fields, 0x23u);
    ULONGLONG conditions = VerSetConditionMask(0, VER_MINORVERSION, VER_GREATER_EQUAL);
    conditions = VerSetConditionMask(conditions, VER_MAJORVERSION, VER_GREATER_EQUAL);
    conditions = VerSetConditionMask(conditions, VER_SERVICEPACKMAJOR, VER_GREATER_EQUAL);
    EXPECT_EQ(fake.conditions, conditions);
}

}  // namespace
}  // namespace launcher
