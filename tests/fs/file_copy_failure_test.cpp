#include <gmock/gmock.h>
#include <windows.h>

#include <cerrno>
#include <string>

#include "fs/copy.h"
#include "fs/encoding.h"
#include "fs/owners.h"
#include "fs/path_exists.h"
#include "tests/fs/file_test.h"
#include "tests/fs/throws.h"
#include "tests/support/hook.h"

namespace launcher {
namespace {

using test::FailsWith;
using test::Hook;
using test::Throws;
using test::ThrowsErrno;
using test::ThrowsSystemError;

class FileCopyFailure : public test::FileTest {
  protected:
    FileCopyFailure() { folder_.Write("source", "content"); }

    auto Copying() const {
        return [this] { CopyOneFile(source_, copy_); };
    }
    std::string Read(const std::string& path) const { return test::ReadFile(test::FromUtf8(path)); }

    const std::string source_ = folder_.Text("source");
    const std::string copy_ = folder_.Text("copy");
};

// A stand-in for CreateFileW that fails on one file.
Hook<decltype(&CreateFileW)> RefuseToOpen(const std::string& path, DWORD error) {
    return {"CreateFileW",
            [widePath = ToWide(path), error](auto real, LPCWSTR name, DWORD access, DWORD share,
                                             LPSECURITY_ATTRIBUTES security, DWORD disposition,
                                             DWORD flags, HANDLE like) {
                if (name != widePath)
                    return real(name, access, share, security, disposition, flags, like);
                SetLastError(error);
                return INVALID_HANDLE_VALUE;
            }};
}

TEST_F(FileCopyFailure, OfAMissingSourceComesAfterTheFoldersAreMade) {
    const std::string missing = folder_.Text("missing");
    EXPECT_THAT([&] { CopyOneFile(missing, folder_.Text("a\\b\\copy")); },
                ThrowsErrno("Cannot stat " + missing, ENOENT));
    EXPECT_TRUE(PathExists(folder_.Text("a\\b")));
    EXPECT_FALSE(PathExists(folder_.Text("a\\b\\copy")));
}

TEST_F(FileCopyFailure, OfASourceThatDisappearsAfterItsTypeWasRead) {
    const Hook<decltype(&GetFileAttributesW)> thief("GetFileAttributesW",
                                                    [&](auto real, LPCWSTR path) {
                                                        const DWORD attributes = real(path);
                                                        DeleteFileW(path);
                                                        return attributes;
                                                    });
    EXPECT_THAT([&] { Copy(source_, copy_); }, ThrowsErrno("Cannot stat " + source_, ENOENT));
    EXPECT_FALSE(PathExists(copy_));
}

TEST_F(FileCopyFailure, OfASourceThatAnotherKeepsForItself) {
    const FileHandle user(
        CreateFileW(ToWide(source_).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(user);
    EXPECT_THAT(Copying(), ThrowsErrno("Cannot read " + source_, EACCES));
    EXPECT_FALSE(PathExists(copy_));
}

TEST_F(FileCopyFailure, OfAnUnreadableSourceGivesTheRuntimesText) {
    const auto refused = RefuseToOpen(source_, ERROR_TOO_MANY_OPEN_FILES);
    EXPECT_THAT(Copying(), ThrowsErrno("Cannot read " + source_, EMFILE));
}

TEST_F(FileCopyFailure, OfAFolderInPlaceOfASource) {
    const std::string folder = folder_.MakeDir("folder");
    EXPECT_THAT([&] { CopyOneFile(folder, copy_); }, ThrowsErrno("Cannot read " + folder, EACCES));
    EXPECT_FALSE(PathExists(copy_));
}

// The paths in messages are the given ones, slashes and all.
TEST_F(FileCopyFailure, NamesThePathsAsGiven) {
    const std::string missing = folder_.Text() + "/missing//file";
    EXPECT_THAT([&] { CopyOneFile(missing, copy_); },
                ThrowsErrno("Cannot stat " + missing, ENOENT));
    folder_.MakeDir("folder");
    const std::string blocked = folder_.Text() + "//folder";
    EXPECT_THAT([&] { CopyOneFile(source_, blocked); },
                ThrowsErrno("Cannot write into " + blocked, EACCES));
}

TEST_F(FileCopyFailure, OfADestinationThatIsAFolder) {
    const std::string folder = folder_.MakeDir("folder");
    EXPECT_THAT([&] { CopyOneFile(source_, folder); },
                ThrowsErrno("Cannot write into " + folder, EACCES));
}

TEST_F(FileCopyFailure, OfADestinationThatMayNotBeWritten) {
    folder_.Write("copy", "before");
    const auto refused = RefuseToOpen(copy_, ERROR_ACCESS_DENIED);
    EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, EACCES));
    EXPECT_EQ(Read(copy_), "before");
}

TEST_F(FileCopyFailure, OfADestinationInUse) {
    folder_.Write("copy", "before");
    {
        const FileHandle user(CreateFileW(ToWide(copy_).c_str(), GENERIC_READ, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
        EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, EACCES));
    }
    EXPECT_EQ(Read(copy_), "before");
}

TEST_F(FileCopyFailure, OfADestinationThatCannotBeNamedSo) {
    const std::string name = folder_.Text() + "\\a<b";
    EXPECT_THAT([&] { CopyOneFile(source_, name); },
                ThrowsErrno("Cannot write into " + name, EINVAL));
}

TEST_F(FileCopyFailure, OfADestinationBelowAFile) {
    const std::string file = folder_.Write("file", "before");
    EXPECT_THAT([&] { CopyOneFile(source_, file + "\\copy"); },
                Throws("CreateDir - " + file + " is not a directory."));
    EXPECT_THAT([&] { CopyOneFile(source_, file + "\\a\\copy"); },
                ThrowsSystemError("CreateDirectory - " + file + "\\a", ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(Read(file), "before");
}

TEST_F(FileCopyFailure, OfBothFilesIsTheDestinationsFolder) {
    const std::string file = folder_.Write("file");
    EXPECT_THAT([&] { CopyOneFile(folder_.Text("missing"), file + "\\copy"); },
                Throws("CreateDir - " + file + " is not a directory."));
}

TEST_F(FileCopyFailure, OfAFullDiskLeavesThePartThatFitted) {
    const std::string content(200000, 'x');
    folder_.Write("source", content);
    int writes = 0;
    {
        const Hook<decltype(&WriteFile)> full(
            "WriteFile", [&](auto real, HANDLE file, LPCVOID buffer, DWORD size, LPDWORD count,
                             LPOVERLAPPED overlapped) {
                if (++writes < 3) return real(file, buffer, size, count, overlapped);
                SetLastError(ERROR_DISK_FULL);
                return FALSE;
            });
        EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, ENOSPC));
    }
    EXPECT_EQ(writes, 3);
    EXPECT_EQ(Read(copy_), content.substr(0, 2 * 65536));
}

// Some systems tell a full disk by writing nothing, without an error.
TEST_F(FileCopyFailure, OfADiskThatTakesNothing) {
    int writes = 0;
    const Hook<decltype(&WriteFile)> full(
        "WriteFile", [&](auto, HANDLE, LPCVOID, DWORD, LPDWORD count, LPOVERLAPPED) {
            ++writes;
            *count = 0;
            SetLastError(ERROR_SUCCESS);
            return TRUE;
        });
    EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, ENOSPC));
    EXPECT_EQ(writes, 1);
}

