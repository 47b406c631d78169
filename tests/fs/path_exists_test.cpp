#include "fs/path_exists.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

TEST(PathExists, IsTrueForFilesAndFolders) {
    const test::TemporaryFolder folder;
    EXPECT_TRUE(PathExists(folder.Write("file \xF0\x9F\x92\xBF.txt")));
    EXPECT_TRUE(PathExists(folder.MakeDir("folder")));
    EXPECT_TRUE(PathExists(folder.Text() + "\\folder\\"));
    EXPECT_TRUE(PathExists(folder.Text() + "/folder/../folder"));
}

TEST(PathExists, IsFalseForWhatIsNotThere) {
    const test::TemporaryFolder folder;
    const std::string file = folder.Write("file");
    for (const std::string& path :
         {std::string(), folder.Text("missing"), folder.Text("missing\\below"), file + "\\below",
          folder.Text() + "\\a<b"})
        EXPECT_FALSE(PathExists(path)) << path;
}

}  // namespace
}  // namespace launcher
