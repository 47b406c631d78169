#include "fs/copy.h"
#include "fs/create_dir.h"
#include "fs/file_type.h"
#include "fs/path_exists.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "tests/fs/file_test.h"
#include "tests/fs/throws.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using test::FailsWith;
using test::Hook;
using test::Throws;
using test::ThrowsSystemError;

class PathExistsTest : public test::FileTest {};
class GetTypeTest : public test::FileTest {};
class CreateDirTest : public test::FileTest {
  protected:
    bool IsThere(const char* name) const { return std::filesystem::exists(folder_.Dir() / name); }
};
class CopyTest : public test::FileTest {};

TEST_F(PathExistsTest, IsTrueForFilesAndFolders) {
    EXPECT_TRUE(PathExists(folder_.Write("file \xF0\x9F\x92\xBF.txt")));
    EXPECT_TRUE(PathExists(folder_.MakeDir("folder")));
    EXPECT_TRUE(PathExists(folder_.Text() + "\\folder\\"));
    EXPECT_TRUE(PathExists(folder_.Text() + "/folder/../folder"));
    EXPECT_TRUE(PathExists("."));
}

TEST_F(PathExistsTest, IsFalseForWhatIsNotThere) {
    const std::string file = folder_.Write("file");
    EXPECT_FALSE(PathExists(""));
    EXPECT_FALSE(PathExists(folder_.Text("missing")));
    EXPECT_FALSE(PathExists(folder_.Text("missing\\below")));
    EXPECT_FALSE(PathExists(file + "\\below"));
    EXPECT_FALSE(PathExists(folder_.Text() + "\\a<b"));
}

TEST_F(GetTypeTest, TellsFilesFromFolders) {
    EXPECT_EQ(GetType(folder_.Write("file")), FileType::File);
    EXPECT_EQ(GetType(folder_.MakeDir("folder")), FileType::Directory);
    EXPECT_EQ(GetType(folder_.Text()), FileType::Directory);
}

TEST_F(GetTypeTest, ThrowsForAnEmptyPath) {
    EXPECT_THAT([] { GetType(""); }, Throws("GetType - empty path"));
}

TEST_F(GetTypeTest, ThrowsTheSystemsTextForAMissingPath) {
    const std::string file = folder_.Text("missing");
    EXPECT_THAT([&] { GetType(file); },
                ThrowsSystemError("GetType - " + file, ERROR_FILE_NOT_FOUND));
    const std::string below = folder_.Text("missing\\below");
    EXPECT_THAT([&] { GetType(below); },
                ThrowsSystemError("GetType - " + below, ERROR_PATH_NOT_FOUND));
}

TEST_F(GetTypeTest, DoesNotSearchAfterAnyOtherError) {
    const std::string file = folder_.Write("file");
    const Hook<decltype(&GetFileAttributesW)> refused(
        "GetFileAttributesW", FailsWith(ERROR_ACCESS_DENIED, INVALID_FILE_ATTRIBUTES));
    EXPECT_THAT([&] { GetType(file); },
                ThrowsSystemError("GetType - " + file, ERROR_ACCESS_DENIED));
}

