#include <gmock/gmock.h>

#include <cerrno>
#include <filesystem>
#include <string>

#include "fs/copy.h"
#include "tests/fs/links.h"
#include "tests/fs/throws.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

// A real disk that is too small, rather than a call that says so: what was copied before stays, and
// so does the part of the file that did not fit.
TEST(FullDisk, EndsTheCopyWithTheFileThatDidNotFit) {
    const test::TemporaryFolder folder;
    folder.Write("source\\a small", std::string(1000, 'a'));
    folder.Write("source\\b large", std::string(1'000'000, 'b'));
    const std::filesystem::path place = test::FromUtf8(folder.MakeDir("disk"));
    const test::SmallDisk disk(place);
    if (!disk.IsThere()) GTEST_SKIP() << "needs Wine, started by the host's root";

    const std::string copy = test::ToUtf8(place / "copy");
    EXPECT_THAT([&] { Copy(folder.Text("source"), copy); },
                test::ThrowsErrno("Cannot write into " + copy + "\\b large", ENOSPC));
    EXPECT_EQ(test::ReadFile(place / "copy" / "a small"), std::string(1000, 'a'));
    EXPECT_LT(std::filesystem::file_size(place / "copy" / "b large"), 1'000'000u);
    std::filesystem::remove_all(place / "copy");
}

}  // namespace
}  // namespace launcher
