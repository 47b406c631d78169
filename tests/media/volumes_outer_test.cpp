#include <windows.h>

#include <utility>

#include "fs/encoding.h"
#include "fs/path.h"
#include "launcher/base/launch_options.h"
#include "media/volume_search.h"
#include "tests/media/volumes_fixture.h"
#include "tests/support/hook.h"
#include "tests/support/journal.h"

namespace launcher::test {
namespace {

// Volume 1 in "Q/7/R/V", the marker of its outer volume in "Q/7".
class OuterVolumesTest : public VolumesTest {
  protected:
    void Nested(int count) const {
        VolumeOne("Q/7/R/V", count);
        Marker("Q/7", 7, "Y");
    }
    // Outer volume `m` with volume `j` inside.
    void Outer(int m, const std::string& outerId, int j, const std::string& id) const {
        const std::string outer = "Q/" + std::to_string(m);
        Marker(outer, m, outerId);
        Marker(outer + "/R/" + std::to_string(j), j, id);
    }

    // The outcome for Nested(), after the messages up to the first outer volume's. With `volumes`,
    // the media is complete.
    Outcome NestedOutcome(int count, const std::vector<std::string>& messages,
                          const std::vector<std::string>& volumes = {}) const {
        Outcome outcome = Failed(count, {Found(1, "Q/7/R/V"), FoundOuter(7, "Q/7")});
        outcome.messages.insert(outcome.messages.end(), messages.begin(), messages.end());
        const bool complete = static_cast<int>(volumes.size()) == count - 1;
        outcome.result = complete ? count : 0;
        outcome.skipTemporaryCopy = complete;
        outcome.volumes = volumes;
        outcome.mtbDir = "Y";
        outcome.firstOuterVolume = "7";
        outcome.firstOuterPath = At("Q/7");
        outcome.outerRelativePath = "R";
        return outcome;
    }
};

TEST_F(OuterVolumesTest, HoldTheVolumesUnderTheSamePath) {
    Nested(3);
    Outer(8, "Y", 2, "X");
    Outer(9, "Y", 3, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), NestedOutcome(3,
                                                    {FoundOuter(8, "Q/8"), Found(2, "Q/8/R/2"),
                                                     FoundOuter(9, "Q/9"), Found(3, "Q/9/R/3")},
                                                    {At("Q/8/R/2"), At("Q/9/R/3")}));
}

TEST_F(OuterVolumesTest, AreToldBetweenTheMessages) {
    Nested(2);
    Outer(8, "Y", 2, "X");
    journal.clear();
    LaunchOptions options(0, nullptr, "", true, false);
    options.mediaDir = Path(At("Q/7/R/V"));
    FindVolumes(options, [](const std::string& name, const std::string& value) {
        journal.push_back(name + "=" + value);
    });
    EXPECT_THAT(journal,
                testing::ElementsAre(
                    Composed("2"), "ZEPAdmInstVolumesCount=2", "ZEPAdmInstMTBDIR=X",
                    Found(1, "Q/7/R/V"), "ZEPAdmInstMTBDIR=Y", FoundOuter(7, "Q/7"),
                    "ZEPAdmInstFirstAMVolume=7", "ZEPAdmInstFirstAMPath=" + At("Q/7"),
                    "ZEPAdmInstAMRelativePath=R", FoundOuter(8, "Q/8"), Found(2, "Q/8/R/2")));
}

TEST_F(OuterVolumesTest, AreNotLookedForWhenThereIsNoMarker) {
    VolumeOne("Q/7/R/V", 2);
    Outer(8, "Y", 2, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), Failed(2, {Found(1, "Q/7/R/V")}));
}

TEST_F(OuterVolumesTest, EndSilentlyWhenOnlyTheFirstIsThere) {
    Nested(2);
    EXPECT_EQ(Resolve(At("Q/7/R/V")), NestedOutcome(2, {}));
}

TEST_F(OuterVolumesTest, MayHoldNothingInside) {
    Nested(2);
    Marker("Q/8", 8, "Y");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), NestedOutcome(2, {FoundOuter(8, "Q/8")}));
}

