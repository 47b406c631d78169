// Marker files on a medium that stops answering.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "media/volume_files.h"
#include "tests/support/handle_count.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using test::Hook;

class VolumeReadFailure : public testing::Test {
  protected:
    const test::TemporaryFolder folder_;

  private:
    const test::SameHandlesAtTheEnd handles_;
};

TEST_F(VolumeReadFailure, AtTheBeginningLooksLikeAnEmptyFile) {
    const std::string marker = folder_.Write("1.txt", "MTBDIR=ABC\r\n");
    const std::string count = folder_.Write("volumes.txt", "3\r\n");
    const Hook<decltype(&ReadFile)> broken("ReadFile", test::FailsWith(ERROR_CRC, FALSE));
    EXPECT_EQ(ReadMtbDir(marker), "");
    EXPECT_FALSE(ReadVolumeCount(count));
}

TEST_F(VolumeReadFailure, FurtherOnLooksLikeTheEndOfTheFile) {
    const std::string marker = folder_.Write("1.txt", "MTBDIR=ABC" + std::string(1000, 'x'));
    int calls = 0;
    const Hook<decltype(&ReadFile)> broken(
        "ReadFile",
        [&](auto real, HANDLE file, LPVOID buffer, DWORD size, LPDWORD read,
            LPOVERLAPPED overlapped) -> BOOL {
            if (++calls == 1) return real(file, buffer, 10, read, overlapped);
            *read = size;  // what a failed call leaves there does not count
            SetLastError(ERROR_CRC);
            return FALSE;
        });
    EXPECT_EQ(ReadMtbDir(marker), "ABC");
    EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace launcher
