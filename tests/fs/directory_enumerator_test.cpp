#include "fs/directory_enumerator.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <cwchar>
#include <map>
#include <string>
#include <vector>

#include "tests/support/file_test.h"
#include "tests/support/hook.h"
#include "tests/support/throws.h"

namespace launcher {
namespace {

using test::Hook;
using test::Throws;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

// A folder as the system would list it: these names with these attributes, in this order.
class FakeListing {
  public:
    struct Entry {
        const wchar_t* name;
        DWORD attributes;
    };

    explicit FakeListing(std::vector<Entry> entries) : entries_(std::move(entries)) {}

    std::wstring pattern;
    int closed = 0;

  private:
    BOOL Give(LPWIN32_FIND_DATAW data) {
        if (next_ == entries_.size()) {
            SetLastError(ERROR_NO_MORE_FILES);
            return FALSE;
        }
        data->dwFileAttributes = entries_[next_].attributes;
        std::wmemcpy(data->cFileName, entries_[next_].name, std::wcslen(entries_[next_].name) + 1);
        ++next_;
        return TRUE;
    }

    HANDLE Search() { return this; }

    std::vector<Entry> entries_;
    std::size_t next_ = 0;
    Hook<decltype(&FindFirstFileW)> first_{"FindFirstFileW",
                                           [this](auto, LPCWSTR asked, LPWIN32_FIND_DATAW data) {
                                               pattern = asked;
                                               return Give(data) ? Search() : INVALID_HANDLE_VALUE;
                                           }};
    Hook<decltype(&FindNextFileW)> following_{"FindNextFileW",
                                              [this](auto, HANDLE search, LPWIN32_FIND_DATAW data) {
                                                  EXPECT_EQ(search, Search());
                                                  return Give(data);
                                              }};
    Hook<decltype(&FindClose)> close_{"FindClose", [this](auto, HANDLE search) {
                                          EXPECT_EQ(search, Search());
                                          ++closed;
                                          return TRUE;
                                      }};
};

std::vector<std::string> Names(const std::string& folder, std::uint32_t filter) {
    std::vector<std::string> names;
    for (const auto entries = DirectoryEnumerator::Open(folder, filter); !entries->AtEnd();
         entries->Next())
        names.push_back(entries->Name());
    return names;
}

class DirectoryEnumeratorTest : public test::FileTest {};

TEST_F(DirectoryEnumeratorTest, IsAtItsEndWhereNothingCanBeListed) {
    const std::string file = folder_.Write("file");
    const std::string empty = folder_.MakeDir("empty");
    for (const std::string& path : {empty, file, folder_.Text("missing"), std::string("B:")})
        EXPECT_TRUE(DirectoryEnumerator::Open(path, 3)->AtEnd()) << path;
}

TEST_F(DirectoryEnumeratorTest, ThrowsForAnEmptyPath) {
    for (const char* const path : {"", "1:\\x", "//"})
        EXPECT_THAT([&] { DirectoryEnumerator::Open(path, 3); },
                    Throws("FindFirstFile - Path is empty"))
            << path;
}

TEST_F(DirectoryEnumeratorTest, ListsNamesPathsAndTypes) {
    folder_.Write("\xF0\x9F\x92\xBF file.txt");
    folder_.MakeDir("folder");
    std::map<std::string, FileType> types;
    for (const auto entries = DirectoryEnumerator::Open(folder_.Text(), 3); !entries->AtEnd();
         entries->Next()) {
        EXPECT_EQ(entries->FullPath(), folder_.Text() + "\\" + entries->Name());
        types[entries->Name()] = entries->Type();
    }
    EXPECT_THAT(types, ElementsAre(Pair("folder", FileType::Directory),
                                   Pair("\xF0\x9F\x92\xBF file.txt", FileType::File)));
}

TEST_F(DirectoryEnumeratorTest, BuildsFullPathsFromTheNormalisedFolder) {
    folder_.Write("folder\\file");
    for (const char* const spelling : {"/folder", "\\folder\\", "//folder//", "\\folder"}) {
        const auto entries = DirectoryEnumerator::Open(folder_.Text() + spelling, 3);
        ASSERT_FALSE(entries->AtEnd()) << spelling;
        EXPECT_EQ(entries->FullPath(), folder_.Text("folder\\file")) << spelling;
    }
}

TEST_F(DirectoryEnumeratorTest, SearchesTheFolderAsGiven) {
    const FakeListing listing({{L"file", 0}});
    DirectoryEnumerator::Open("C:/some//folder/", 3);
    EXPECT_EQ(listing.pattern, L"C:/some//folder/\\*");
}

constexpr DWORD kFolder = FILE_ATTRIBUTE_DIRECTORY;
constexpr DWORD kReparse = FILE_ATTRIBUTE_REPARSE_POINT;

std::vector<FakeListing::Entry> OneOfEachKind() {
    return {{L".", kFolder},
            {L"..", kFolder},
            {L"file", 0},
            {L"folder", kFolder},
            {L"file link", kReparse},
            {L"folder link", kFolder | kReparse},
            {L"...", kFolder},
            {L"last", FILE_ATTRIBUTE_ARCHIVE}};
}

// In the system's order. An entry's type and the filter need share only one bit.
TEST_F(DirectoryEnumeratorTest, ListsWhatTheFilterAccepts) {
    const auto listed = [](std::uint32_t filter) {
        const FakeListing listing(OneOfEachKind());
        return Names("C:\\x", filter);
    };
    EXPECT_THAT(listed(DirectoryEnumerator::kEverything),
                ElementsAre("file", "folder", "file link", "folder link", "...", "last"));
    EXPECT_THAT(listed(DirectoryEnumerator::kFiles), ElementsAre("file", "file link", "last"));
    EXPECT_THAT(listed(5), ElementsAre("folder", "file link", "folder link", "..."));
    EXPECT_THAT(listed(0), IsEmpty());
}

TEST_F(DirectoryEnumeratorTest, GivesLinksTheirTypes) {
    const FakeListing listing({{L"file link", kReparse}, {L"folder link", kFolder | kReparse}});
    const auto entries = DirectoryEnumerator::Open("C:\\x", 3);
    EXPECT_EQ(entries->Type(), FileType::FileLink);
    entries->Next();
    EXPECT_EQ(entries->Type(), FileType::DirectoryLink);
    entries->Next();
    EXPECT_TRUE(entries->AtEnd());
}

TEST_F(DirectoryEnumeratorTest, ClosesItsSearchOnce) {
    const FakeListing listing(OneOfEachKind());
    auto entries = DirectoryEnumerator::Open("C:\\x", 3);
    EXPECT_EQ(listing.closed, 0);
    entries.reset();
    EXPECT_EQ(listing.closed, 1);
}

TEST_F(DirectoryEnumeratorTest, ClosesNothingWhenTheSearchCouldNotStart) {
    const FakeListing listing({});
    DirectoryEnumerator::Open("C:\\x", 3);
    EXPECT_EQ(listing.closed, 0);
}

// Whatever the reason, a failed step is the end.
TEST_F(DirectoryEnumeratorTest, EndsWhereTheSearchFails) {
    folder_.Write("a");
    folder_.Write("b");
    const Hook<decltype(&FindNextFileW)> failing("FindNextFileW",
                                                 test::FailsWith(ERROR_READ_FAULT, FALSE));
    EXPECT_THAT(Names(folder_.Text(), 3), IsEmpty());  // it begins with "." on every system
}

}  // namespace
}  // namespace launcher
