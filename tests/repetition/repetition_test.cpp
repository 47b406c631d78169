// Whether anything is left behind when an operation runs many times: the launcher itself runs each
// once, and would not notice.

#include <fcntl.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <io.h>
#include <windows.h>
// windows.h first: the shell headers need it.
#include <shobjidl.h>

#include <cstdio>
#include <string>
#include <vector>

#include "fs/copy.h"
#include "fs/create_dir.h"
#include "fs/directory_enumerator.h"
#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/exceptions.h"
#include "fs/file_type.h"
#include "fs/path.h"
#include "installer/com.h"
#include "installer/folder_dialog_events.h"
#include "installer/installer_environment.h"
#include "installer/installer_process.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "launcher/installer_command_line.h"
#include "launcher/remove_script.h"
#include "launcher/temporary_copy.h"
#include "launcher/uuid_text.h"
#include "media/installer_media.h"
#include "media/volumes.h"
#include "platform/administrator.h"
#include "platform/architecture.h"
#include "platform/libraries.h"
#include "platform/web_library.h"
#include "platform/windows_version.h"
#include "tests/repetition/repeated.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using test::Repeat;

constexpr double kFew = 0.02;  // for what takes milliseconds
constexpr double kSome = 0.2;

LaunchOptions Parse(std::vector<const wchar_t*> arguments) {
    arguments.insert(arguments.begin(), L"setup.exe");
    return LaunchOptions(static_cast<int>(arguments.size()), arguments.data(), "ZEPInsAppliGUI.exe",
                         /*useGuiDefault=*/false, /*waitDefault=*/false);
}

// Console lines lead nowhere while it lives.
class SilentConsole {
  public:
    SilentConsole() : output_(Redirect(stdout)), errors_(Redirect(stderr)) {}
    SilentConsole(const SilentConsole&) = delete;
    SilentConsole& operator=(const SilentConsole&) = delete;
    ~SilentConsole() {
        Restore(stdout, output_);
        Restore(stderr, errors_);
    }

  private:
    static int Redirect(std::FILE* stream) {
        std::fflush(stream);
        const int kept = _dup(_fileno(stream));
        const int nowhere = _wopen(L"NUL", _O_WRONLY);
        _dup2(nowhere, _fileno(stream));
        _close(nowhere);
        return kept;
    }
    static void Restore(std::FILE* stream, int kept) {
        std::fflush(stream);
        _dup2(kept, _fileno(stream));
        _close(kept);
    }

    int output_;
    int errors_;
};

// What `operation` throws as a runtime error, if anything, is part of it.
template <class Operation>
auto Failing(Operation operation) {
    return [operation] { EXPECT_THROW(operation(), std::runtime_error); };
}

class RepetitionTest : public testing::Test {
  protected:
    const test::TemporaryFolder folder_;
};

TEST(Repeat, NoticesHandlesThatStayOpen) {
    EXPECT_NONFATAL_FAILURE(Repeat([] { CreateEventW(nullptr, FALSE, FALSE, nullptr); }),
                            "handles were left open");
}

TEST(Repeat, NoticesMemoryThatStaysAllocated) {
    EXPECT_NONFATAL_FAILURE(Repeat([] { HeapAlloc(GetProcessHeap(), 0, 1000); }),
                            "memory was left allocated");
}

TEST_F(RepetitionTest, OfPaths) {
    Repeat([] {
        const Path path = Join(Path("'C:/a//b/'"), {"c", "d"});
        EXPECT_EQ(RelativePath(path, Parent(Parent(path))).Text(), "c\\d");
        EXPECT_EQ(FileName(path), "d");
    });
}

TEST_F(RepetitionTest, OfVariables) {
    Repeat([] {
        SetEnvVar("SOAK", std::string(600, 'x'));
        EXPECT_EQ(GetEnvVar("SOAK").size(), 600u);
        SetEnvVar("SOAK", "");
    });
}

TEST_F(RepetitionTest, OfExceptionsWithTheSystemsText) {
    Repeat(Failing([] { throw ZEPInsException("x", ERROR_ACCESS_DENIED); }));
}

TEST_F(RepetitionTest, OfACopyOfAFile) {
    const std::string source = folder_.Write("source", std::string(5000, 'x'));
    Repeat([&] { Copy(source, folder_.Text("folder\\copy")); });
}

TEST_F(RepetitionTest, OfACopyThatFails) {
    const std::string source = folder_.Write("source", "x");
    const std::string inTheWay = folder_.MakeDir("folder");
    Repeat(Failing([&] { Copy(source, inTheWay); }));
    Repeat(Failing([&] { Copy(source, source); }));
    Repeat(Failing([&] { Copy(folder_.Text("missing"), inTheWay); }));
}

TEST_F(RepetitionTest, OfACopyOfAFolder) {
    for (const char* name : {"a/1", "a/2", "b/c/3"})
        folder_.Write(std::string("source/") + name, name);
    Repeat([&] { Copy(folder_.Text("source"), folder_.Text("copy")); }, kSome);
}

TEST_F(RepetitionTest, OfListings) {
    for (const char* name : {"1", "2", "3"})
        folder_.Write(name);
    Repeat([&] {
        int count = 0;
        const auto entries =
            DirectoryEnumerator::Open(folder_.Text(), DirectoryEnumerator::kEverything);
        for (; !entries->AtEnd(); entries->Next())
            ++count;
        EXPECT_EQ(count, 3);
    });
    Repeat([&] {
        const auto missing =
            DirectoryEnumerator::Open(folder_.Text("missing"), DirectoryEnumerator::kFiles);
        EXPECT_TRUE(missing->AtEnd());
    });
}

