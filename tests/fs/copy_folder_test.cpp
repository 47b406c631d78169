#include <gmock/gmock.h>
#include <windows.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "fs/copy.h"
#include "fs/encoding.h"
#include "fs/file_type.h"
#include "tests/support/file_test.h"
#include "tests/support/hook.h"
#include "tests/support/links.h"
#include "tests/support/throws.h"

namespace launcher {
namespace {

using test::Hook;
using test::Throws;
using test::ThrowsErrno;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

class CopyFolderTest : public test::FileTest {
  protected:
    void CopyTree() const { CopyDirectory(folder_.Text("from"), folder_.Text("to")); }
    test::Tree Original() const { return test::TreeBelow(folder_.Dir() / "from"); }
    test::Tree Copied() const { return test::TreeBelow(folder_.Dir() / "to"); }
};

TEST_F(CopyFolderTest, MakesAnEmptyFolderOfAnEmptyOne) {
    folder_.MakeDir("from");
    CopyDirectory(folder_.Text("from"), folder_.Text("deep\\to"));
    EXPECT_EQ(GetType(folder_.Text("deep\\to")), FileType::Directory);
    EXPECT_THAT(test::TreeBelow(folder_.Dir() / "deep" / "to"), IsEmpty());
}

TEST_F(CopyFolderTest, MakesBothLevelsOfAnEmptyFolderInAFolder) {
    folder_.MakeDir("from\\inner");
    CopyTree();
    EXPECT_THAT(Copied(), ElementsAre(Pair("inner", "/")));
}

TEST_F(CopyFolderTest, MakesAnEmptyFolderOfOneThatCannotBeListed) {
    CopyDirectory(folder_.Text("missing"), folder_.Text("to"));
    EXPECT_THAT(Copied(), IsEmpty());

    folder_.Write("from\\locked\\file");
    folder_.Write("from\\open", "content");
    {
        const Hook<decltype(&FindFirstFileW)> locked(
            "FindFirstFileW", [](auto real, LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
                if (!std::wstring_view(pattern).ends_with(L"from\\locked\\*"))
                    return real(pattern, data);
                SetLastError(ERROR_ACCESS_DENIED);
                return INVALID_HANDLE_VALUE;
            });
        CopyTree();
    }
    EXPECT_THAT(Copied(), ElementsAre(Pair("locked", "/"), Pair("open", "content")));
}

TEST_F(CopyFolderTest, CopiesATreeOfEveryKindOfName) {
    folder_.Write("from\\file", "1");
    folder_.Write("from\\.hidden\\two words\\a.b.c", "2");
    folder_.Write("from\\e\xCC\x81\\\xC3\xA9", "3");
    folder_.Write("from\\\xF0\x9F\x92\xBF\\\xE6\x97\xA5", std::string(70000, '4'));
    folder_.MakeDir("from\\empty\\emptier");
    CopyTree();
    EXPECT_EQ(Copied(), Original());
    EXPECT_EQ(Copied().size(), 10u);
}

TEST_F(CopyFolderTest, GoesDeepAndFar) {
    std::string path = "from";
    for (int level = 0; level < 30; ++level) {
        path += "\\d";
        folder_.Write(path + "\\f", std::to_string(level));
    }
    for (int file = 0; file < 300; ++file)
        folder_.Write("from\\" + std::to_string(file), std::to_string(file));
    CopyTree();
    EXPECT_EQ(Copied(), Original());
    EXPECT_EQ(Copied().size(), 360u);
}

TEST_F(CopyFolderTest, OverwritesSameNamesAndLeavesOthersAlone) {
    folder_.Write("from\\same", "new");
    folder_.Write("from\\folder\\same", "new");
    folder_.MakeDir("from\\empty");
    folder_.Write("to\\same", "old and longer");
    folder_.Write("to\\other", "kept");
    folder_.Write("to\\folder\\same", "old");
    folder_.Write("to\\folder\\other", "kept");
    folder_.Write("to\\empty\\other", "kept");
    CopyTree();
    EXPECT_THAT(Copied(), UnorderedElementsAre(Pair("same", "new"), Pair("other", "kept"),
                                               Pair("folder", "/"), Pair("folder\\same", "new"),
                                               Pair("folder\\other", "kept"), Pair("empty", "/"),
                                               Pair("empty\\other", "kept")));
}

// A check costs as much as a third of copying a small file.
TEST_F(CopyFolderTest, ChecksTheDestinationBeforeTheFirstFileOnly) {
    for (const char* const name : {"from\\1", "from\\2", "from\\3"})
        folder_.Write(name, "content");
    folder_.MakeDir("to");
    const std::wstring destination = ToWide(folder_.Text("to"));
    int checks = 0;
    {
        const Hook<decltype(&GetFileAttributesW)> asked("GetFileAttributesW",
                                                        [&](auto real, LPCWSTR name) {
                                                            checks += name == destination;
                                                            return real(name);
                                                        });
        CopyTree();
    }
    EXPECT_EQ(checks, 1);
    EXPECT_EQ(Copied(), Original());
}

TEST_F(CopyFolderTest, CopiesWhatLinksToFilesHold) {
    folder_.Write("from\\link", "content");
    {
        const Hook<decltype(&FindFirstFileW)> linked(
            "FindFirstFileW", [](auto real, LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
                const HANDLE search = real(pattern, data);
                while (std::wstring_view(data->cFileName) != L"link" &&
                       FindNextFileW(search, data)) {
                }
                data->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
                return search;
            });
        CopyTree();
    }
    EXPECT_THAT(Copied(), ElementsAre(Pair("link", "content")));
}

TEST_F(CopyFolderTest, EndsAtTheFirstFailureAndKeepsWhatItCopied) {
    for (const char* const name : {"from\\1", "from\\a\\2", "from\\a\\3", "from\\a\\b\\4"})
        folder_.Write(name, "content");
    int searches = 0;
    int writes = 0;
    {
        const Hook<decltype(&FindFirstFileW)> opened(
            "FindFirstFileW", [&](auto real, LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
                ++searches;
                return real(pattern, data);
            });
        const Hook<decltype(&FindClose)> closed("FindClose", [&](auto real, HANDLE search) {
            --searches;
            return real(search);
        });
        const Hook<decltype(&WriteFile)> full(
            "WriteFile", [&](auto real, HANDLE file, LPCVOID buffer, DWORD size, LPDWORD count,
                             LPOVERLAPPED overlapped) {
                if (++writes < 3) return real(file, buffer, size, count, overlapped);
                SetLastError(ERROR_DISK_FULL);
                return FALSE;
            });
        EXPECT_THROW(CopyTree(), ZEPInsExceptionErrno);
    }
    EXPECT_EQ(writes, 3);
    EXPECT_EQ(searches, 0) << "searches left open";
    std::vector<std::string> files;
    for (const auto& [name, content] : Copied())
        if (content != "/") files.push_back(content);
    EXPECT_THAT(files, UnorderedElementsAre("content", "content", ""));
}

TEST_F(CopyFolderTest, NamesTheFileThatFailed) {
    folder_.Write("from\\a\\file", "content");
    folder_.MakeDir("to\\a\\file");
    EXPECT_THAT([&] { CopyTree(); },
                ThrowsErrno("Cannot write into " + folder_.Text("to\\a\\file"), EACCES));
}

TEST_F(CopyFolderTest, ReportsAFileWhereAFolderShouldBe) {
    folder_.Write("from\\a\\file", "content");
    folder_.Write("to\\a", "in the way");
    EXPECT_THAT([&] { CopyTree(); },
                Throws("CreateDir - " + folder_.Text("to\\a") + " is not a directory."));
    EXPECT_EQ(test::ReadFile(folder_.Dir() / "to" / "a"), "in the way");
}

TEST_F(CopyFolderTest, ThrowsForAnEmptySource) {
    EXPECT_THAT([&] { CopyDirectory("", folder_.Text("to")); },
                Throws("FindFirstFile - Path is empty"));
}

// A link of the host costs this process a handle under Wine: no FileTest.
TEST(CopyFolder, FollowsLinksToFolders) {
    const test::TemporaryFolder folder;
    folder.Write("elsewhere\\deep\\file", "content");
    folder.MakeDir("from");
    const test::FolderLink inside(folder.Dir() / "from" / "link", folder.Dir() / "elsewhere");
    const test::FolderLink outside(folder.Dir() / "source", folder.Dir() / "from");
    Copy(folder.Text("source"), folder.Text("to"));
    EXPECT_EQ(GetType(folder.Text("to")), FileType::Directory);
    EXPECT_EQ(GetType(folder.Text("to\\link")), FileType::Directory);
    EXPECT_EQ(test::ReadFile(folder.Dir() / "to\\link\\deep\\file"), "content");
}

}  // namespace
}  // namespace launcher
