#include "fs/copy.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/fs/file_test.h"
#include "tests/support/hook.h"

namespace launcher {
namespace {

using test::Hook;

constexpr std::uint64_t kSecond = 10'000'000;                     // in 100 ns
constexpr std::uint64_t kStartOf1970 = 11'644'473'600 * kSecond;  // since 1601
constexpr std::uint64_t kSomeTime = kStartOf1970 + 1'234'567'890 * kSecond + 7'654'321;

FILETIME FileTime(std::uint64_t ticks) {
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

std::uint64_t Ticks(const FILETIME& time) {
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

// Bytes that differ from block to block and hold every value, zero and line ends among them.
std::string Content(std::size_t size) {
    std::string content(size, '\0');
    std::uint32_t state = 12345;
    for (char& byte : content) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return content;
}

class FileCopyTest : public test::FileTest {
  protected:
    std::string Read(const std::string& path) const { return test::ReadFile(test::FromUtf8(path)); }

    static WIN32_FILE_ATTRIBUTE_DATA Status(const std::string& path) {
        WIN32_FILE_ATTRIBUTE_DATA data{};
        GetFileAttributesExW(ToWide(path).c_str(), GetFileExInfoStandard, &data);
        return data;
    }

    // Gives a file `times`; a null one stays.
    static void SetTimes(const std::string& path, const FILETIME* created, const FILETIME* accessed,
                         const FILETIME* modified) {
        const FileHandle file(CreateFileW(ToWide(path).c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(SetFileTime(file.Get(), created, accessed, modified));
    }

    const std::string source_ = folder_.Text("source");
    const std::string copy_ = folder_.Text("copy");
};

class FileCopySizes : public FileCopyTest, public testing::WithParamInterface<std::size_t> {};
// None, one, and the sizes around the buffer's; several buffers, the last of them full or not.
INSTANTIATE_TEST_SUITE_P(FileCopy, FileCopySizes,
                         testing::Values(0, 1, 65535, 65536, 65537, 131072, 5 * 1024 * 1024 + 17));

TEST_P(FileCopySizes, AreCopiedToTheByte) {
    const std::string content = Content(GetParam());
    folder_.Write("source", content);
    CopyOneFile(source_, copy_);
    EXPECT_TRUE(Read(copy_) == content);
    EXPECT_TRUE(Read(source_) == content);
}

TEST_F(FileCopyTest, TruncatesALargerDestination) {
    folder_.Write("source", "short");
    folder_.Write("copy", Content(200000));
    CopyOneFile(source_, copy_);
    EXPECT_EQ(Read(copy_), "short");
}

TEST_F(FileCopyTest, OverwritesAFileOfTheSameSizeAndTime) {
    folder_.Write("source", "new");
    folder_.Write("copy", "old");
    const FILETIME time = FileTime(kSomeTime);
    SetTimes(source_, nullptr, nullptr, &time);
    SetTimes(copy_, nullptr, nullptr, &time);
    CopyOneFile(source_, copy_);
    EXPECT_EQ(Read(copy_), "new");
}

TEST_F(FileCopyTest, MakesMissingFolders) {
    folder_.Write("source", "content");
    const std::string deep = folder_.Text("a\\b\\c\\copy");
    CopyOneFile(source_, deep);
    EXPECT_EQ(Read(deep), "content");
}

TEST_F(FileCopyTest, TakesForwardSlashes) {
    folder_.Write("in\\source", "content");
    CopyOneFile(folder_.Text() + "/in/source", folder_.Text() + "/out//copy");
    EXPECT_EQ(Read(folder_.Text("out\\copy")), "content");
}

// Blanks, dots, combining marks, characters that take two UTF-16 units, and what a shell would
// mind.
TEST_F(FileCopyTest, TakesEveryName) {
    for (const char* const name :
         {"with blanks", ".dot", "two..dots.and.more", "e\xCC\x81", "\xC3\xA9", "\xF0\x9F\x92\xBF",
          "\xE6\x97\xA5\xE6\x9C\xAC", "a&b^c%d%", "it's", "a;b=c,d"}) {
        const std::string from = folder_.Write(std::string("in\\") + name, name);
        const std::string to = folder_.Text(std::string("out ") + name + "\\" + name);
        CopyOneFile(from, to);
        EXPECT_EQ(Read(to), name);
    }
}

TEST_F(FileCopyTest, TakesTheLastWriteAndAccessTimes) {
    folder_.Write("source", "content");
    const FILETIME accessed = FileTime(kSomeTime + 5 * kSecond);
    const FILETIME modified = FileTime(kSomeTime);
    SetTimes(source_, nullptr, &accessed, &modified);
    CopyOneFile(source_, copy_);
    EXPECT_EQ(Ticks(Status(copy_).ftLastWriteTime), kSomeTime);
    EXPECT_EQ(Ticks(Status(copy_).ftLastAccessTime), kSomeTime + 5 * kSecond);
}

TEST_F(FileCopyTest, TakesTheTimesOntoAnExistingFileToo) {
    folder_.Write("source", "content");
    folder_.Write("copy", Content(100000));
    const FILETIME time = FileTime(kSomeTime);
    SetTimes(source_, nullptr, nullptr, &time);
    CopyOneFile(source_, copy_);
    EXPECT_EQ(Ticks(Status(copy_).ftLastWriteTime), kSomeTime);
}

TEST_F(FileCopyTest, LeavesTheCreationTimeAlone) {
    folder_.Write("source", "content");
    int calls = 0;
    const Hook<decltype(&SetFileTime)> hook(
        "SetFileTime", [&](auto real, HANDLE file, const FILETIME* created,
                           const FILETIME* accessed, const FILETIME* modified) {
            EXPECT_EQ(created, nullptr);
            ++calls;
            return real(file, created, accessed, modified);
        });
    CopyOneFile(source_, copy_);
    EXPECT_EQ(calls, 1);
}

// What SetFileTime is given for a source whose file system reports these times; nothing when it is
// not called.
class FileCopyTimes : public FileCopyTest {
  protected:
    std::vector<std::uint64_t> AccessAndModification(std::uint64_t accessed,
                                                     std::uint64_t modified) {
        folder_.Write("source", "content");
        const Hook<decltype(&GetFileTime)> reported(
            "GetFileTime",
            [&](auto, HANDLE, LPFILETIME, LPFILETIME access, LPFILETIME modification) {
                *access = FileTime(accessed);
                *modification = FileTime(modified);
                return TRUE;
            });
        std::vector<std::uint64_t> times;
        const Hook<decltype(&SetFileTime)> set(
            "SetFileTime", [&](auto, HANDLE, const FILETIME*, const FILETIME* access,
                               const FILETIME* modification) {
                times = {Ticks(*access), Ticks(*modification)};
                return TRUE;
            });
        CopyOneFile(source_, copy_);
        return times;
    }

    using Times = std::vector<std::uint64_t>;
};

TEST_F(FileCopyTimes, AreBothTheSources) {
    EXPECT_EQ(AccessAndModification(kSomeTime, kSomeTime + 1), (Times{kSomeTime, kSomeTime + 1}));
}

// Discs have no access times.
TEST_F(FileCopyTimes, UseTheModificationTimeForAMissingAccessTime) {
    EXPECT_EQ(AccessAndModification(0, kSomeTime), (Times{kSomeTime, kSomeTime}));
}

// The runtime's time 0, in whole seconds, stands for an unknown time.
TEST_F(FileCopyTimes, AreNotSetForAnAccessInTheFirstSecondOf1970) {
    EXPECT_EQ(AccessAndModification(kStartOf1970, kSomeTime), Times{});
    EXPECT_EQ(AccessAndModification(kStartOf1970 + kSecond - 1, kSomeTime), Times{});
    EXPECT_EQ(AccessAndModification(0, kStartOf1970), Times{});
    EXPECT_EQ(AccessAndModification(kStartOf1970 + kSecond, kStartOf1970),
              (Times{kStartOf1970 + kSecond, kStartOf1970}));
}

TEST_F(FileCopyTest, MakesPlainFilesOfHiddenAndReadOnlyOnes) {
    folder_.Write("source", "content");
    const std::wstring wideSource = ToWide(source_);
    SetFileAttributesW(wideSource.c_str(),
                       FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM);
    CopyOneFile(source_, copy_);
    const DWORD attributes = Status(copy_).dwFileAttributes;
    SetFileAttributesW(wideSource.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(Read(copy_), "content");
    EXPECT_EQ(
        attributes & (FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM), 0u);
}

TEST_F(FileCopyTest, SharesBothFilesWithOtherReadersAndWriters) {
    const auto openByAnother = [](const std::string& path) {
        return FileHandle(CreateFileW(ToWide(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                      nullptr));
    };
    folder_.Write("source", "content");
    folder_.Write("copy", "before");
    const FileHandle source = openByAnother(source_);
    const FileHandle copy = openByAnother(copy_);
    ASSERT_TRUE(source && copy);
    CopyOneFile(source_, copy_);
    EXPECT_EQ(Read(copy_), "content");
}

TEST_F(FileCopyTest, ReadsThroughOneBufferOf64KiB) {
    folder_.Write("source", Content(3 * 65536));
    std::set<LPVOID> buffers;
    std::vector<DWORD> sizes;
    const Hook<decltype(&ReadFile)> hook(
        "ReadFile", [&](auto real, HANDLE file, LPVOID buffer, DWORD size, LPDWORD count,
                        LPOVERLAPPED overlapped) {
            buffers.insert(buffer);
            sizes.push_back(size);
            return real(file, buffer, size, count, overlapped);
        });
    CopyOneFile(source_, copy_);
    EXPECT_EQ(buffers.size(), 1u);
    EXPECT_EQ(sizes, std::vector<DWORD>(4, 65536));
}

// Both are taken as the end of the file: it cannot be told from one that was cut meanwhile.
TEST_F(FileCopyTest, TakesAReadErrorAsTheEnd) {
    const std::string content = Content(200000);
    folder_.Write("source", content);
    int reads = 0;
    const Hook<decltype(&ReadFile)> hook(
        "ReadFile", [&](auto real, HANDLE file, LPVOID buffer, DWORD size, LPDWORD count,
                        LPOVERLAPPED overlapped) {
            if (++reads < 3) return real(file, buffer, size, count, overlapped);
            *count = size;  // not to be believed
            SetLastError(ERROR_CRC);
            return FALSE;
        });
    EXPECT_NO_THROW(CopyOneFile(source_, copy_));
    EXPECT_TRUE(Read(copy_) == content.substr(0, 2 * 65536));
    EXPECT_EQ(reads, 3);
}

TEST_F(FileCopyTest, TakesAFileThatShrinksAsItComes) {
    const std::string content = Content(200000);
    folder_.Write("source", content);
    bool cut = false;
    const Hook<decltype(&ReadFile)> hook(
        "ReadFile", [&](auto real, HANDLE file, LPVOID buffer, DWORD size, LPDWORD count,
                        LPOVERLAPPED overlapped) {
            const BOOL result = real(file, buffer, size, count, overlapped);
            if (!cut) std::filesystem::resize_file(folder_.Dir() / "source", 70000);
            cut = true;
            return result;
        });
    EXPECT_NO_THROW(CopyOneFile(source_, copy_));
    EXPECT_TRUE(Read(copy_) == content.substr(0, 70000));
}

TEST_F(FileCopyTest, DoesNotNoticeAShortWrite) {
    folder_.Write("source", Content(65536 + 100));
    const Hook<decltype(&WriteFile)> hook(
        "WriteFile",
        [&](auto real, HANDLE file, LPCVOID buffer, DWORD size, LPDWORD count,
            LPOVERLAPPED overlapped) { return real(file, buffer, size - 1, count, overlapped); });
    EXPECT_NO_THROW(CopyOneFile(source_, copy_));
    EXPECT_EQ(Read(copy_).size(), 65536u + 100 - 2);
}

}  // namespace
}  // namespace launcher
