#include "media/volume_files.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <optional>
#include <string>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

class VolumeFilesTest : public testing::Test {
  protected:
    static FileHandle OpenElsewhere(const std::string& path, DWORD sharing) {
        FileHandle file(CreateFileW(ToWide(path).c_str(), GENERIC_READ | GENERIC_WRITE, sharing,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_TRUE(file);
        return file;
    }

    const test::TemporaryFolder folder_;
};

TEST_F(VolumeFilesTest, AreReadWhateverTheirName) {
    const std::string path = folder_.Write(
        "Me\xCC\x81"
        "dia \xE4\xB8\xAD \xF0\x9F\x92\xBF/1.txt",
        "MTBDIR=ABC\r\nmore");
    EXPECT_EQ(ReadMtbDir(path), "ABC");
    const std::optional<VolumeCount> count =
        ReadVolumeCount(folder_.Write("volumes.txt", "3 volumes\r\n4"));
    ASSERT_TRUE(count);
    EXPECT_EQ(count->line, "3 volumes");
    EXPECT_EQ(count->count, 3);
}

// Around the size of the reading buffer.
TEST_F(VolumeFilesTest, AreReadWhereverALineLies) {
    for (std::size_t before = 495; before < 520; ++before) {
        const std::string content = std::string(before, '\n') + "MTBDIR=ABC\r\n";
        ASSERT_EQ(ReadMtbDir(folder_.Write("1.txt", content)), "ABC") << before;
    }
}

TEST_F(VolumeFilesTest, AreEmptyWhereThereIsNoFile) {
    for (const std::string& path :
         {std::string(), folder_.Text("missing.txt"), folder_.Text("no such folder\\1.txt"),
          folder_.MakeDir("1.txt")}) {
        EXPECT_EQ(ReadMtbDir(path), "") << path;
        EXPECT_FALSE(ReadVolumeCount(path)) << path;
    }
}

TEST_F(VolumeFilesTest, AreSharedWithWriters) {
    const std::string path = folder_.Write("1.txt", "MTBDIR=ABC\nmore\n");
    {
        const FileHandle writer = OpenElsewhere(path, FILE_SHARE_READ | FILE_SHARE_WRITE);
        EXPECT_EQ(ReadMtbDir(path), "ABC");
    }
    EXPECT_TRUE(OpenElsewhere(path, 0)) << "left open";
}

TEST_F(VolumeFilesTest, AreEmptyWhileAnotherKeepsThemForItself) {
    const std::string path = folder_.Write("1.txt", "MTBDIR=ABC\n");
    const FileHandle owner = OpenElsewhere(path, 0);
    EXPECT_EQ(ReadMtbDir(path), "");
    EXPECT_FALSE(ReadVolumeCount(path));
}

}  // namespace
}  // namespace launcher