TEST_F(OuterVolumesTest, MissVolumes) {
    Nested(4);
    Outer(9, "Y", 3, "X");
    Marker("Q/8/R/2", 2, "X");
    EXPECT_EQ(
        Resolve(At("Q/7/R/V")),
        NestedOutcome(4, {FoundOuter(9, "Q/9"), Found(3, "Q/9/R/3"), Missing()}, {At("Q/9/R/3")}));
}

TEST_F(OuterVolumesTest, OfAnotherSetAreNamedAndNotEntered) {
    Nested(3);
    Outer(8, "y", 2, "X");
    Outer(9, "Y", 3, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), NestedOutcome(3,
                                                    {Foreign("AM volume 8", "y", "Q/8", "Y"),
                                                     FoundOuter(9, "Q/9"), Found(3, "Q/9/R/3")},
                                                    {At("Q/9/R/3")}));
}

TEST_F(OuterVolumesTest, MayHoldAForeignVolume) {
    Nested(3);
    Outer(8, "Y", 2, "Y");
    Outer(9, "Y", 3, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")),
              NestedOutcome(3,
                            {FoundOuter(8, "Q/8"), Foreign("Volume 2", "Y", "Q/8/R/2", "X"),
                             FoundOuter(9, "Q/9"), Found(3, "Q/9/R/3")},
                            {At("Q/9/R/3")}));
}

TEST_F(OuterVolumesTest, TakeUnreadableMarkersForMissing) {
    Nested(4);
    Outer(8, "Y", 2, "X");
    Outer(9, "Y", 3, "X");
    Marker("Q/10", 10, "Y");
    folder_.MakeDir("Q/10/R/4/4.txt");
    const FileHandle outerLock = Lock("Q/8/8.txt");
    EXPECT_EQ(Resolve(At("Q/7/R/V")),
              NestedOutcome(
                  4, {FoundOuter(9, "Q/9"), Found(3, "Q/9/R/3"), FoundOuter(10, "Q/10"), Missing()},
                  {At("Q/9/R/3")}));
}

TEST_F(OuterVolumesTest, NeedAnIdInTheFirstMarker) {
    const Outcome unreadable =
        Failed(2, {Found(1, "Q/7/R/V"), Warning("Cannot open 7.txt in " + At("Q/7")),
                   Plain("Please make sure you copied and/or extracted everything properly.")});
    Nested(2);
    Outer(8, "Y", 2, "X");
    {
        const FileHandle lock = Lock("Q/7/7.txt");
        EXPECT_EQ(Resolve(At("Q/7/R/V")), unreadable);
    }
    Marker("Q/7", 7, "");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), unreadable);
}

TEST_F(OuterVolumesTest, AreFoundManyFoldersUp) {
    const std::string relative = "a/b/c/d/e/f/g/h/i/j/k/l";
    VolumeOne("Q/99/" + relative + "/V", 2);
    Marker("Q/99", 99, "Y");
    Marker("Q/100", 100, "Y");
    Marker("Q/100/" + relative + "/2", 2, "X");
    const Outcome outcome = Resolve(At("Q/99/" + relative + "/V"));
    EXPECT_EQ(outcome.result, 2);
    EXPECT_THAT(outcome.volumes, testing::ElementsAre(At("Q/100/" + relative + "/2")));
    EXPECT_EQ(outcome.firstOuterVolume, "99");
    EXPECT_EQ(outcome.outerRelativePath, "a\\b\\c\\d\\e\\f\\g\\h\\i\\j\\k\\l");
}

TEST_F(OuterVolumesTest, OfTheNearestFolderWin) {
    Nested(2);
    Marker("Q", 3, "Z");
    Outer(8, "Y", 2, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")),
              NestedOutcome(2, {FoundOuter(8, "Q/8"), Found(2, "Q/8/R/2")}, {At("Q/8/R/2")}));
}

