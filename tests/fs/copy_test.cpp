// What becomes of one file. Folders, failures and copies onto the source: the files beside this
// one.

#include "fs/copy.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "fs/encoding.h"
#include "fs/open_file.h"
#include "tests/support/file_test.h"
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

class CopyTest : public test::FileTest {
  protected:
    static std::string Read(const std::string& path) {
        return test::ReadFile(test::FromUtf8(path));
    }
    static WIN32_FILE_ATTRIBUTE_DATA Status(const std::string& path) {
        WIN32_FILE_ATTRIBUTE_DATA data{};
        GetFileAttributesExW(ToWide(path).c_str(), GetFileExInfoStandard, &data);
        return data;
    }

    // Copies while `body` stands in for a Windows function.
    template <class Function>
    void CopyWith(const char* function, typename Hook<Function>::Body body) const {
        const Hook<Function> hook(function, std::move(body));
        CopyOneFile(source_, copy_);
    }

    const std::string source_ = folder_.Write("source", "content");
    const std::string copy_ = folder_.Text("copy");
};

// None, one, and the sizes around the buffer's; several buffers, the last of them full or not.
TEST_F(CopyTest, TakesFilesOfEverySizeToTheByte) {
    for (const std::size_t size :
         {0u, 1u, 65535u, 65536u, 65537u, 131072u, 5u * 1024 * 1024 + 17}) {
        const std::string content = Content(size);
        folder_.Write("source", content);
        CopyOneFile(source_, copy_);
        EXPECT_TRUE(Read(copy_) == content) << size;
        EXPECT_TRUE(Read(source_) == content) << size;
    }
}

TEST_F(CopyTest, TruncatesALargerDestination) {
    folder_.Write("copy", Content(200000));
    CopyOneFile(source_, copy_);
    EXPECT_EQ(Read(copy_), "content");
}

TEST_F(CopyTest, OfABareNameIsInTheCurrentFolder) {
    wchar_t before[MAX_PATH];
    GetCurrentDirectoryW(MAX_PATH, before);
    SetCurrentDirectoryW(ToWide(folder_.Text()).c_str());
    CopyOneFile("source", "copy");
    SetCurrentDirectoryW(before);
    EXPECT_EQ(Read(copy_), "content");
}

TEST_F(CopyTest, MakesMissingFoldersAndTakesForwardSlashes) {
    CopyOneFile(folder_.Text() + "/source", folder_.Text() + "/a/b//copy");
    EXPECT_EQ(Read(folder_.Text("a\\b\\copy")), "content");
}

// Blanks, dots, combining marks, characters that take two UTF-16 units, and what a shell would
// mind.
TEST_F(CopyTest, TakesEveryName) {
    for (const char* const name : {"with blanks", ".dot", "two..dots.and.more", "e\xCC\x81",
                                   "\xF0\x9F\x92\xBF", "a&b^c%d%", "a;b=c,d"}) {
        const std::string to = folder_.Text(std::string("out ") + name + "\\" + name);
        CopyOneFile(folder_.Write(std::string("in\\") + name, name), to);
        EXPECT_EQ(Read(to), name);
    }
}

TEST_F(CopyTest, GoesToTheVeryNameThatIsGiven) {
    folder_.Write("folder\\file", "in a folder");
    folder_.MakeDir("there");
    Copy(source_, folder_.Text("there\\other"));
    Copy(folder_.Text("folder"), folder_.Text("there"));
    EXPECT_EQ(Read(folder_.Text("there\\other")), "content");
    EXPECT_EQ(Read(folder_.Text("there\\file")), "in a folder");
}

TEST_F(CopyTest, TakesTheLastWriteAndAccessTimes) {
    const FILETIME accessed = FileTime(kSomeTime + 5 * kSecond);
    const FILETIME modified = FileTime(kSomeTime);
    folder_.Write("old copy", Content(100000));
    for (const std::string& copy : {copy_, folder_.Text("old copy")}) {
        {
            const FileHandle file = OpenSharedFile(ToWide(source_), GENERIC_WRITE, OPEN_EXISTING);
            ASSERT_TRUE(SetFileTime(file.Get(), nullptr, &accessed, &modified));
        }
        CopyOneFile(source_, copy);
        EXPECT_EQ(Ticks(Status(copy).ftLastWriteTime), kSomeTime);
        EXPECT_EQ(Ticks(Status(copy).ftLastAccessTime), kSomeTime + 5 * kSecond);
    }
}

TEST_F(CopyTest, LeavesTheCreationTimeAlone) {
    int calls = 0;
    CopyWith<decltype(&SetFileTime)>("SetFileTime",
                                     [&](auto real, HANDLE file, const FILETIME* created,
                                         const FILETIME* accessed, const FILETIME* modified) {
                                         EXPECT_EQ(created, nullptr);
                                         ++calls;
                                         return real(file, created, accessed, modified);
                                     });
    EXPECT_EQ(calls, 1);
}

// What SetFileTime is given for a source whose file system reports these times: access and
// modification; nothing when it is not called.
class CopyTimesTest : public CopyTest {
  protected:
    using Times = std::vector<std::uint64_t>;

    Times TimesFor(std::uint64_t accessed, std::uint64_t modified) {
        const Hook<decltype(&GetFileTime)> reported(
            "GetFileTime",
            [&](auto, HANDLE, LPFILETIME, LPFILETIME access, LPFILETIME modification) {
                *access = FileTime(accessed);
                *modification = FileTime(modified);
                return TRUE;
            });
        Times times;
        CopyWith<decltype(&SetFileTime)>("SetFileTime",
                                         [&](auto, HANDLE, const FILETIME*, const FILETIME* access,
                                             const FILETIME* modification) {
                                             times = {Ticks(*access), Ticks(*modification)};
                                             return TRUE;
                                         });
        return times;
    }
};