TEST_F(FileCopyFailure, OfAWriteGivesTheRuntimesText) {
    const Hook<decltype(&WriteFile)> locked("WriteFile", FailsWith(ERROR_LOCK_VIOLATION, FALSE));
    EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, EACCES));
}

TEST_F(FileCopyFailure, OfTheTimesLeavesTheCopy) {
    const Hook<decltype(&SetFileTime)> refused("SetFileTime",
                                               FailsWith(ERROR_ACCESS_DENIED, FALSE));
    EXPECT_THAT(Copying(), ThrowsErrno("SetTime - " + copy_, EACCES));
    EXPECT_EQ(Read(copy_), "content");
}

TEST_F(FileCopyFailure, ReplacesAnEarlierCopyAllTheSame) {
    folder_.Write("copy", "before and longer");
    const Hook<decltype(&WriteFile)> full("WriteFile", FailsWith(ERROR_DISK_FULL, FALSE));
    EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, ENOSPC));
    EXPECT_EQ(Read(copy_), "");
}

TEST(CopyOneFile, DoesNotWriteOverAReadOnlyFile) {
    const test::TemporaryFolder folder;
    const std::string source = folder.Write("source", "content");
    const std::string copy = folder.Write("copy", "before");
    const std::wstring wideCopy = ToWide(copy);
    SetFileAttributesW(wideCopy.c_str(), FILE_ATTRIBUTE_READONLY);
    if (FileHandle(
            CreateFileW(wideCopy.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr)))
        GTEST_SKIP() << "Wine lets the host's root write read-only files";
    EXPECT_THAT([&] { CopyOneFile(source, copy); },
                ThrowsErrno("Cannot write into " + copy, EACCES));
    SetFileAttributesW(wideCopy.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(test::ReadFile(folder.Dir() / "copy"), "before");
}

}  // namespace
}  // namespace launcher
