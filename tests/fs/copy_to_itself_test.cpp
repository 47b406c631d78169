// A second name of the source for the destination: found out before the file is cut to nothing.

#include <gmock/gmock.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <utility>

#include "fs/copy.h"
#include "fs/encoding.h"
#include "fs/file_type.h"
#include "tests/support/hook.h"
#include "tests/support/links.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/throws.h"

namespace launcher {
namespace {

using test::Hook;
using test::Throws;

// Links of the host cost this process handles under Wine: no FileTest.
class CopyToItselfTest : public testing::Test {
  protected:
    std::string Read(const char* relative) const {
        return test::ReadFile(folder_.Dir() / relative);
    }
    void ExpectRefusal(const std::string& from, const std::string& to) const {
        ASSERT_TRUE(PathExists(from));
        ASSERT_TRUE(PathExists(to));
        EXPECT_THAT([&] { CopyOneFile(from, to); }, Throws("Cannot copy " + from + " to itself."));
        EXPECT_EQ(Read("source"), "content");
    }

    // Copies onto another file of which `body` tells the identity.
    void ExpectCopied(Hook<decltype(&GetFileInformationByHandle)>::Body body) const {
        const std::string copy = folder_.Write("copy", "before");
        {
            const Hook<decltype(&GetFileInformationByHandle)> hook("GetFileInformationByHandle",
                                                                   std::move(body));
            CopyOneFile(source_, copy);
        }
        EXPECT_EQ(Read("copy"), "content");
    }

    const test::TemporaryFolder folder_;
    const std::string source_ = folder_.Write("source", "content");
};

TEST_F(CopyToItselfTest, IsRefusedUnderTheSameName) {
    ExpectRefusal(source_, source_);
    EXPECT_THAT([&] { Copy(source_, source_); }, Throws("Cannot copy " + source_ + " to itself."));
}

TEST_F(CopyToItselfTest, IsRefusedUnderOtherSpellings) {
    folder_.MakeDir("folder");
    ExpectRefusal(source_, folder_.Text("SOURCE"));
    ExpectRefusal(source_, folder_.Text() + "/folder/../source");
    ExpectRefusal(source_, "\\\\?\\" + source_);
    ExpectRefusal("\\\\.\\" + source_, source_);
}

TEST_F(CopyToItselfTest, IsRefusedUnderAHardLink) {
    const std::string link = folder_.Text("hard link");
    ASSERT_TRUE(CreateHardLinkW(ToWide(link).c_str(), ToWide(source_).c_str(), nullptr));
    ExpectRefusal(source_, link);
    ExpectRefusal(link, source_);
}

TEST_F(CopyToItselfTest, IsRefusedThroughALinkToTheFolder) {
    folder_.Write("folder\\file", "content");
    const test::FolderLink link(folder_.Dir() / "link", folder_.Dir() / "folder");
    ExpectRefusal(folder_.Text("folder\\file"), folder_.Text() + "\\link\\file");
    EXPECT_EQ(Read("folder\\file"), "content");
}

TEST_F(CopyToItselfTest, IsRefusedUnderAnotherDriveLetter) {
    const test::MappedDrive drive(folder_.Dir());
    const std::string other = drive.Root().string() + "source";
    ExpectRefusal(source_, other);
    ExpectRefusal(other, source_);
}

TEST_F(CopyToItselfTest, IsRefusedUnderANetworkName) {
    const std::string other = test::ToUtf8(test::NetworkName(folder_.Dir() / "source"));
    if (!PathExists(other)) GTEST_SKIP() << "the disk's share is open to administrators alone";
    ExpectRefusal(source_, other);
    ExpectRefusal(other, source_);
}

TEST_F(CopyToItselfTest, IsRefusedInATreeToo) {
    folder_.Write("from\\file", "content");
    EXPECT_THAT([&] { Copy(folder_.Text("from"), folder_.Text("from")); },
                Throws("Cannot copy " + folder_.Text("from\\file") + " to itself."));
    EXPECT_EQ(Read("from\\file"), "content");
}

// Every part of a file's identity counts; two files that differ in one of them are two files.
TEST_F(CopyToItselfTest, IsNotSeenInTwoFilesThatAreAlike) {
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
        int calls = 0;
        ExpectCopied([&](auto, HANDLE, LPBY_HANDLE_FILE_INFORMATION information) {
            *information = {};
            information->dwVolumeSerialNumber = 77;
            if (++calls == 1) change(*information);
            return TRUE;
        });
        EXPECT_EQ(calls, 2);
    }
}

// The two files answer one after the other; without either answer nothing is known.
TEST_F(CopyToItselfTest, IsNotAssumedOfFilesThatTellNothing) {
    for (const int failing : {1, 2}) {
        int calls = 0;
        ExpectCopied([&](auto real, HANDLE file, LPBY_HANDLE_FILE_INFORMATION information) {
            if (++calls != failing) return real(file, information);
            SetLastError(ERROR_INVALID_FUNCTION);
            return FALSE;
        });
        EXPECT_GE(calls, failing);
    }
}

}  // namespace
}  // namespace launcher
