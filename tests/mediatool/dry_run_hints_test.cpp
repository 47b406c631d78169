// What a dry run says of slips, although the run does as it is told.

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "launcher/base/launch_options.h"
#include "mediatool/base/files.h"
#include "mediatool/dry_run/dry_run.h"
#include "tests/mediatool/rehearsing.h"
#include "tests/support/hook.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class HintTest : public Rehearsing {
  protected:
    std::vector<std::string> Hints(const SampleMedia& media,
                                   std::vector<std::string> arguments = {},
                                   Variables variables = {}) const {
        return Dry(media, std::move(arguments), std::move(variables)).hints;
    }

    const SampleMedia media_ = Startable();
};

TEST_F(HintTest, NoneForAnOrdinaryRun) {
    EXPECT_THAT(Hints(media_, {"-wait", "plain", "-env", "-WAIT=1"}), IsEmpty());
    EXPECT_THAT(Hints(Incomplete()), IsEmpty());
}

TEST_F(HintTest, AnArgumentThatDiffersFromAnOptionInCaseOnly) {
    EXPECT_THAT(Hints(media_, {"-Wait", "--MGT"}),
                ElementsAre("\"-Wait\" goes to the installer; the launcher's option is -wait.",
                            "\"--MGT\" goes to the installer; the launcher's option is --mgt."));
}

TEST_F(HintTest, AnArgumentThatABackslashBeforeAQuoteHasMadeOfTwo) {
    EXPECT_THAT(Hints(media_, {"C:\\a b\" -wait"}),
                ElementsAre("The argument C:\\a b\"... has a quote in it: a backslash before the "
                            "closing quote, as in \"C:\\a b\\\", does that; leave it out."));
    EXPECT_THAT(Hints(media_, {"C:\\a b\\", "6\" nails", "\"C:\\a b\"", "DIR=\"C:\\a b\""}),
                IsEmpty());
}

TEST_F(HintTest, ATempThatRemoveBatCannotName) {
    const Variables temp = {{"TEMP", temp_.Text("Größe")}};
    EXPECT_THAT(Hints(Incomplete(), {}, temp), ElementsAre(StartsWith("remove.bat cannot name ")));
    EXPECT_THAT(Hints(media_, {}, temp), IsEmpty());  // nothing is copied
}

TEST_F(HintTest, AnInstallerThatAsksForElevation) {
    const SampleMedia media = Startable();
    ASSERT_TRUE(CopyFileW(BuiltFile(ELEVATED_PROGRAM).c_str(),
                          FromUtf8(media.Text(kInstallerOfMedia)).c_str(), FALSE));
    EXPECT_THAT(Hints(media), IsEmpty());
    request_.machine.isAdministrator = false;
    const Variables allowed = {{"ZEPAdmInstAllowNotAdminUser", "1"}};
    EXPECT_THAT(Hints(media, {}, allowed), ElementsAre(HasSubstr("asks for elevation")));
    EXPECT_THAT(Hints(media_, {}, allowed), IsEmpty());
}

// Windows starts such an installer for anybody, but for an administrator without elevation.
TEST_F(HintTest, AnInstallerThatAsksForTheHighestRights) {
    std::string program = ReadFile(BuiltFile(ELEVATED_PROGRAM));
    const std::string required = "\"requireAdministrator\"";
    ASSERT_EQ(program.find(required), program.rfind(required));
    program.replace(program.find(required), required.size(), "'highestAvailable'    ");
    SampleMedia media = Startable();
    media.Write(kInstallerOfMedia, program);
    const Variables allowed = {{"ZEPAdmInstAllowNotAdminUser", "1"}, {"ZEPProcessNotAdmin", "1"}};
    for (const auto& [type, isHint] : {std::pair(TokenElevationTypeDefault, false),
                                       std::pair(TokenElevationTypeLimited, true)}) {
        const Hook<decltype(&GetTokenInformation)> token(
            "GetTokenInformation",
            [type = type](auto real, HANDLE handle, auto kind, LPVOID value, auto... rest) {
                const BOOL isTold = real(handle, kind, value, rest...);
                if (kind == TokenElevationType) *static_cast<TOKEN_ELEVATION_TYPE*>(value) = type;
                return isTold;
            });
        request_.machine.isAdministrator.reset();
        EXPECT_EQ(Hints(media, {}, allowed).size(), isHint ? 1u : 0u);
        request_.machine.isAdministrator = false;
        EXPECT_THAT(Hints(media, {}, allowed), IsEmpty()) << "of a pretended user";
    }
}

