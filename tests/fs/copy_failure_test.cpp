// How a copy fails: the error that is thrown, and what is left. A test's name goes on from there:
// the failure "OfAMissingSource...".

#include <gmock/gmock.h>
#include <windows.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <utility>

#include "fs/copy.h"
#include "fs/encoding.h"
#include "fs/file_type.h"
#include "fs/open_file.h"
#include "fs/owners.h"
#include "tests/support/file_test.h"
#include "tests/support/hook.h"
#include "tests/support/links.h"
#include "tests/support/throws.h"

namespace launcher {
namespace {

using test::FailsWith;
using test::Hook;
using test::Throws;
using test::ThrowsErrno;
using test::ThrowsSystemError;

class CopyFailureTest : public test::FileTest {
  protected:
    auto Copying() const {
        return [this] { CopyOneFile(source_, copy_); };
    }
    static std::string Read(const std::string& path) {
        return test::ReadFile(test::FromUtf8(path));
    }
    // Opens a file as a program that shares it with nobody.
    static FileHandle Keep(const std::string& path) {
        return FileHandle(
            CreateFileW(ToWide(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    }

    const std::string source_ = folder_.Write("source", "content");
    const std::string copy_ = folder_.Text("copy");
};

// A stand-in for CreateFileW that fails on one file, for one kind of access or for all.
Hook<decltype(&CreateFileW)> RefuseToOpen(const std::string& path, DWORD error, DWORD refused = 0) {
    return {"CreateFileW",
            [widePath = ToWide(path), error, refused](auto real, LPCWSTR name, DWORD access,
                                                      DWORD share, LPSECURITY_ATTRIBUTES security,
                                                      DWORD disposition, DWORD flags, HANDLE like) {
                if (name != widePath || (refused != 0 && access != refused))
                    return real(name, access, share, security, disposition, flags, like);
                SetLastError(error);
                return INVALID_HANDLE_VALUE;
            }};
}

TEST_F(CopyFailureTest, OfEmptyPathsIsTheSourcesFirst) {
    EXPECT_THAT([] { Copy("", ""); }, Throws("Copy - empty source path"));
    EXPECT_THAT([] { Copy("missing", ""); }, Throws("Copy - empty destination path"));
}

TEST_F(CopyFailureTest, OfAMissingSourceIsThatOfItsType) {
    const std::string missing = folder_.Text("missing");
    EXPECT_THAT([&] { Copy(missing, folder_.Text("new\\copy")); },
                ThrowsSystemError("GetType - " + missing, ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(PathExists(folder_.Text("new")));
}

TEST_F(CopyFailureTest, OfAFileThatIsMissingComesAfterTheFoldersAreMade) {
    const std::string missing = folder_.Text("missing");
    EXPECT_THAT([&] { CopyOneFile(missing, folder_.Text("a\\b\\copy")); },
                ThrowsErrno("Cannot stat " + missing, ENOENT));
    EXPECT_TRUE(PathExists(folder_.Text("a\\b")));
    EXPECT_FALSE(PathExists(folder_.Text("a\\b\\copy")));
}

TEST_F(CopyFailureTest, OfASourceThatDisappearsAfterItsTypeWasRead) {
    const Hook<decltype(&GetFileAttributesW)> thief("GetFileAttributesW",
                                                    [&](auto real, LPCWSTR path) {
                                                        const DWORD attributes = real(path);
                                                        DeleteFileW(path);
                                                        return attributes;
                                                    });
    EXPECT_THAT([&] { Copy(source_, copy_); }, ThrowsErrno("Cannot stat " + source_, ENOENT));
}

TEST_F(CopyFailureTest, OfASourceThatCannotBeOpened) {
    const std::string folder = folder_.MakeDir("folder");
    EXPECT_THAT([&] { CopyOneFile(folder, copy_); }, ThrowsErrno("Cannot read " + folder, EACCES));
    {
        const FileHandle user = Keep(source_);
        EXPECT_THAT(Copying(), ThrowsErrno("Cannot read " + source_, EACCES));
    }
    const auto refused = RefuseToOpen(source_, ERROR_TOO_MANY_OPEN_FILES, GENERIC_READ);
    EXPECT_THAT(Copying(), ThrowsErrno("Cannot read " + source_, EMFILE));
    EXPECT_FALSE(PathExists(copy_));
}

// A lost disc or share, rights, a link that leads nowhere, a name that cannot be: the runtime's
// status function has one errno value for all of them.
TEST_F(CopyFailureTest, OfASourceThatCannotBeLookedAtIsThatOfAMissingOne) {
    for (const DWORD error :
         std::initializer_list<DWORD>{ERROR_NOT_READY, ERROR_ACCESS_DENIED, ERROR_BAD_NETPATH,
                                      ERROR_INVALID_PARAMETER, ERROR_FILE_NOT_FOUND}) {
        const auto refused = RefuseToOpen(source_, error);
        EXPECT_THAT(Copying(), ThrowsErrno("Cannot stat " + source_, ENOENT)) << error;
    }
    const std::string name = folder_.Text() + "\\a<b";
    EXPECT_THAT([&] { CopyOneFile(name, copy_); }, ThrowsErrno("Cannot stat " + name, ENOENT));
    EXPECT_FALSE(PathExists(copy_));
}

// The paths in messages are the given ones, slashes and all.
TEST_F(CopyFailureTest, NamesThePathsAsGiven) {
    const std::string missing = folder_.Text() + "/missing//file";
    EXPECT_THAT([&] { CopyOneFile(missing, copy_); },
                ThrowsErrno("Cannot stat " + missing, ENOENT));
    folder_.MakeDir("folder");
    const std::string blocked = folder_.Text() + "//folder";
    EXPECT_THAT([&] { CopyOneFile(source_, blocked); },
                ThrowsErrno("Cannot write into " + blocked, EACCES));
}

TEST_F(CopyFailureTest, OfADestinationThatCannotBeOpenedLeavesItAsItWas) {
    folder_.Write("copy", "before");
    {
        const FileHandle user = Keep(copy_);
        EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, EACCES));
    }
    {
        const auto refused = RefuseToOpen(copy_, ERROR_ACCESS_DENIED);
        EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, EACCES));
    }
    EXPECT_EQ(Read(copy_), "before");
}

TEST_F(CopyFailureTest, OfADestinationThatCannotBeNamedSo) {
    const std::string name = folder_.Text() + "\\a<b";
    EXPECT_THAT([&] { CopyOneFile(source_, name); },
                ThrowsErrno("Cannot write into " + name, EINVAL));
}

// The destination's folder comes before the source.
TEST_F(CopyFailureTest, OfADestinationBelowAFile) {
    const std::string file = folder_.Write("file", "before");
    EXPECT_THAT([&] { CopyOneFile(folder_.Text("missing"), file + "\\copy"); },
                Throws("CreateDir - " + file + " is not a directory."));
    EXPECT_THAT([&] { CopyOneFile(source_, file + "\\a\\copy"); },
                ThrowsSystemError("CreateDirectory - " + file + "\\a", ERROR_PATH_NOT_FOUND));
    EXPECT_EQ(Read(file), "before");
}

TEST_F(CopyFailureTest, OfAFullDiskLeavesThePartThatFitted) {
    const std::string content(200000, 'x');
    folder_.Write("source", content);
    folder_.Write("copy", std::string(300000, 'o'));
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

// Some systems report a full disk by writing nothing, without an error.
TEST_F(CopyFailureTest, OfADiskThatTakesNothing) {
    const Hook<decltype(&WriteFile)> full(
        "WriteFile", [](auto, HANDLE, LPCVOID, DWORD, LPDWORD count, LPOVERLAPPED) {
            *count = 0;
            SetLastError(ERROR_SUCCESS);
            return TRUE;
        });
    EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, ENOSPC));
}

// The runtime's write takes a refused access for that of a file opened for reading.
TEST_F(CopyFailureTest, OfAWriteGivesTheRuntimesText) {
    for (const auto& [error, value] :
         {std::pair{ERROR_LOCK_VIOLATION, EACCES}, std::pair{ERROR_WRITE_PROTECT, EACCES},
          std::pair{ERROR_ACCESS_DENIED, EBADF}}) {
        const Hook<decltype(&WriteFile)> failing("WriteFile",
                                                 FailsWith(static_cast<DWORD>(error), FALSE));
        EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, value)) << error;
    }
}

