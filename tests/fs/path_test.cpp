#include "fs/path.h"

#include <gmock/gmock.h>
#include <windows.h>
#include "fs/file_operations.h"
#include "tests/support/import_patch.h"

namespace launcher {
namespace {

TEST(Path, TurnsSlashesIntoBackslashesAndCollapsesThem) {
    const Path path("c:/a//b/");
    EXPECT_EQ(path.Text(), "c:\\a\\b");
    EXPECT_EQ(path.RootEnd(), 1);
}
TEST(Path, Fake) {
    const test::ImportPatch patch(
        "GetFileAttributesW", +[](LPCWSTR) -> DWORD { return 16; });
    EXPECT_TRUE(PathExists("nonsense"));
}
TEST(PathDeathTest, Exits) {
    EXPECT_EXIT(std::exit(1), testing::ExitedWithCode(1), "");
}

}  // namespace
}  // namespace launcher