TEST_F(OuterVolumesTest, OfTheNearestFolderWinEvenWithoutAnId) {
    Nested(2);
    Outer(8, "Y", 2, "X");
    folder_.Write("Q/7/R/50.txt", "no id");
    EXPECT_EQ(Resolve(At("Q/7/R/V")).messages[2], Warning("Cannot open 50.txt in " + At("Q/7/R")));
}

// Volume 1 lies right below its outer volume here.
TEST_F(OuterVolumesTest, HaveMarkersNamedByOneOrTwoCharactersThatBeginWithANumber) {
    const std::pair<const char*, int> rows[] = {
        std::pair{"1.txt", 1},   std::pair{"42.txt", 42},     std::pair{"99.txt", 99},
        std::pair{"07.txt", 7},  std::pair{"1a.txt", 1},      std::pair{"7 .txt", 7},
        std::pair{" 7.txt", 7},  std::pair{"+7.txt", 7},      std::pair{"7.TXT", 0},
        std::pair{"100.txt", 0}, std::pair{"0.txt", 0},       std::pair{"00.txt", 0},
        std::pair{"-7.txt", 0},  std::pair{"ab.txt", 0},      std::pair{"a1.txt", 0},
        std::pair{".txt", 0},    std::pair{"7.tx", 0},        std::pair{"7.txt2", 0},
        std::pair{"7_txt", 0},   std::pair{"\xC3\xA9.txt", 0}};
    for (const auto& [name, number] : rows) {
        SCOPED_TRACE(name);
        // Each in a folder of its own, whose name is the first marker's of no other.
        const std::string q = std::string("Q ") + name + "/";
        VolumeOne(q + "A/V", 2);
        folder_.Write(q + "A/" + name, "MTBDIR=Y\n");
        const std::string next = q + std::to_string(number + 1);
        Marker(next, number + 1, "Y");
        Marker(next + "/2", 2, "X");
        Outcome expected = Failed(2, {Found(1, q + "A/V")});
        if (number > 0) {
            for (const std::string& message :
                 {FoundOuter(number, q + "A"), FoundOuter(number + 1, next), Found(2, next + "/2")})
                expected.messages.push_back(message);
            expected.result = 2;
            expected.skipTemporaryCopy = true;
            expected.volumes = {At(next + "/2")};
            expected.mtbDir = "Y";
            expected.firstOuterVolume = std::to_string(number);
            expected.firstOuterPath = At(q + "A");
        }
        EXPECT_EQ(Resolve(At(q + "A/V")), expected);
    }
}

TEST_F(OuterVolumesTest, MarkersAreFilesOnly) {
    VolumeOne("Q/A/V", 2);
    folder_.MakeDir("Q/A/7.txt");
    EXPECT_EQ(Resolve(At("Q/A/V")), Failed(2, {Found(1, "Q/A/V")}));
}

TEST_F(OuterVolumesTest, MarkersInVolumeOneAreItsOwn) {
    VolumeOne("Q/A/V", 2);
    Marker("Q/A/V", 7, "Y");
    EXPECT_EQ(Resolve(At("Q/A/V")), Failed(2, {Found(1, "Q/A/V")}));
}

// Such a path is relative; the test's folder stands in for the current one.
TEST_F(OuterVolumesTest, AreNotInAFolderThatReadsAsNothing) {
    const std::string media = "''''\\folder\\V";  // its parent's parent is two quotes
    VolumeOne("V", 2);
    const auto inFolder = [&](std::wstring path) {
        const std::wstring prefix = ToWide(Parent(Path(media)).Text());
        if (path.starts_with(prefix)) path.replace(0, prefix.size(), folder_.Dir().wstring());
        return path;
    };
    const Hook<decltype(&GetFileAttributesW)> attributes(
        "GetFileAttributesW",
        [&](auto real, LPCWSTR path) { return real(inFolder(path).c_str()); });
    const Hook<decltype(&CreateFileW)> open("CreateFileW",
                                            [&](auto real, LPCWSTR path, auto... rest) {
                                                return real(inFolder(path).c_str(), rest...);
                                            });
    EXPECT_EQ(Resolve(media), Failed(2, {Plain("Volume 1 found in: " + media)}));
}

}  // namespace
}  // namespace launcher::test
