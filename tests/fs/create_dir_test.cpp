#include "fs/create_dir.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "fs/encoding.h"
#include "fs/file_type.h"
#include "tests/support/file_test.h"
#include "tests/support/hook.h"
#include "tests/support/links.h"
#include "tests/support/throws.h"

namespace launcher {
namespace {

using test::FailsWith;
using test::Hook;
using test::Throws;
using test::ThrowsSystemError;
using testing::ElementsAre;

class CreateDirTest : public test::FileTest {
  protected:
    bool IsThere(const char* name) const { return PathExists(folder_.Text(name)); }

    // The folders that Windows is asked to make, in order.
    static std::vector<std::string> MadeBy(const std::string& path) {
        std::vector<std::string> made;
        const Hook<decltype(&CreateDirectoryW)> record(
            "CreateDirectoryW", [&](auto real, LPCWSTR name, LPSECURITY_ATTRIBUTES security) {
                EXPECT_EQ(security, nullptr);
                made.push_back(ToNarrow(name));
                return real(name, security);
            });
        CreateDir(path);
        return made;
    }
};

TEST_F(CreateDirTest, DoesNothingForAFolderThatIsThere) {
    const std::string folder = folder_.MakeDir("folder");
    folder_.Write("folder\\file", "content");
    CreateDir(folder);
    EXPECT_EQ(test::ReadFile(folder_.Dir() / "folder" / "file"), "content");
}

TEST_F(CreateDirTest, MakesMissingParentsFirst) {
    const std::string root = folder_.Text();
    EXPECT_THAT(MadeBy(root + "\\a\\b\\c"),
                ElementsAre(root + "\\a", root + "\\a\\b", root + "\\a\\b\\c"));
    EXPECT_TRUE(IsThere("a\\b\\c"));
}

TEST_F(CreateDirTest, MakesOnlyTheParentsOfADot) {
    const std::string root = folder_.Text();
    EXPECT_THAT(MadeBy(root + "\\a\\b\\."), ElementsAre(root + "\\a", root + "\\a\\b"));
}

TEST_F(CreateDirTest, NormalisesThePath) {
    CreateDir("\"" + folder_.Text() + "/x//\xC3\xA9 y/\"");
    EXPECT_TRUE(PathExists(folder_.Text("x\\\xC3\xA9 y\\.")));
}

TEST_F(CreateDirTest, ThrowsForAnEmptyPath) {
    for (const char* const path : {"", "1:\\x", "///", "\\\\server"})  // all normalised to nothing
        EXPECT_THAT([&] { CreateDir(path); }, Throws("CreateDir - empty path")) << path;
}

TEST_F(CreateDirTest, ThrowsForAFileInItsPlace) {
    const std::string file = folder_.Write("file", "content");
    EXPECT_THAT([&] { CreateDir(file + "/"); },
                Throws("CreateDir - " + file + " is not a directory."));
    EXPECT_EQ(test::ReadFile(folder_.Dir() / "file"), "content");
}

TEST_F(CreateDirTest, LeavesABareNameADriveAndAShareAlone) {
    ASSERT_FALSE(PathExists("B:\\"));
    const std::string name = "launcher-test-bare-name";
    for (const std::string& path :
         {name, "\\" + name, std::string("B:"), std::string("\\\\launcher-test-server\\share")})
        EXPECT_THAT(MadeBy(path), ElementsAre()) << path;
}

TEST_F(CreateDirTest, ThrowsTheSystemsText) {
    const Hook<decltype(&CreateDirectoryW)> full("CreateDirectoryW",
                                                 FailsWith(ERROR_DISK_FULL, FALSE));
    const std::string path = folder_.Text("a");
    EXPECT_THAT([&] { CreateDir(folder_.Text() + "//a/"); },
                ThrowsSystemError("CreateDirectory - " + path, ERROR_DISK_FULL));
}

// What is wrong with a parent shows in the failure of the folder itself.
TEST_F(CreateDirTest, NamesTheFolderWhenAParentCannotBeMade) {
    const std::string file = folder_.Write("file");
    const std::string path = file + "\\below\\deep";
    EXPECT_THAT([&] { CreateDir(path); },
                ThrowsSystemError("CreateDirectory - " + path, ERROR_PATH_NOT_FOUND));
    const std::string onMissingDrive = "B:\\a\\b";
    EXPECT_THAT([&] { CreateDir(onMissingDrive); },
                ThrowsSystemError("CreateDirectory - " + onMissingDrive, ERROR_PATH_NOT_FOUND));
}

TEST_F(CreateDirTest, KeepsTheFoldersMadeBeforeAFailure) {
    const Hook<decltype(&CreateDirectoryW)> failing(
        "CreateDirectoryW", [&](auto real, LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
            if (std::wstring_view(path).ends_with(L"\\a")) return real(path, security);
            SetLastError(ERROR_DISK_FULL);
            return FALSE;
        });
    EXPECT_THAT([&] { CreateDir(folder_.Text("a\\b\\c")); },
                ThrowsSystemError("CreateDirectory - " + folder_.Text("a\\b\\c"), ERROR_DISK_FULL));
    EXPECT_TRUE(IsThere("a"));
}

// A link of the host costs this process a handle under Wine: no FileTest.
TEST(CreateDir, TakesALinkToAFolderForOne) {
    const test::TemporaryFolder folder;
    folder.MakeDir("folder");
    const test::FolderLink link(folder.Dir() / "link", folder.Dir() / "folder");
    EXPECT_NO_THROW(CreateDir(folder.Text("link")));
    CreateDir(folder.Text() + "\\link\\below");
    EXPECT_TRUE(PathExists(folder.Text("folder\\below")));
}

// The link is there, but no folder: Windows then refuses to make one of that name.
TEST_F(CreateDirTest, DoesNotTakeALinkThatLeadsNowhereForAFolder) {
    const std::string link = folder_.MakeDir("link");
    const Hook<decltype(&GetFileAttributesW)> isLink(
        "GetFileAttributesW", [](auto real, LPCWSTR path) {
            const DWORD attributes = real(path);
            const bool isThere = attributes != INVALID_FILE_ATTRIBUTES;
            return isThere ? attributes | FILE_ATTRIBUTE_REPARSE_POINT : attributes;
        });
    EXPECT_NO_THROW(CreateDir(link));
    const Hook<decltype(&CreateFileW)> leadsNowhere(
        "CreateFileW", FailsWith(ERROR_PATH_NOT_FOUND, INVALID_HANDLE_VALUE));
    EXPECT_THAT([&] { CreateDir(link); },
                ThrowsSystemError("CreateDirectory - " + link, ERROR_ALREADY_EXISTS));
}

}  // namespace
}  // namespace launcher