TEST_F(HintTest, HowMuchRoomIsMissing) {
    const SampleMedia incomplete = Incomplete();
    const Hook<decltype(&GetDiskFreeSpaceExW)> full(
        "GetDiskFreeSpaceExW", [](auto, LPCWSTR, PULARGE_INTEGER room, auto...) {
            room->QuadPart = 1000;
            return TRUE;
        });
    std::uint64_t needed = 0;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(FromUtf8(incomplete.Text())))
        if (entry.is_regular_file() && entry.path().filename() != "1.txt")
            needed += entry.file_size();
    const mediatool::DryRun run = Dry(incomplete);
    EXPECT_FALSE(run.copy.made);
    ASSERT_EQ(run.hints.size(), 1u);
    std::string hint = run.hints[0];
    std::erase(hint, ',');
    EXPECT_THAT(hint, StartsWith("The copy needs at least " + std::to_string(needed - 1000) +
                                 " bytes more"));
}

TEST_F(HintTest, ATempInTheFolderThatIsCopied) {
    SampleMedia incomplete = Incomplete();
    incomplete.MakeDir("inst/win_b64/code/bin/temp");
    EXPECT_THAT(
        Hints(incomplete, {}, {{"TEMP", incomplete.Text("inst\\win_b64\\code\\bin\\temp")}}),
        ElementsAre(HasSubstr("the copy holds parts of itself")));
    EXPECT_THAT(Hints(incomplete, {}, {{"TEMP", incomplete.Text("inst temp")}}), IsEmpty());
}

// What the medium holds reaches the messages.
TEST_F(HintTest, ReportsSendNoCharactersThatATerminalWouldObey) {
    SampleMedia media = Startable();
    media.Write("inst/volumes.txt", "2\x1B[2J\r\n");
    const std::string text = TextOf(Dry(media), true);
    EXPECT_THAT(text, HasSubstr("2\\x1B[2J"));
    EXPECT_EQ(text.find('\x1B'), std::string::npos) << text;
}

class LongPathTest : public HintTest {
  protected:
    // What the registry says of long paths.
    static auto Enabled(bool enabled) {
        return Hook<decltype(&RegGetValueW)>(
            "RegGetValueW", [enabled](auto, auto, auto, auto, auto, auto, PVOID value, auto) {
                *static_cast<DWORD*>(value) = enabled ? 1 : 0;
                return LSTATUS{ERROR_SUCCESS};
            });
    }

    // In which the names of the folders in the copy are too long without them.
    Variables LongTemp() const {
        const std::string base = temp_.Text() + "\\";
        return {{"TEMP", base + std::string(240 - base.size(), 'x')}};
    }

    const SampleMedia incomplete_ = Incomplete();
};

TEST_F(LongPathTest, AreAskedOfThisMachine) {
    for (const bool enabled : {false, true}) {
        const auto registry = Enabled(enabled);
        const mediatool::DryRun run = Dry(incomplete_, {}, LongTemp());
        EXPECT_EQ(run.copy.made, enabled);
        EXPECT_THAT(run.hints, IsEmpty());
    }
}

TEST_F(LongPathTest, AreToldBothWaysOfAnotherWindows) {
    request_.machine.isWindows8OrNewer = true;
    const auto registry = Enabled(true);  // nobody asks
    const mediatool::DryRun run = Dry(incomplete_, {}, LongTemp());
    EXPECT_FALSE(run.copy.made);
    EXPECT_THAT(run.hints, ElementsAre(StartsWith("With LongPathsEnabled on that Windows, ")));
    request_.machine.longPaths = false;  // an older one has none
    EXPECT_THAT(Hints(incomplete_, {}, LongTemp()), IsEmpty());
}

}  // namespace
}  // namespace launcher::test