// Files in use, as the paging file is, can be asked about through their folder's listing alone.
TEST_F(GetTypeTest, ReadsTheListingOfAFileInUse) {
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

TEST_F(GetTypeTest, ThrowsTheListingsErrorWhenThatFailsToo) {
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

// Two bits of the attributes count, and no other.
TEST(TypeFromAttributes, LooksAtFolderAndReparsePoint) {
    EXPECT_EQ(TypeFromAttributes(FILE_ATTRIBUTE_DIRECTORY), FileType::Directory);
    EXPECT_EQ(TypeFromAttributes(FILE_ATTRIBUTE_NORMAL), FileType::File);
    EXPECT_EQ(TypeFromAttributes(0), FileType::File);
    EXPECT_EQ(TypeFromAttributes(FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT),
              FileType::DirectoryLink);
    EXPECT_EQ(TypeFromAttributes(FILE_ATTRIBUTE_REPARSE_POINT), FileType::FileLink);
    const DWORD others = ~DWORD{FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT};
    EXPECT_EQ(TypeFromAttributes(others), FileType::File);
    EXPECT_EQ(TypeFromAttributes(others | FILE_ATTRIBUTE_DIRECTORY), FileType::Directory);
}

TEST(FileType, HasTheBitsThatFiltersUse) {
    EXPECT_EQ(static_cast<int>(FileType::Directory), 1);
    EXPECT_EQ(static_cast<int>(FileType::File), 2);
    EXPECT_EQ(static_cast<int>(FileType::DirectoryLink), 5);
    EXPECT_EQ(static_cast<int>(FileType::FileLink), 6);
    EXPECT_TRUE(IsDirectory(FileType::Directory));
    EXPECT_TRUE(IsDirectory(FileType::DirectoryLink));
    EXPECT_FALSE(IsDirectory(FileType::File));
    EXPECT_FALSE(IsDirectory(FileType::FileLink));
}

TEST_F(CreateDirTest, DoesNothingForAFolderThatIsThere) {
    const std::string folder = folder_.MakeDir("folder");
    folder_.Write("folder\\file", "content");
    CreateDir(folder);
    EXPECT_EQ(test::ReadFile(folder_.Dir() / "folder" / "file"), "content");
}

TEST_F(CreateDirTest, MakesMissingParentsFirst) {
    std::vector<std::wstring> made;
    const Hook<decltype(&CreateDirectoryW)> record(
        "CreateDirectoryW", [&](auto real, LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
            EXPECT_EQ(security, nullptr);
            made.emplace_back(path);
            return real(path, security);
        });
    CreateDir(folder_.Text("a\\b\\c"));
    const std::wstring root = folder_.Dir().wstring();
    EXPECT_EQ(made,
              (std::vector<std::wstring>{root + L"\\a", root + L"\\a\\b", root + L"\\a\\b\\c"}));
    EXPECT_TRUE(IsThere("a\\b\\c"));
}

TEST_F(CreateDirTest, NormalisesThePath) {
    CreateDir("\"" + folder_.Text() + "/x//\xC3\xA9 y/\"");
    EXPECT_EQ(GetType(folder_.Text("x\\\xC3\xA9 y")), FileType::Directory);
}

TEST_F(CreateDirTest, ThrowsForAnEmptyPath) {
    // The second is a path whose root makes no sense, and so an empty one too.
    for (const char* const path : {"", "1:\\x", "///", "\\\\server"})
        EXPECT_THAT([&] { CreateDir(path); }, Throws("CreateDir - empty path")) << path;
}

TEST_F(CreateDirTest, ThrowsForAFileInItsPlace) {
    const std::string file = folder_.Write("file", "content");
    EXPECT_THAT([&] { CreateDir(file + "/"); },
                Throws("CreateDir - " + file + " is not a directory."));
    EXPECT_EQ(test::ReadFile(folder_.Dir() / "file"), "content");
}

TEST_F(CreateDirTest, LeavesABareNameAlone) {
    const std::string name = test::ToUtf8(folder_.Dir().filename());
    for (const std::string& path : {name, "\\" + name}) {
        EXPECT_NO_THROW(CreateDir(path));
        EXPECT_FALSE(PathExists(path));
        RemoveDirectoryW(ToWide(path).c_str());  // nothing, unless the test has failed
    }
}

TEST_F(CreateDirTest, LeavesADriveAndAShareAlone) {
    ASSERT_FALSE(PathExists("B:\\"));
    EXPECT_NO_THROW(CreateDir("B:"));
    EXPECT_NO_THROW(CreateDir("C:\\"));
    EXPECT_NO_THROW(CreateDir("\\\\launcher-test-server\\share"));
}

TEST_F(CreateDirTest, MakesOnlyTheParentsOfADot) {
    std::vector<std::wstring> made;
    const Hook<decltype(&CreateDirectoryW)> record(
        "CreateDirectoryW", [&](auto real, LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
            made.emplace_back(path);
            return real(path, security);
        });
    CreateDir(folder_.Text() + "\\a\\b\\.");
    const std::wstring root = folder_.Dir().wstring();
    EXPECT_EQ(made, (std::vector<std::wstring>{root + L"\\a", root + L"\\a\\b"}));
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

TEST_F(CopyTest, ThrowsForEmptyPathsTheSourceFirst) {
    EXPECT_THAT([] { Copy("", ""); }, Throws("Copy - empty source path"));
    EXPECT_THAT([] { Copy("", "x"); }, Throws("Copy - empty source path"));
    EXPECT_THAT([] { Copy("missing", ""); }, Throws("Copy - empty destination path"));
}

TEST_F(CopyTest, ThrowsWhatGetTypeThrowsForAMissingSource) {
    const std::string missing = folder_.Text("missing");
    EXPECT_THAT([&] { Copy(missing, folder_.Text("new\\copy")); },
                ThrowsSystemError("GetType - " + missing, ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(PathExists(folder_.Text("new")));
}

TEST_F(CopyTest, CopiesAFileToTheVeryName) {
    folder_.MakeDir("folder");
    Copy(folder_.Write("file", "content"), folder_.Text("folder\\other"));
    EXPECT_EQ(test::ReadFile(folder_.Dir() / "folder" / "other"), "content");
}

TEST_F(CopyTest, CopiesAFolderToTheVeryName) {
    folder_.Write("folder\\file", "content");
    folder_.MakeDir("there");
    Copy(folder_.Text("folder"), folder_.Text("there"));
    EXPECT_EQ(test::ReadFile(folder_.Dir() / "there" / "file"), "content");
}

}  // namespace
}  // namespace launcher
