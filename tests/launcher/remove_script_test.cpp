#include <gmock/gmock.h>
#include <windows.h>

#include <stdexcept>
#include <string>

#include "fs/encoding.h"
#include "fs/file_type.h"
#include "fs/owners.h"
#include "installer/installer_process.h"
#include "launcher/remove_script.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

constexpr DWORD kPatience = 60'000;  // milliseconds

FileHandle OpenFile(const std::string& path, DWORD sharing) {
    FileHandle file(CreateFileW(ToWide(path).c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
    EXPECT_TRUE(file);
    return file;
}

// A batch script that the system's command processor runs. It is ended with this object if it still
// runs then.
class ScriptRun {
  public:
    explicit ScriptRun(const std::string& script) {
        // With /s, only the outer quotes go.
        std::wstring commandLine = L"cmd.exe /d /s /c \"\"" + ToWide(script) + L"\"\"";
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW,
                            nullptr, nullptr, &startup, &process_))
            throw std::runtime_error("cannot start the command processor");
    }
    ScriptRun(const ScriptRun&) = delete;
    ScriptRun& operator=(const ScriptRun&) = delete;
    ~ScriptRun() {
        if (EndsWithin(0)) return;
        TerminateProcess(process_.hProcess, 1);
        WaitForSingleObject(process_.hProcess, 5000);
    }

    // True when it ends, or has ended, within the time.
    bool EndsWithin(DWORD milliseconds) const {
        return WaitForSingleObject(process_.hProcess, milliseconds) == WAIT_OBJECT_0;
    }

  private:
    ProcessInformation process_;
};

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
        const ScriptRun run(ScriptElsewhere(temporaryDir));
        EXPECT_TRUE(run.EndsWithin(kPatience));
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

TEST_F(RemoveScriptTest, ReplacesALongerFileWhileOthersReadIt) {
    const std::string path = folder.Write("UUID/remove.bat", std::string(5000, '#'));
    const FileHandle reader = OpenFile(path, FILE_SHARE_READ | FILE_SHARE_WRITE);
    WriteRemoveScript(folder.Text("UUID") + "\\");
    const std::string script = test::ReadFile(test::FromUtf8(path));
    EXPECT_THAT(script, testing::StartsWith(":begin\r\n"));
    EXPECT_THAT(script, testing::EndsWith("\" 1>nul 2>nul\r\n"));
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
    const ScriptRun run(folder.Write("probe/probe.bat", "@rmdir /Q /S \"" + dir + "\"\r\n"));
    EXPECT_TRUE(run.EndsWithin(kPatience));
    return PathExists(dir);
}

TEST_F(RemoveScriptTest, RemovesTheCopyAndItself) {
    const std::string dir = NewTemporaryDir("UUID");
    WriteRemoveScript(dir);
    const ScriptRun run(dir + "remove.bat");
    EXPECT_TRUE(run.EndsWithin(kPatience));
    if (PathExists(dir)) {
        EXPECT_THAT(test::TreeBelow(test::FromUtf8(dir)), testing::IsEmpty());
    }
    EXPECT_EQ(PathExists(dir), CommandProcessorHoldsScripts(folder));
}

TEST_F(RemoveScriptTest, RemovesTheWholeFolderWhateverItsName) {
    ExpectRemoved(NewTemporaryDir("a folder (x86) & more"));
    ExpectRemoved(folder.MakeDir("without a copy") + "\\");
}

TEST_F(RemoveScriptTest, KeepsTryingWhileTheInstallerRuns) {
    const std::string dir = NewTemporaryDir("UUID");
    const std::string inUse = dir + "inst\\win_b64\\code\\bin\\setup.exe";
    FileHandle file = OpenFile(inUse, FILE_SHARE_READ);
    const ScriptRun run(ScriptElsewhere(dir));
    EXPECT_FALSE(run.EndsWithin(1000));
    EXPECT_TRUE(PathExists(inUse));
    EXPECT_TRUE(PathExists(dir + "media.xml"));

    file.Reset();
    EXPECT_TRUE(run.EndsWithin(kPatience));
    EXPECT_FALSE(PathExists(dir));
}

}  // namespace
}  // namespace launcher
