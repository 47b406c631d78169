#include <gmock/gmock.h>
#include <windows.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/exceptions.h"
#include "fs/file_type.h"
#include "fs/owners.h"
#include "fs/path_exists.h"
#include "launcher/base/launch_options.h"
#include "launcher/temporary_copy.h"
#include "tests/launcher/copy/media_tree.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using testing::Eq;
using testing::ExitedWithCode;

constexpr char kRootVar[] = "LAUNCHER_TEST_ROOT";

// The process that a death test starts runs the whole test anew, up to the copy. It finds the
// media of its parent in a variable: so both know the same paths, and the parent sees what is left.
class FailedCopyDeathTest : public testing::Test {
  protected:
    FailedCopyDeathTest() {
        if (GetEnvVar(kRootVar).empty()) {
            own = std::make_unique<test::TemporaryFolder>();
            SetEnvVar(kRootVar, own->Text());
            test::MakeMedia(*own, "media");
        }
        options.mediaDir = Path(At("media"));
        options.osFolder = "win_b64";
    }
    ~FailedCopyDeathTest() override {
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
        EXPECT_EXIT(CopyInstallerToTemporaryDir(options, temporaryDir), ExitedWithCode(1),
                    Eq("ERROR: Cannot copy the installer to a temporary directory: " +
                       temporaryDir + "\nERROR: " + failure + "\n       \n"));
    }

    std::unique_ptr<test::TemporaryFolder> own;  // the parent's
    LaunchOptions options{0, nullptr, "ZEPInsAppliGUI.exe", false, false};
};

class MissingEntryDeathTest : public FailedCopyDeathTest,
                              public testing::WithParamInterface<std::string> {};

TEST_P(MissingEntryDeathTest, EndsTheProcessAndLeavesWhatWasCopied) {
    const std::string& missing = GetParam();
    Remove("media/" + missing);
    ExpectFailure(TemporaryDir(), "GetType - " + At("media\\" + missing) + " - " +
                                      SystemErrorText(ERROR_FILE_NOT_FOUND));
    bool copied = true;
    for (const std::string& entry : test::kRequiredEntries) {
        if (entry == missing) copied = false;
        EXPECT_EQ(PathExists(TemporaryDir() + entry), copied) << entry;
    }
}

INSTANTIATE_TEST_SUITE_P(, MissingEntryDeathTest, testing::ValuesIn(test::kRequiredEntries));

TEST_F(FailedCopyDeathTest, NamesADestinationThatIsInTheWay) {
    if (own) own->MakeDir("temp/UUID/media.xml");
    ExpectFailure(TemporaryDir(),
                  "Cannot write into " + TemporaryDir() + "media.xml - " + ErrnoText(EACCES));
    EXPECT_TRUE(PathExists(TemporaryDir() + "meta.TOCxml"));
    EXPECT_FALSE(PathExists(TemporaryDir() + "media.db"));
}

TEST_F(FailedCopyDeathTest, NamesASourceThatCannotBeOpened) {
    const std::string source = At("media\\setup.exe");
    const FileHandle lock(CreateFileW(ToWide(source).c_str(), GENERIC_READ, 0, nullptr,
                                      OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    ExpectFailure(TemporaryDir(), "Cannot read " + source + " - " + ErrnoText(EACCES));
    EXPECT_TRUE(PathExists(TemporaryDir() + "media.db"));
    EXPECT_FALSE(PathExists(TemporaryDir() + "StartTUI.exe"));
}

// No folder is ever made right below the root of the current drive.
TEST_F(FailedCopyDeathTest, IsWhatAnEmptyTempComesTo) {
    const std::string temporaryDir = "\\0E5D83C2-97F4-4B1A-A6F0-3C2B1D4E5F60\\";
    Remove("media/inst");
    if (own) own->Write("media/inst/only.txt");
    ExpectFailure(temporaryDir, "CreateDirectory - " + temporaryDir + "inst - " +
                                    SystemErrorText(ERROR_PATH_NOT_FOUND));
    EXPECT_FALSE(PathExists(temporaryDir));
}

void CopyWithBoxesOnTheErrorStream(LaunchOptions& options, const std::string& temporaryDir) {
    const test::Hook<decltype(&MessageBoxW)> hook(
        "MessageBoxW", [](auto, HWND, LPCWSTR text, LPCWSTR, UINT) {
            std::fprintf(stderr, "[%s]", ToNarrow(text).c_str());
            return IDOK;
        });
    options.useGui = true;
    CopyInstallerToTemporaryDir(options, temporaryDir);
}

TEST_F(FailedCopyDeathTest, ShowsTwoBoxes) {
    Remove("media/media.db");
    EXPECT_EXIT(CopyWithBoxesOnTheErrorStream(options, TemporaryDir()), ExitedWithCode(1),
                Eq("[Cannot copy the installer to a temporary directory: " + TemporaryDir() +
                   "][GetType - " + At("media\\media.db") + " - " +
                   SystemErrorText(ERROR_FILE_NOT_FOUND) + "\n]"));
}

}  // namespace
}  // namespace launcher
