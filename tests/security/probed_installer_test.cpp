// What the launcher hands on to the installer's process besides its command line and environment:
// nothing that a process does not have anyway.

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "tests/e2e/support/launcher_test.h"
#include "tests/security/support/hostile_libraries.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::EndsWith;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;
using testing::StartsWith;

namespace stdfs = std::filesystem;

class ProbedInstaller : public LauncherTest {
  protected:
    // The lines of a report, of an installer that the launcher started; sorted, since Windows gives
    // out the values of handles in no order.
    std::vector<std::string> RunFrom(Media media, const std::vector<std::string>& arguments = {}) {
        PutProbe(FromUtf8(media.InstallerText("win_b64")));
        return LinesAfter(StartOf(media, arguments));
    }
    // Of the same program, started without the launcher.
    std::vector<std::string> RunAlone() {
        const stdfs::path program = scratch.Dir() / "alone" / kGuiInstaller;
        PutProbe(program);
        return LinesAfter({program, {}, variables, scratch.Dir()});
    }
    static std::vector<std::string> StartingWith(const std::string& word,
                                                 std::vector<std::string> lines) {
        std::erase_if(lines, [&](const auto& line) { return !line.starts_with(word); });
        return lines;
    }

  private:
    static void PutProbe(const stdfs::path& program) {
        stdfs::create_directories(program.parent_path());
        stdfs::copy_file(BuiltFile(PROBE_INSTALLER), program,
                         stdfs::copy_options::overwrite_existing);
    }
    std::vector<std::string> LinesAfter(LauncherStart start) const {
        const stdfs::path report = scratch.Dir() / "probe";
        stdfs::remove(report);
        start.variables["PROBE_REPORT"] = ToUtf8(report);
        RunToEnd(start);
        std::istringstream text(ReadFile(report));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);)
            lines.push_back(line);
        std::ranges::sort(lines);
        return lines;
    }
};

TEST_F(ProbedInstaller, GetsTheProcessThatItWouldGetWithoutTheLauncher) {
    EXPECT_EQ(RunFrom(UsualMedia()), RunAlone());
}

// The run that reads, lists, copies and writes files, and asks for the token.
TEST_F(ProbedInstaller, GetsNoMoreAfterACopy) {
    EXPECT_EQ(RunFrom(MediaToCopy(), {"-wait"}), RunAlone());
}

// The run that reads the markers of volumes, and lists folders for them.
TEST_F(ProbedInstaller, GetsNoMoreFromASplitMedia) {
    Media media(scratch.Dir() / "1");
    media.AddInstaller("win_b64").MakeSplit(2, "SET");
    WriteVolumeMarker(scratch.Dir() / "2", 2, "SET");
    EXPECT_EQ(RunFrom(media, {"-wait"}), RunAlone());
}

// Those that the caller wants inherited are inherited.
TEST_F(ProbedInstaller, GetsTheStreamsOfTheCaller) {
    EXPECT_THAT(
        StartingWith("handle", RunFrom(UsualMedia())),
        testing::UnorderedElementsAre(AllOf(StartsWith("handle File"), EndsWith("\\output")),
                                      AllOf(StartsWith("handle File"), EndsWith("\\errors"))));
}

TEST_F(ProbedInstaller, GetsNoLibraryFolder) {
    EXPECT_THAT(StartingWith("library folder", RunFrom(UsualMedia())),
                testing::ElementsAre("library folder "));
}

// Its search for libraries is the ordinary one: its own folder, the current one, and "PATH".
TEST_F(ProbedInstaller, StillFindsLibrariesWhereWindowsDoes) {
    const Media media = UsualMedia();
    const stdfs::path bin = FromUtf8(media.InstallerText("win_b64")).parent_path();
    PlantHostileLibraries(bin, {"beside"});
    PlantHostileLibraries(scratch.Dir(), {"current"});
    PlantHostileLibraries(scratch.Dir() / "tools", {"onpath"});
    variables["PATH"] = scratch.Text("tools");
    variables["PROBE_LIBRARIES"] = "beside.dll;current.dll;onpath.dll;nowhere.dll";
    EXPECT_THAT(StartingWith("library", RunFrom(media)),
                IsSupersetOf({"library beside.dll " + ToUtf8(bin / "beside.dll"),
                              "library current.dll " + scratch.Text("current.dll"),
                              "library onpath.dll " + scratch.Text("tools\\onpath.dll"),
                              std::string("library nowhere.dll ")}));
}

}  // namespace
}  // namespace launcher::test
