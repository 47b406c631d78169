// What the file operations make of links, and of second names for one file.

#include <gmock/gmock.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "fs/copy.h"
#include "fs/create_dir.h"
#include "fs/directory_enumerator.h"
#include "fs/encoding.h"
#include "fs/file_type.h"
#include "fs/path_exists.h"
#include "tests/fs/links.h"
#include "tests/fs/throws.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using test::Hook;
using test::Throws;

class LinkTest : public testing::Test {
  protected:
    std::string Read(const char* relative) const {
        return test::ReadFile(folder_.Dir() / relative);
    }

    test::TemporaryFolder folder_;
};

TEST_F(LinkTest, ToAFolderHasATypeOfItsOwn) {
    folder_.MakeDir("folder");
    const test::FolderLink link(folder_.Dir() / "link", folder_.Dir() / "folder");
    EXPECT_TRUE(PathExists(folder_.Text("link")));
    EXPECT_EQ(GetType(folder_.Text("link")), FileType::DirectoryLink);
}

TEST_F(LinkTest, ToAFolderIsListedAsOne) {
    folder_.MakeDir("elsewhere");
    folder_.MakeDir("folder");
    const test::FolderLink link(folder_.Dir() / "folder" / "link", folder_.Dir() / "elsewhere");
    const std::string folder = folder_.Text("folder");
    const auto everything = DirectoryEnumerator::Open(folder, DirectoryEnumerator::kEverything);
    ASSERT_FALSE(everything->AtEnd());
    EXPECT_EQ(everything->Type(), FileType::DirectoryLink);
    EXPECT_TRUE(DirectoryEnumerator::Open(folder, DirectoryEnumerator::kFiles)->AtEnd());
}

TEST_F(LinkTest, ToAFolderIsAFolderForCreateDir) {
    folder_.MakeDir("folder");
    const test::FolderLink link(folder_.Dir() / "link", folder_.Dir() / "folder");
    EXPECT_NO_THROW(CreateDir(folder_.Text("link")));
    CreateDir(folder_.Text() + "\\link\\below");
    EXPECT_EQ(GetType(folder_.Text("folder\\below")), FileType::Directory);
}

TEST_F(LinkTest, ToAFolderIsCopiedAsThatFolder) {
    folder_.Write("folder\\deep\\file", "content");
    const test::FolderLink link(folder_.Dir() / "link", folder_.Dir() / "folder");
    Copy(folder_.Text("link"), folder_.Text("copy"));
    EXPECT_EQ(GetType(folder_.Text("copy")), FileType::Directory);
    EXPECT_EQ(Read("copy\\deep\\file"), "content");
}

TEST_F(LinkTest, InATreeIsFollowed) {
    folder_.Write("elsewhere\\deep\\file", "content");
    folder_.Write("from\\file", "other");
    const test::FolderLink link(folder_.Dir() / "from" / "link", folder_.Dir() / "elsewhere");
    Copy(folder_.Text("from"), folder_.Text("to"));
    EXPECT_EQ(GetType(folder_.Text("to\\link")), FileType::Directory);
    EXPECT_EQ(Read("to\\link\\deep\\file"), "content");
    EXPECT_EQ(Read("to\\file"), "other");
}

// A second name of the source for the destination: found out before the file is cut to nothing.
class CopyToItself : public LinkTest {
  protected:
    CopyToItself() { folder_.Write("source", "content"); }

    void ExpectRefusal(const std::string& from, const std::string& to) const {
        ASSERT_TRUE(PathExists(from));
        ASSERT_TRUE(PathExists(to));
        EXPECT_THAT([&] { CopyOneFile(from, to); }, Throws("Cannot copy " + from + " to itself."));
        EXPECT_EQ(Read("source"), "content");
    }

    const std::string source_ = folder_.Text("source");
};

TEST_F(CopyToItself, IsRefusedUnderTheSameName) {
    ExpectRefusal(source_, source_);
    EXPECT_THAT([&] { Copy(source_, source_); }, Throws("Cannot copy " + source_ + " to itself."));
}

TEST_F(CopyToItself, IsRefusedUnderOtherSpellings) {
    folder_.MakeDir("folder");
    ExpectRefusal(source_, folder_.Text("SOURCE"));
    ExpectRefusal(source_, folder_.Text() + "/folder/../source");
    ExpectRefusal(source_, "\\\\?\\" + source_);
    ExpectRefusal("\\\\.\\" + source_, source_);
}

