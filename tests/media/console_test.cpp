#include <gtest/gtest.h>

#include "launcher/base/launch_options.h"
#include "media/installer_media.h"
#include "media/volumes.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

// The lines on the two streams, one behind the other, each stream's with its name in front.
template <class Action>
std::string Streams(const Action& action) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    action();
    const std::string error = testing::internal::GetCapturedStderr();
    return "stdout:\n" + testing::internal::GetCapturedStdout() + "stderr:\n" + error;
}

class ConsoleTest : public testing::Test {
  protected:
    ConsoleTest() { options.mediaDir = Path(folder.Text("P\\V")); }

    std::string ResolveStreams() {
        return Streams([this] {
            std::vector<std::string> volumes;
            ResolveVolumes(options, volumes);
        });
    }

    const test::TemporaryFolder folder;
    // With boxes on: progress is shown on the console all the same.
    LaunchOptions options{0, nullptr, "setup.exe", true, false};
};

TEST_F(ConsoleTest, ShowsVolumesThatAreFoundOnTheOutput) {
    folder.Write("P/V/inst/volumes.txt", "2\r\n");
    folder.Write("P/V/1.txt", "MTBDIR=X\r\n");
    folder.Write("P/2/2.txt", "MTBDIR=X\r\n");
    EXPECT_EQ(ResolveStreams(),
              "stdout:\n"
              " INFO: This media is composed of 2 volumes.\n"
              "       Volume 1 found in: " +
                  folder.Text("P\\V") +
                  "\n"
                  "       Volume 2 found in: " +
                  folder.Text("P\\2") +
                  "\n"
                  "stderr:\n");
}

TEST_F(ConsoleTest, ShowsAPlainLineWhereTheWarningBeforeItWent) {
    folder.Write("P/V/inst/volumes.txt", "2\r\n");
    EXPECT_EQ(ResolveStreams(),
              "stdout:\n"
              " INFO: This media is composed of 2 volumes.\n"
              "stderr:\n"
              " WARN: 1.txt not found or not accessible in: " +
                  folder.Text("P\\V") +
                  "\n"
                  "       Please make sure you copied the whole volume.\n");
}

TEST_F(ConsoleTest, ShowsWarningsOnTheErrorStream) {
    folder.Write("P/V/inst/volumes.txt", "3\r\n");
    folder.Write("P/V/1.txt", "MTBDIR=X\r\n");
    folder.Write("P/2/2.txt", "MTBDIR=Z\r\n");
    folder.Write("P/3/3.txt", "MTBDIR=X\r\n");
    EXPECT_EQ(ResolveStreams(),
              "stdout:\n"
              " INFO: This media is composed of 3 volumes.\n"
              "       Volume 1 found in: " +
                  folder.Text("P\\V") +
                  "\n"
                  "stderr:\n"
                  " WARN: Volume 2 of Z found in " +
                  folder.Text("P\\2") +
                  " instead of X\n"
                  "       Volume 3 found in: " +
                  folder.Text("P\\3") + "\n");
}

TEST_F(ConsoleTest, ShowsAFailedLookupAsInformation) {
    options.useGui = false;
    options.osFolder = "intel_a";
    EXPECT_EQ(Streams([this] { LocateInstaller(options, folder.Text(), false); }),
              "stdout:\n"
              " INFO: Installer executable \"" +
                  folder.Text("1\\inst\\intel_a\\code\\bin\\setup.exe") +
                  "\" does not exist, trying without sub dir \"1\"\n"
                  " INFO: Invalid Installer media, \"" +
                  folder.Text("inst\\intel_a\\code\\bin\\setup.exe") +
                  "\" does not exist\n"
                  "stderr:\n");
}

}  // namespace
}  // namespace launcher