// Discs have no access times.
TEST_F(CopyTimesTest, UseTheModificationTimeForAMissingAccessTime) {
    EXPECT_EQ(TimesFor(kSomeTime, kSomeTime + 1), (Times{kSomeTime, kSomeTime + 1}));
    EXPECT_EQ(TimesFor(0, kSomeTime), (Times{kSomeTime, kSomeTime}));
}

// The runtime's time 0, in whole seconds, stands for an unknown time.
TEST_F(CopyTimesTest, AreNotSetForAnAccessInTheFirstSecondOf1970) {
    EXPECT_EQ(TimesFor(kStartOf1970, kSomeTime), Times{});
    EXPECT_EQ(TimesFor(kStartOf1970 + kSecond - 1, kSomeTime), Times{});
    EXPECT_EQ(TimesFor(0, kStartOf1970), Times{});
    EXPECT_EQ(TimesFor(kStartOf1970 + kSecond, kStartOf1970),
              (Times{kStartOf1970 + kSecond, kStartOf1970}));
}

TEST_F(CopyTest, MakesPlainFilesOfHiddenAndReadOnlyOnes) {
    constexpr DWORD kSpecial =
        FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM;
    SetFileAttributesW(ToWide(source_).c_str(), kSpecial);
    CopyOneFile(source_, copy_);
    SetFileAttributesW(ToWide(source_).c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(Read(copy_), "content");
    EXPECT_EQ(Status(copy_).dwFileAttributes & kSpecial, 0u);
}

TEST_F(CopyTest, SharesBothFilesWithOtherReadersAndWriters) {
    folder_.Write("copy", "before");
    {
        constexpr DWORD kBoth = GENERIC_READ | GENERIC_WRITE;
        const FileHandle source = OpenSharedFile(ToWide(source_), kBoth, OPEN_EXISTING);
        const FileHandle copy = OpenSharedFile(ToWide(copy_), kBoth, OPEN_EXISTING);
        ASSERT_TRUE(source && copy);
        CopyOneFile(source_, copy_);
    }
    EXPECT_EQ(Read(copy_), "content");
}

TEST_F(CopyTest, ReadsThroughOneBufferOf64KiB) {
    folder_.Write("source", Content(3 * 65536));
    std::set<LPVOID> buffers;
    std::vector<DWORD> sizes;
    CopyWith<decltype(&ReadFile)>("ReadFile", [&](auto real, HANDLE file, LPVOID buffer, DWORD size,
                                                  LPDWORD count, LPOVERLAPPED overlapped) {
        buffers.insert(buffer);
        sizes.push_back(size);
        return real(file, buffer, size, count, overlapped);
    });
    EXPECT_EQ(buffers.size(), 1u);
    EXPECT_EQ(sizes, std::vector<DWORD>(4, 65536));
}

// A hint to the cache, for media that answer slowly.
TEST_F(CopyTest, SaysThatItReadsTheSourceFromItsStartToItsEnd) {
    std::vector<bool> hints;
    CopyWith<decltype(&CreateFileW)>(
        "CreateFileW", [&](auto real, LPCWSTR name, DWORD access, auto share, auto security,
                           auto disposition, DWORD flags, HANDLE like) {
            if (name == ToWide(source_) && access == GENERIC_READ)
                hints.push_back((flags & FILE_FLAG_SEQUENTIAL_SCAN) != 0);
            return real(name, access, share, security, disposition, flags, like);
        });
    EXPECT_EQ(hints, std::vector<bool>{true});
}

// A file that cannot be read to its end cannot be told from one that was cut meanwhile.
TEST_F(CopyTest, TakesAReadErrorAsTheEnd) {
    const std::string content = Content(200000);
    folder_.Write("source", content);
    int reads = 0;
    CopyWith<decltype(&ReadFile)>("ReadFile", [&](auto real, HANDLE file, LPVOID buffer, DWORD size,
                                                  LPDWORD count, LPOVERLAPPED overlapped) {
        if (++reads < 3) return real(file, buffer, size, count, overlapped);
        *count = size;  // not to be believed
        SetLastError(ERROR_CRC);
        return FALSE;
    });
    EXPECT_EQ(reads, 3);
    EXPECT_TRUE(Read(copy_) == content.substr(0, 2 * 65536));
}

TEST_F(CopyTest, TakesAFileThatShrinksAsItComes) {
    const std::string content = Content(200000);
    folder_.Write("source", content);
    bool cut = false;
    CopyWith<decltype(&ReadFile)>("ReadFile", [&](auto real, HANDLE file, LPVOID buffer, DWORD size,
                                                  LPDWORD count, LPOVERLAPPED overlapped) {
        const BOOL result = real(file, buffer, size, count, overlapped);
        if (!std::exchange(cut, true))
            std::filesystem::resize_file(folder_.Dir() / "source", 70000);
        return result;
    });
    EXPECT_TRUE(Read(copy_) == content.substr(0, 70000));
}

TEST_F(CopyTest, DoesNotNoticeAShortWrite) {
    folder_.Write("source", Content(65536 + 100));
    CopyWith<decltype(&WriteFile)>(
        "WriteFile",
        [](auto real, HANDLE file, LPCVOID buffer, DWORD size, LPDWORD count,
           LPOVERLAPPED overlapped) { return real(file, buffer, size - 1, count, overlapped); });
    EXPECT_EQ(Read(copy_).size(), 65536u + 100 - 2);
}

}  // namespace
}  // namespace launcher