TEST_F(CopyToItself, IsRefusedUnderAHardLink) {
    const std::string link = folder_.Text("hard link");
    ASSERT_TRUE(CreateHardLinkW(ToWide(link).c_str(), ToWide(source_).c_str(), nullptr));
    ExpectRefusal(source_, link);
    ExpectRefusal(link, source_);
}

TEST_F(CopyToItself, IsRefusedThroughALinkToTheFolder) {
    folder_.Write("folder\\file", "content");
    const test::FolderLink link(folder_.Dir() / "link", folder_.Dir() / "folder");
    ExpectRefusal(folder_.Text("folder\\file"), folder_.Text() + "\\link\\file");
    EXPECT_EQ(Read("folder\\file"), "content");
}

TEST_F(CopyToItself, IsRefusedUnderAnotherDriveLetter) {
    const test::MappedDrive drive(folder_.Dir());
    const std::string other = drive.Root().string() + "source";
    ExpectRefusal(source_, other);
    ExpectRefusal(other, source_);
}

TEST_F(CopyToItself, IsRefusedUnderANetworkName) {
    const std::string other = test::ToUtf8(test::NetworkName(folder_.Dir() / "source"));
    if (!PathExists(other)) GTEST_SKIP() << "the disk's share is open to administrators alone";
    ExpectRefusal(source_, other);
    ExpectRefusal(other, source_);
}

TEST_F(CopyToItself, IsRefusedInATreeToo) {
    folder_.Write("from\\file", "content");
    EXPECT_THAT([&] { Copy(folder_.Text("from"), folder_.Text("from")); },
                Throws("Cannot copy " + folder_.Text("from\\file") + " to itself."));
    EXPECT_EQ(Read("from\\file"), "content");
}

// Every part of a file's identity counts; two files that differ in one of them are two files.
TEST_F(CopyToItself, IsNotSeenInTwoFilesThatAreAlike) {
    using Change = void (*)(BY_HANDLE_FILE_INFORMATION&);
    const Change changes[] = {
        [](BY_HANDLE_FILE_INFORMATION& file) { file.dwVolumeSerialNumber ^= 1; },
        [](BY_HANDLE_FILE_INFORMATION& file) { file.nFileIndexHigh ^= 1; },
        [](BY_HANDLE_FILE_INFORMATION& file) { file.nFileIndexLow ^= 1; },
        [](BY_HANDLE_FILE_INFORMATION& file) { file.nFileSizeHigh ^= 1; },
        [](BY_HANDLE_FILE_INFORMATION& file) { file.nFileSizeLow ^= 1; },
        [](BY_HANDLE_FILE_INFORMATION& file) { file.ftLastWriteTime.dwHighDateTime ^= 1; },
        [](BY_HANDLE_FILE_INFORMATION& file) { file.ftLastWriteTime.dwLowDateTime ^= 1; }};
    for (const Change change : changes) {
        const std::string copy = folder_.Write("copy", "before");
        int calls = 0;
        const Hook<decltype(&GetFileInformationByHandle)> twins(
            "GetFileInformationByHandle",
            [&](auto, HANDLE, LPBY_HANDLE_FILE_INFORMATION information) {
                *information = {};
                information->dwVolumeSerialNumber = 77;
                if (++calls == 1) change(*information);
                return TRUE;
            });
        EXPECT_NO_THROW(CopyOneFile(source_, copy));
        EXPECT_EQ(Read("copy"), "content");
        EXPECT_EQ(calls, 2);
    }
}

// The two files answer one after the other; without either answer nothing is known.
TEST_F(CopyToItself, IsNotAssumedOfFilesThatTellNothing) {
    for (const int failing : {1, 2}) {
        const std::string copy = folder_.Write("copy", "before");
        int calls = 0;
        const Hook<decltype(&GetFileInformationByHandle)> hook(
            "GetFileInformationByHandle",
            [&](auto real, HANDLE file, LPBY_HANDLE_FILE_INFORMATION information) {
                if (++calls != failing) return real(file, information);
                SetLastError(ERROR_INVALID_FUNCTION);
                return FALSE;
            });
        EXPECT_NO_THROW(CopyOneFile(source_, copy));
        EXPECT_EQ(Read("copy"), "content");
        EXPECT_GE(calls, failing);
    }
}

}  // namespace
}  // namespace launcher
