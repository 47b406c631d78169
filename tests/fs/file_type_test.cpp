#include "fs/file_type.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <string>

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

class FileTypeTest : public test::FileTest {};

TEST_F(FileTypeTest, TellsFilesFromFolders) {
    EXPECT_EQ(GetType(folder_.Write("file")), FileType::File);
    EXPECT_EQ(GetType(folder_.MakeDir("folder")), FileType::Directory);
}

TEST_F(FileTypeTest, ThrowsForAnEmptyPath) {
    EXPECT_THAT([] { GetType(""); }, Throws("GetType - empty path"));
}

TEST_F(FileTypeTest, ThrowsTheSystemsTextForAMissingPath) {
    const std::string file = folder_.Text("missing");
    EXPECT_THAT([&] { GetType(file); },
                ThrowsSystemError("GetType - " + file, ERROR_FILE_NOT_FOUND));
    const std::string below = folder_.Text("missing\\below");
    EXPECT_THAT([&] { GetType(below); },
                ThrowsSystemError("GetType - " + below, ERROR_PATH_NOT_FOUND));
}

TEST_F(FileTypeTest, DoesNotSearchAfterAnyOtherError) {
    const std::string file = folder_.Write("file");
    const Hook<decltype(&GetFileAttributesW)> refused(
        "GetFileAttributesW", FailsWith(ERROR_ACCESS_DENIED, INVALID_FILE_ATTRIBUTES));
    EXPECT_THAT([&] { GetType(file); },
                ThrowsSystemError("GetType - " + file, ERROR_ACCESS_DENIED));
}

// Files in use, as the paging file is, can be asked about through their folder's listing alone.
TEST_F(FileTypeTest, ReadsTheListingOfAFileInUse) {
    const std::string file = folder_.Write("file");
    const std::string folder = folder_.MakeDir("folder");
    const Hook<decltype(&GetFileAttributesW)> inUse(
        "GetFileAttributesW", FailsWith(ERROR_SHARING_VIOLATION, INVALID_FILE_ATTRIBUTES));
    int closed = 0;
    const Hook<decltype(&FindClose)> count("FindClose", [&](auto real, HANDLE search) {
        ++closed;
        return real(search);
    });
    EXPECT_EQ(GetType(file), FileType::File);
    EXPECT_EQ(GetType(folder), FileType::Directory);
    EXPECT_EQ(closed, 2);
}

TEST_F(FileTypeTest, ThrowsTheListingsErrorWhenThatFailsToo) {
    const Hook<decltype(&GetFileAttributesW)> inUse(
        "GetFileAttributesW", FailsWith(ERROR_SHARING_VIOLATION, INVALID_FILE_ATTRIBUTES));
    const std::string missing = folder_.Text("missing");
    EXPECT_THAT([&] { GetType(missing); },
                ThrowsSystemError("GetType - " + missing, ERROR_FILE_NOT_FOUND));
    const Hook<decltype(&FindFirstFileW)> refused(
        "FindFirstFileW", FailsWith(ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE));
    EXPECT_THAT([&] { GetType(missing); },
                ThrowsSystemError("GetType - " + missing, ERROR_ACCESS_DENIED));
}

// A link of the host costs this process a handle under Wine: no FileTest.
TEST(FileType, TellsALinkFromAFolder) {
    const test::TemporaryFolder folder;
    folder.MakeDir("folder");
    const test::FolderLink link(folder.Dir() / "link", folder.Dir() / "folder");
    EXPECT_EQ(GetType(folder.Text("link")), FileType::DirectoryLink);
}

// Two bits of the attributes count, and no other. The numbers are the bits that filters use.
TEST(FileType, FollowsFromFolderAndReparsePoint) {
    constexpr DWORD kFolder = FILE_ATTRIBUTE_DIRECTORY;
    constexpr DWORD kReparse = FILE_ATTRIBUTE_REPARSE_POINT;
    for (const DWORD others : {DWORD{0}, ~(kFolder | kReparse)}) {
        const auto type = [others](DWORD attributes) {
            return static_cast<int>(TypeFromAttributes(others | attributes));
        };
        EXPECT_EQ(type(kFolder), 1);
        EXPECT_EQ(type(0), 2);
        EXPECT_EQ(type(kFolder | kReparse), 5);
        EXPECT_EQ(type(kReparse), 6);
    }
}

TEST(PathExists, IsTrueForFilesAndFolders) {
    const test::TemporaryFolder folder;
    EXPECT_TRUE(PathExists(folder.Write("file \xF0\x9F\x92\xBF.txt")));
    EXPECT_TRUE(PathExists(folder.MakeDir("folder")));
    EXPECT_TRUE(PathExists(folder.Text() + "\\folder\\"));
    EXPECT_TRUE(PathExists(folder.Text() + "/folder/../folder"));
}

TEST(PathExists, IsFalseForWhatIsNotThere) {
    const test::TemporaryFolder folder;
    const std::string file = folder.Write("file");
    for (const std::string& path :
         {std::string(), folder.Text("missing"), folder.Text("missing\\below"), file + "\\below",
          folder.Text() + "\\a<b"})
        EXPECT_FALSE(PathExists(path)) << path;
}

}  // namespace
}  // namespace launcher
