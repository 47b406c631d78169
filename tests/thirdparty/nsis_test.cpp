// A real installer, made with NSIS, in the place of the media's.

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "tests/e2e/support/launcher_test.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

using testing::IsEmpty;
using testing::StartsWith;

// What the installer saw: its command line, its path, and some variables, by name.
using SeenByInstaller = std::map<std::string, std::string>;

std::string FromUtf16(const std::string& bytes) {
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    return ToNarrow(text.c_str());
}

class NsisInstaller : public LauncherTest {
  protected:
    void SetUp() override {
        LauncherTest::SetUp();
        variables["SAMPLE_REPORT"] = scratch.Text("seen");
    }
    Media WithSample(Media media) const {
        return media.AddFile("inst/win_b64/code/bin/ZEPInsAppliGUI.exe",
                             ReadFile(BuiltFile(NSIS_SAMPLE)));
    }
    SeenByInstaller Seen() const {
        SeenByInstaller seen;
        std::istringstream lines(FromUtf16(ReadFile(scratch.Dir() / "seen")));
        for (std::string line; std::getline(lines, line);) {
            const std::size_t equals = line.find('=');
            seen[line.substr(0, equals)] = line.substr(equals + 1, line.find('\r') - equals - 1);
        }
        return seen;
    }
};

TEST_F(NsisInstaller, SeesItsArgumentsInQuotes) {
    const Media media = WithSample(EmptyMedia());
    const LauncherRun run = Run(media, {"-wait", "/S", "a b", "C:\\dir\\", "", "Médium 媒体"});
    EXPECT_THAT(run.BoxTexts(), IsEmpty());
    EXPECT_EQ(Seen()["commandLine"], "\"" + media.InstallerText("win_b64") + "\" \"-CDpath\" \"" +
                                         media.Text() +
                                         "\" \"/S\" \"a b\" \"C:\\dir\\\\\" \"\" \"Médium 媒体\"");
}

TEST_F(NsisInstaller, SeesTheEnvironmentMadeForIt) {
    const Media media = WithSample(EmptyMedia());
    Run(media, {"-env", "SAMPLE_VALUE=Größe=10 媒体"});
    const SeenByInstaller seen = Seen();
    EXPECT_EQ(seen.at("ZEP_OS"), "win_b64");
    EXPECT_EQ(seen.at("ZEPAdmInstCurrentMediaDir"), media.Text());
    EXPECT_EQ(seen.at("ZEPAdmInstOriginalMediaDir"), "");
    EXPECT_EQ(seen.at("SAMPLE_VALUE"), "Größe=10 媒体");
}

TEST_F(NsisInstaller, RunsFromTheTemporaryCopy) {
    const Media media = WithSample(MediaToCopy());
    const LauncherRun run = Run(media, {"-wait"});
    EXPECT_THAT(run.BoxTexts(), IsEmpty());
    EXPECT_THAT(Seen()["module"], StartsWith(ToUtf8(run.temp) + "\\"));
    EXPECT_EQ(Seen()["ZEPAdmInstOriginalMediaDir"], media.Text());
}

struct ExitCodeRow : Row {
    const char* installer;
    bool wait;
    DWORD launcher;
};

class NsisExitCode : public NsisInstaller, public testing::WithParamInterface<ExitCodeRow> {};

TEST_P(NsisExitCode, IsHandedBack) {
    variables["SAMPLE_EXIT"] = GetParam().installer;
    std::vector<std::string> arguments;
    if (GetParam().wait) arguments.push_back("-wait");
    const LauncherRun run = Run(WithSample(EmptyMedia()), arguments);
    EXPECT_EQ(run.exitCode, GetParam().launcher);
    EXPECT_THAT(run.BoxTexts(), IsEmpty());
    EXPECT_FALSE(Seen().empty());
}

// Success, the installer's refusal, and success that asks for a restart; only when waited for.
INSTANTIATE_TEST_SUITE_P(Table, NsisExitCode,
                         testing::Values(ExitCodeRow{{"Success"}, "0", true, 0},
                                         ExitCodeRow{{"Failure"}, "2", true, 2},
                                         ExitCodeRow{{"Restart"}, "3010", true, 3010},
                                         ExitCodeRow{{"NotWaitedFor"}, "3010", false, 0}),
                         RowName);

}  // namespace
}  // namespace launcher::test
