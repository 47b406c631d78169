#include <gmock/gmock.h>
#include <windows.h>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "fs/path_exists.h"
#include "launcher/remove_script.h"
#include "tests/launcher/copy/media_tree.h"
#include "tests/launcher/copy/script_run.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

FileHandle OpenFile(const std::string& path, DWORD sharing) {
    FileHandle file(CreateFileW(ToWide(path).c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
    EXPECT_TRUE(file);
    return file;
}

// The copied tree and its script, in a folder below the test's own.
class RemoveScriptTest : public testing::Test {
  protected:
    std::string NewTemporaryDir(const std::string& name) const {
        folder.Write(name + "/inst/win_b64/code/bin/setup.exe", "installer");
        folder.Write(name + "/inst/win_b64/code/bin/library.dll", "library");
        folder.Write(name + "/inst/common/win_b64.installos");
        folder.Write(name + "/media.xml", "media");
        return folder.Text(name) + "\\";
    }

    // Writes the script and puts a copy of it elsewhere, from where it can remove the whole folder
    // even if the command processor keeps the script open while it runs.
    std::string ScriptElsewhere(const std::string& temporaryDir) const {
        WriteRemoveScript(temporaryDir);
        return folder.Write("run.bat", test::ReadFile(test::FromUtf8(temporaryDir + "remove.bat")));
    }

    void ExpectRemoved(const std::string& temporaryDir) const {
        const test::ScriptRun run(ScriptElsewhere(temporaryDir));
        EXPECT_TRUE(run.EndsWithin(20'000));
        EXPECT_FALSE(PathExists(temporaryDir));
        EXPECT_TRUE(PathExists(folder.Text()));
    }

    const test::TemporaryFolder folder;
};

TEST_F(RemoveScriptTest, HasFourLinesEndedByCrLf) {
    const std::string dir = folder.MakeDir("T\xC3\xA4mp (x86) & Co") + "\\";
    WriteRemoveScript(dir);
    EXPECT_EQ(test::ReadFile(test::FromUtf8(dir + "remove.bat")),
              ":begin\r\n"
              "rmdir /Q /S \"" +
                  dir +
                  "inst\" 1>nul 2>nul\r\n"
                  "if exist \"" +
                  dir +
                  "inst\" goto begin\r\n"
                  "rmdir /Q /S \"" +
                  dir + "\" 1>nul 2>nul\r\n");
}

TEST_F(RemoveScriptTest, ReplacesALongerFile) {
    const std::string dir = folder.MakeDir("UUID") + "\\";
    WriteRemoveScript(dir);
    const std::string script = test::ReadFile(test::FromUtf8(dir + "remove.bat"));
    folder.Write("UUID/remove.bat", std::string(5000, '#'));
    WriteRemoveScript(dir);
    EXPECT_EQ(test::ReadFile(test::FromUtf8(dir + "remove.bat")), script);
}

TEST_F(RemoveScriptTest, IsWrittenWhileOthersReadIt) {
    const std::string path = folder.Write("UUID/remove.bat", "old");
    const FileHandle reader = OpenFile(path, FILE_SHARE_READ | FILE_SHARE_WRITE);
    WriteRemoveScript(folder.Text("UUID") + "\\");
    EXPECT_THAT(test::ReadFile(test::FromUtf8(path)), testing::StartsWith(":begin\r\n"));
}

TEST_F(RemoveScriptTest, IsSkippedSilentlyWhenItCannotBeMade) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    WriteRemoveScript(folder.Text("missing") + "\\");
    folder.MakeDir("taken/remove.bat");
    WriteRemoveScript(folder.Text("taken") + "\\");
    const std::string path = folder.Write("locked/remove.bat", "old");
    {
        const FileHandle owner = OpenFile(path, 0);
        WriteRemoveScript(folder.Text("locked") + "\\");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_FALSE(PathExists(folder.Text("missing")));
    EXPECT_EQ(test::ReadFile(test::FromUtf8(path)), "old");
}

// Whether a script's folder stays until the command processor, which has the script open, is done
// with it. Windows' own and newer Wine's have no script open between two of its lines.
bool CommandProcessorHoldsScripts(const test::TemporaryFolder& folder) {
    const std::string dir = folder.Text("probe");
    const test::ScriptRun run(folder.Write("probe/probe.bat", "@rmdir /Q /S \"" + dir + "\"\r\n"));
    EXPECT_TRUE(run.EndsWithin(20'000));
    return PathExists(dir);
}

TEST_F(RemoveScriptTest, RemovesTheCopyAndItself) {
    const std::string dir = NewTemporaryDir("UUID");
    WriteRemoveScript(dir);
    const test::ScriptRun run(dir + "remove.bat");
    EXPECT_TRUE(run.EndsWithin(20'000));
    if (PathExists(dir)) {
        EXPECT_THAT(test::TreeOf(dir), testing::IsEmpty());
    }
    EXPECT_EQ(PathExists(dir), CommandProcessorHoldsScripts(folder));
}

TEST_F(RemoveScriptTest, RemovesTheWholeFolder) {
    ExpectRemoved(NewTemporaryDir("UUID"));
}

TEST_F(RemoveScriptTest, RemovesAFolderWithAnAwkwardName) {
    ExpectRemoved(NewTemporaryDir("a folder (x86) & more"));
}

TEST_F(RemoveScriptTest, RemovesAFolderWithoutACopy) {
    ExpectRemoved(folder.MakeDir("UUID") + "\\");
}

TEST_F(RemoveScriptTest, KeepsTryingWhileTheInstallerRuns) {
    const std::string dir = NewTemporaryDir("UUID");
    const std::string inUse = dir + "inst\\win_b64\\code\\bin\\setup.exe";
    FileHandle file = OpenFile(inUse, FILE_SHARE_READ);
    const test::ScriptRun run(ScriptElsewhere(dir));
    EXPECT_FALSE(run.EndsWithin(1000));
    EXPECT_TRUE(PathExists(inUse));
    EXPECT_TRUE(PathExists(dir + "media.xml"));

    file.Reset();
    EXPECT_TRUE(run.EndsWithin(20'000));
    EXPECT_FALSE(PathExists(dir));
}

}  // namespace
}  // namespace launcher