TEST_F(RepetitionTest, OfFolders) {
    const std::string file = folder_.Write("file");
    const std::string deep = folder_.Text("a\\b\\c");
    Repeat([&] {
        CreateDir(deep);
        RemoveDirectoryW(ToWide(deep).c_str());
        EXPECT_FALSE(PathExists(deep));
    });
    Repeat(Failing([&] { CreateDir(file + "\\below"); }));
    Repeat(Failing([&] { GetType(deep); }));
}

TEST_F(RepetitionTest, OfTheMachineChecks) {
    Repeat([] { DetectAdministrator(); });
    Repeat([] { EXPECT_EQ(Is64BitWindows(), Is64BitWindows()); });
    Repeat([] { EXPECT_TRUE(IsWindows8OrNewer() || !IsWindows8OrNewer()); });
    Repeat(RestrictDllSearch);
    Repeat([] { HasRequiredWebLibrary(); }, kFew);
}

TEST_F(RepetitionTest, OfOptions) {
    Repeat([] {
        const LaunchOptions options =
            Parse({L"-wait", L"-env", L"SOAK=1", L"-SoftMgt", L"-List", L"C:\\x\\", L"\u00E4"});
        EXPECT_EQ(options.installerArgs.size(), 2u);
    });
}

TEST_F(RepetitionTest, OfIdentifiers) {
    Repeat([] { EXPECT_EQ(NewUuidText(true).size(), 36u); });
}

TEST_F(RepetitionTest, OfMessages) {
    const LaunchOptions options = Parse({});
    Repeat([&] {
        const SilentConsole silent;
        ReportMessage(options, "one\ntwo", Severity::Error, /*noBox=*/true);
        TraceMessage(options, "three", Severity::Info);
    });
}

TEST_F(RepetitionTest, OfALookupOfTheInstaller) {
    LaunchOptions options = Parse({});
    options.osFolder = "win_b64";
    folder_.Write("inst/win_b64/code/bin/ZEPInsAppliGUI.exe");
    Repeat([&] {
        const SilentConsole silent;
        EXPECT_TRUE(LocateInstaller(options, folder_.Text(), /*quiet=*/true));
    });
}

TEST_F(RepetitionTest, OfVolumesInEachLayout) {
    for (const char* file : {"one/1.txt", "one/2.txt", "am/7/set/1/1.txt", "am/8/set/2/2.txt"})
        folder_.Write(file, "MTBDIR=X\r\n");
    for (const char* file : {"am/7/7.txt", "am/8/8.txt"})
        folder_.Write(file, "MTBDIR=Y\r\n");
    for (const char* file : {"one/inst/volumes.txt", "am/7/set/1/inst/volumes.txt"})
        folder_.Write(file, "2\r\n");
    LaunchOptions options = Parse({});
    const auto resolve = [&](const char* media, int expected) {
        return [&options, expected, path = Path(folder_.Text(media))] {
            const SilentConsole silent;
            std::vector<std::string> volumes;
            options.mediaDir = path;
            EXPECT_EQ(ResolveVolumes(options, volumes), expected);
        };
    };
    Repeat(resolve("one", 1), kSome);
    Repeat(resolve("am\\7\\set\\1", 2), kSome);
}

TEST_F(RepetitionTest, OfTheInstallersEnvironmentAndCommandLine) {
    const std::string path = GetEnvVar("PATH");
    Repeat([&] {
        LaunchOptions options = Parse({L"C:\\x\\", L"\u00E4"});
        options.osFolder = "win_b64";
        options.mediaInstDir = "D:\\inst\\";
        PrepareInstallerEnvironment(options);
        EXPECT_FALSE(BuildInstallerCommandLine(options).empty());
        SetEnvVar("PATH", path);  // grows with each preparation
    });
}

TEST_F(RepetitionTest, OfATemporaryCopyWithItsScript) {
    folder_.Write("media/inst/win_b64/code/bin/ZEPInsAppliGUI.exe", "x");
    for (const char* file :
         {"meta.TOCxml", "media.xml", "media.db", "setup.exe", "StartTUI.exe", "setup_noUAC.exe"})
        folder_.Write(std::string("media/") + file, file);
    const std::string copy = folder_.Text("copy") + "\\";
    Repeat(
        [&] {
            LaunchOptions options = Parse({});
            options.osFolder = "win_b64";
            options.mediaDir = Path(folder_.Text("media"));
            CopyInstallerToTemporaryFolder(options, copy);
            WriteRemoveScript(copy);
            EXPECT_TRUE(options.temporaryCopyMade);
        },
        kFew);
}

TEST_F(RepetitionTest, OfChildren) {
    Repeat(
        [] {
            InstallerProcess child("cmd.exe /c exit 7");
            ASSERT_TRUE(child.Start(/*consoleWindow=*/false));
            EXPECT_EQ(child.WaitForExit(), 7);
        },
        kFew);
    Repeat([] { EXPECT_FALSE(InstallerProcess("no-such-program.exe").Start(true)); }, kSome);
}

TEST_F(RepetitionTest, OfTheFolderDialogsObjects) {
    LaunchOptions options = Parse({});
    Repeat(
        [&options] {
            const ComApartment com;
            ComPtr<IFileDialog> dialog;
            EXPECT_EQ(com.CreateInstance(CLSID_FileOpenDialog, IID_PPV_ARGS(dialog.Put())), S_OK);
            const ComPtr<FolderDialogEvents> events(new FolderDialogEvents(options));
            ComPtr<IFileDialogEvents> same;
            EXPECT_EQ(events->QueryInterface(IID_PPV_ARGS(same.Put())), S_OK);
        },
        kFew);
}

}  // namespace
}  // namespace launcher