// The runtime's time function has one errno value for every failure.
TEST_F(CopyFailureTest, OfTheTimesLeavesTheCopy) {
    for (const DWORD error :
         std::initializer_list<DWORD>{ERROR_ACCESS_DENIED, ERROR_DISK_FULL, ERROR_INVALID_HANDLE}) {
        const Hook<decltype(&SetFileTime)> refused("SetFileTime", FailsWith(error, FALSE));
        EXPECT_THAT(Copying(), ThrowsErrno("SetTime - " + copy_, EINVAL)) << error;
    }
    EXPECT_EQ(Read(copy_), "content");
}

TEST_F(CopyFailureTest, OfAReadOnlyDestinationLeavesItAsItWas) {
    folder_.Write("copy", "before");
    SetFileAttributesW(ToWide(copy_).c_str(), FILE_ATTRIBUTE_READONLY);
    {
        // As Windows answers: Wine lets the host's root write such a file.
        const Hook<decltype(&CreateFileW)> windows(
            "CreateFileW", [](auto real, LPCWSTR path, DWORD access, auto share, auto security,
                              DWORD disposition, auto... rest) {
                const bool writes = (access & GENERIC_WRITE) != 0 && disposition != CREATE_NEW;
                const DWORD attributes = GetFileAttributesW(path);
                if (!writes || attributes == INVALID_FILE_ATTRIBUTES ||
                    (attributes & FILE_ATTRIBUTE_READONLY) == 0)
                    return real(path, access, share, security, disposition, rest...);
                SetLastError(ERROR_ACCESS_DENIED);
                return INVALID_HANDLE_VALUE;
            });
        EXPECT_THAT(Copying(), ThrowsErrno("Cannot write into " + copy_, EACCES));
    }
    SetFileAttributesW(ToWide(copy_).c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(Read(copy_), "before");
}

// A real disk that is too small, rather than a call that says so.
TEST(CopyFailure, OfADiskThatIsTooSmallKeepsWhatFitted) {
    const test::TemporaryFolder folder;
    folder.Write("source\\a small", std::string(1000, 'a'));
    folder.Write("source\\b large", std::string(1'000'000, 'b'));
    const std::filesystem::path place = test::FromUtf8(folder.MakeDir("disk"));
    const test::SmallDisk disk(place);
    if (!disk.IsThere()) GTEST_SKIP() << "needs Wine, started by the host's root";

    const std::string copy = test::ToUtf8(place / "copy");
    EXPECT_THAT([&] { Copy(folder.Text("source"), copy); },
                ThrowsErrno("Cannot write into " + copy + "\\b large", ENOSPC));
    EXPECT_EQ(test::ReadFile(place / "copy" / "a small"), std::string(1000, 'a'));
    EXPECT_LT(std::filesystem::file_size(place / "copy" / "b large"), 1'000'000u);
    std::filesystem::remove_all(place / "copy");
}

}  // namespace
}  // namespace launcher
