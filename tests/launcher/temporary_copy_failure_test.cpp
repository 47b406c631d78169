#include <gmock/gmock.h>
#include <windows.h>

#include <cerrno>
#include <filesystem>
#include <memory>
#include <string>

#include "fs/environment.h"
#include "fs/exceptions.h"
#include "fs/file_type.h"
#include "launcher/base/launch_options.h"
#include "launcher/temporary_copy.h"
#include "tests/support/message_boxes.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using testing::Eq;
using testing::ExitedWithCode;

// What a medium must hold at its root, in the order of the copy.
constexpr const char* kEntries[] = {"inst",      "meta.TOCxml",  "media.xml",      "media.db",
                                    "setup.exe", "StartTUI.exe", "setup_noUAC.exe"};

constexpr char kRootVar[] = "LAUNCHER_TEST_ROOT";

// The process that a death test starts runs the whole test anew, up to the copy. It finds the
// media of its parent in a variable: so both know the same paths, and the parent sees what is left.
class TemporaryCopyFailureDeathTest : public testing::Test {
  protected:
    TemporaryCopyFailureDeathTest() {
        if (GetEnvVar(kRootVar).empty()) {
            own = std::make_unique<test::TemporaryFolder>();
            SetEnvVar(kRootVar, own->Text());
            own->Write("media/inst/file");
            for (const std::string entry : kEntries)
                if (entry != "inst") own->Write("media/" + entry);
        }
        options.mediaDir = Path(At("media"));
    }
    ~TemporaryCopyFailureDeathTest() override {
        if (own) SetEnvVar(kRootVar, "");
    }

    static std::string At(const std::string& relative) {
        return GetEnvVar(kRootVar) + "\\" + relative;
    }
    static std::string TemporaryDir() { return At("temp\\UUID\\"); }

    void Remove(const std::string& relative) const {
        if (own) std::filesystem::remove_all(test::FromUtf8(own->Text(relative)));
    }

    void ExpectFailure(const std::string& temporaryDir, const std::string& failure) {
        EXPECT_EXIT(CopyInstallerToTemporaryFolder(options, temporaryDir), ExitedWithCode(1),
                    Eq("ERROR: Cannot copy the installer to a temporary directory: " +
                       temporaryDir + "\nERROR: " + failure + "\n       \n"));
    }

    std::unique_ptr<test::TemporaryFolder> own;  // the parent's
    LaunchOptions options{0, nullptr, "ZEPInsAppliGUI.exe", false, false};
};

class MissingEntryDeathTest : public TemporaryCopyFailureDeathTest,
                              public testing::WithParamInterface<const char*> {};

TEST_P(MissingEntryDeathTest, EndsTheProcessAndLeavesWhatWasCopied) {
    const std::string missing = GetParam();
    Remove("media/" + missing);
    ExpectFailure(TemporaryDir(), "GetType - " + At("media\\" + missing) + " - " +
                                      SystemErrorText(ERROR_FILE_NOT_FOUND));
    bool copied = true;
    for (const std::string entry : kEntries) {
        if (entry == missing) copied = false;
        EXPECT_EQ(PathExists(TemporaryDir() + entry), copied) << entry;
    }
}

INSTANTIATE_TEST_SUITE_P(Media, MissingEntryDeathTest, testing::ValuesIn(kEntries));

TEST_F(TemporaryCopyFailureDeathTest, NamesADestinationThatIsInTheWay) {
    if (own) own->MakeDir("temp/UUID/media.xml");
    ExpectFailure(TemporaryDir(),
                  "Cannot write into " + TemporaryDir() + "media.xml - " + ErrnoText(EACCES));
    EXPECT_TRUE(PathExists(TemporaryDir() + "meta.TOCxml"));
    EXPECT_FALSE(PathExists(TemporaryDir() + "media.db"));
}

// No folder is ever made right below the root of the current drive.
TEST_F(TemporaryCopyFailureDeathTest, IsWhatAnEmptyTempComesTo) {
    const std::string temporaryDir = "\\0E5D83C2-97F4-4B1A-A6F0-3C2B1D4E5F60\\";
    ExpectFailure(temporaryDir, "CreateDirectory - " + temporaryDir + "inst - " +
                                    SystemErrorText(ERROR_PATH_NOT_FOUND));
    EXPECT_FALSE(PathExists(temporaryDir));
}

TEST_F(TemporaryCopyFailureDeathTest, ShowsTwoBoxes) {
    Remove("media/media.db");
    options.useGui = true;
    EXPECT_EXIT(
        {
            const test::MessageBoxes boxes(/*print=*/true);
            CopyInstallerToTemporaryFolder(options, TemporaryDir());
        },
        ExitedWithCode(1),
        Eq("box: Cannot copy the installer to a temporary directory: " + TemporaryDir() +
           "\nbox: GetType - " + At("media\\media.db") + " - " +
           SystemErrorText(ERROR_FILE_NOT_FOUND) + "\n\n"));
}

}  // namespace
}  // namespace launcher
