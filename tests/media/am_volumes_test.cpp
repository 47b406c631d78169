#include <gmock/gmock.h>

#include "tests/media/volumes_fixture.h"

namespace launcher::test {
namespace {

// Volume 1 in "Q/7/R/V", the marker of its outer volume in "Q/7".
class AmVolumesTest : public VolumesTest {
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

    // The outcome for Nested(), after the messages up to the first outer volume's.
    Outcome NestedOutcome(int count, std::vector<std::string> volumes,
                          const std::vector<Message>& messages) const {
        const bool complete = static_cast<int>(volumes.size()) == count - 1;
        Outcome outcome{
            .result = complete ? count : 0,
            .skipTemporaryCopy = complete,
            .volumes = std::move(volumes),
            .messages = {Composed(std::to_string(count)), Found(1, "Q/7/R/V"), FoundAm(7, "Q/7")},
            .volumesCount = std::to_string(count),
            .mtbDir = "Y",
            .firstAmVolume = "7",
            .firstAmPath = At("Q/7"),
            .amRelativePath = "R"};
        outcome.messages.insert(outcome.messages.end(), messages.begin(), messages.end());
        return outcome;
    }

    static Message Foreign(const std::string& volume, const std::string& id, const std::string& dir,
                           const std::string& ownId) {
        return Warning(volume + " of " + id + " found in " + dir + " instead of " + ownId);
    }
    // The outcome when no outer volume is recognised.
    Outcome OnlyVolumeOne(int count, const std::string& dir) const {
        return {.messages = {Composed(std::to_string(count)), Found(1, dir)},
                .volumesCount = std::to_string(count),
                .mtbDir = "X"};
    }
};

TEST_F(AmVolumesTest, HoldTheVolumesUnderTheSamePath) {
    Nested(3);
    Outer(8, "Y", 2, "X");
    Outer(9, "Y", 3, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), NestedOutcome(3, {At("Q/8/R/2"), At("Q/9/R/3")},
                                                    {FoundAm(8, "Q/8"), Found(2, "Q/8/R/2"),
                                                     FoundAm(9, "Q/9"), Found(3, "Q/9/R/3")}));
}

TEST_F(AmVolumesTest, AreNotLookedForWhenThereIsNoMarker) {
    VolumeOne("Q/7/R/V", 2);
    Outer(8, "Y", 2, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), OnlyVolumeOne(2, "Q/7/R/V"));
}

TEST_F(AmVolumesTest, EndSilentlyWhenOnlyTheFirstIsThere) {
    Nested(2);
    EXPECT_EQ(Resolve(At("Q/7/R/V")), NestedOutcome(2, {}, {}));
}

TEST_F(AmVolumesTest, MayHoldNothingInside) {
    Nested(2);
    Marker("Q/8", 8, "Y");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), NestedOutcome(2, {}, {FoundAm(8, "Q/8")}));
}

TEST_F(AmVolumesTest, MissVolumes) {
    Nested(4);
    Outer(9, "Y", 3, "X");
    Marker("Q/8/R/2", 2, "X");
    EXPECT_EQ(
        Resolve(At("Q/7/R/V")),
        NestedOutcome(4, {At("Q/9/R/3")}, {FoundAm(9, "Q/9"), Found(3, "Q/9/R/3"), Missing()}));
}

TEST_F(AmVolumesTest, OfAnotherSetAreNamedAndNotEntered) {
    Nested(3);
    Outer(8, "y", 2, "X");
    Outer(9, "Y", 3, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), NestedOutcome(3, {At("Q/9/R/3")},
                                                    {Foreign("AM volume 8", "y", At("Q/8"), "Y"),
                                                     FoundAm(9, "Q/9"), Found(3, "Q/9/R/3")}));
}

TEST_F(AmVolumesTest, MayHoldAForeignVolume) {
    Nested(3);
    Outer(8, "Y", 2, "Y");
    Outer(9, "Y", 3, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")),
              NestedOutcome(3, {At("Q/9/R/3")},
                            {FoundAm(8, "Q/8"), Foreign("Volume 2", "Y", At("Q/8/R/2"), "X"),
                             FoundAm(9, "Q/9"), Found(3, "Q/9/R/3")}));
}

TEST_F(AmVolumesTest, TakeUnreadableMarkersForMissing) {
    Nested(4);
    Outer(8, "Y", 2, "X");
    Outer(9, "Y", 3, "X");
    Marker("Q/10", 10, "Y");
    folder.MakeDir("Q/10/R/4/4.txt");
    const FileHandle outerLock = Lock("Q/8/8.txt");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), NestedOutcome(4, {At("Q/9/R/3")},
                                                    {FoundAm(9, "Q/9"), Found(3, "Q/9/R/3"),
                                                     FoundAm(10, "Q/10"), Missing()}));
}

TEST_F(AmVolumesTest, NeedAnIdInTheFirstMarker) {
    const Outcome unreadable{
        .messages = {Composed("2"), Found(1, "Q/7/R/V"),
                     Warning("Cannot open 7.txt in " + At("Q/7")),
                     Plain("Please make sure you copied and/or extracted everything properly.")},
        .volumesCount = "2",
        .mtbDir = "X"};
    Nested(2);
    Outer(8, "Y", 2, "X");
    {
        const FileHandle lock = Lock("Q/7/7.txt");
        EXPECT_EQ(Resolve(At("Q/7/R/V")), unreadable);
    }
    Marker("Q/7", 7, "");
    EXPECT_EQ(Resolve(At("Q/7/R/V")), unreadable);
}

TEST_F(AmVolumesTest, MayHoldVolumeOneRightBelow) {
    VolumeOne("Q/1/V", 2);
    Marker("Q/1", 1, "Y");
    Marker("Q/2", 2, "Y");
    Marker("Q/2/2", 2, "X");
    EXPECT_EQ(Resolve(At("Q/1/V")),
              (Outcome{.result = 2,
                       .skipTemporaryCopy = true,
                       .volumes = {At("Q/2/2")},
                       .messages = {Composed("2"), Found(1, "Q/1/V"), FoundAm(1, "Q/1"),
                                    FoundAm(2, "Q/2"), Found(2, "Q/2/2")},
                       .volumesCount = "2",
                       .mtbDir = "Y",
                       .firstAmVolume = "1",
                       .firstAmPath = At("Q/1"),
                       .amRelativePath = ""}));
}

TEST_F(AmVolumesTest, AreFoundManyFoldersUp) {
    const std::string relative = "a/b/c/d/e/f/g/h/i/j/k/l";
    VolumeOne("Q/99/" + relative + "/V", 2);
    Marker("Q/99", 99, "Y");
    Marker("Q/100", 100, "Y");
    Marker("Q/100/" + relative + "/2", 2, "X");
    const Outcome outcome = Resolve(At("Q/99/" + relative + "/V"));
    EXPECT_EQ(outcome.result, 2);
    EXPECT_THAT(outcome.volumes, testing::ElementsAre(At("Q/100/" + relative + "/2")));
    EXPECT_EQ(outcome.firstAmVolume, "99");
    EXPECT_EQ(outcome.amRelativePath, "a\\b\\c\\d\\e\\f\\g\\h\\i\\j\\k\\l");
}

TEST_F(AmVolumesTest, OfTheNearestFolderWin) {
    Nested(2);
    Marker("Q", 3, "Z");
    Outer(8, "Y", 2, "X");
    EXPECT_EQ(Resolve(At("Q/7/R/V")),
              NestedOutcome(2, {At("Q/8/R/2")}, {FoundAm(8, "Q/8"), Found(2, "Q/8/R/2")}));
}

TEST_F(AmVolumesTest, OfTheNearestFolderWinEvenWithoutAnId) {
    Nested(2);
    Outer(8, "Y", 2, "X");
    folder.Write("Q/7/R/50.txt", "no id");
    EXPECT_EQ(Resolve(At("Q/7/R/V")).messages[2], Warning("Cannot open 50.txt in " + At("Q/7/R")));
}

TEST_F(AmVolumesTest, AreNumberedFromTheFirstToTheEnd) {
    constexpr int kCount = 120;
    VolumeOne("Q/99/V", kCount);
    Marker("Q/99", 99, "Y");
    std::vector<std::string> expected;
    for (int j = 2; j <= kCount; ++j) {
        const std::string outer = "Q/" + std::to_string(98 + j);
        Marker(outer, 98 + j, "Y");
        Marker(outer + "/" + std::to_string(j), j, "X");
        expected.push_back(At(outer + "/" + std::to_string(j)));
    }
    const Outcome outcome = Resolve(At("Q/99/V"));
    EXPECT_EQ(outcome.result, kCount);
    EXPECT_EQ(outcome.volumes, expected);
}

// A marker's name and the number it gives the first outer volume; 0 when it is no marker.
struct NameCase {
    const char* name;
    int number;
};

void PrintTo(const NameCase& value, std::ostream* out) {
    *out << '"' << value.name << '"';
}

class AmMarkerName : public AmVolumesTest, public testing::WithParamInterface<NameCase> {};

TEST_P(AmMarkerName, IsOneOrTwoCharactersThatBeginWithANumber) {
    const auto [name, number] = GetParam();
    VolumeOne("Q/A/V", 2);
    folder.Write(std::string("Q/A/") + name, "MTBDIR=Y\n");
    if (number == 0) {
        EXPECT_EQ(Resolve(At("Q/A/V")), OnlyVolumeOne(2, "Q/A/V"));
        return;
    }
    const std::string next = "Q/" + std::to_string(number + 1);
    Marker(next, number + 1, "Y");
    Marker(next + "/2", 2, "X");
    EXPECT_EQ(Resolve(At("Q/A/V")),
              (Outcome{.result = 2,
                       .skipTemporaryCopy = true,
                       .volumes = {At(next + "/2")},
                       .messages = {Composed("2"), Found(1, "Q/A/V"), FoundAm(number, "Q/A"),
                                    FoundAm(number + 1, next), Found(2, next + "/2")},
                       .volumesCount = "2",
                       .mtbDir = "Y",
                       .firstAmVolume = std::to_string(number),
                       .firstAmPath = At("Q/A")}));
}

INSTANTIATE_TEST_SUITE_P(
    , AmMarkerName,
    testing::Values(NameCase{"1.txt", 1}, NameCase{"7.txt", 7}, NameCase{"42.txt", 42},
                    NameCase{"99.txt", 99}, NameCase{"07.txt", 7}, NameCase{"1a.txt", 1},
                    NameCase{"7 .txt", 7}, NameCase{" 7.txt", 7}, NameCase{"+7.txt", 7},
                    NameCase{"7.TXT", 0}, NameCase{"7.tXt", 0}, NameCase{"100.txt", 0},
                    NameCase{"0.txt", 0}, NameCase{"00.txt", 0}, NameCase{"-7.txt", 0},
                    NameCase{"ab.txt", 0}, NameCase{"a1.txt", 0}, NameCase{"a.txt", 0},
                    NameCase{".txt", 0}, NameCase{"7.tx", 0}, NameCase{"7.txt2", 0},
                    NameCase{"7txt", 0}, NameCase{"7_txt", 0}, NameCase{"7.txtx.txt", 0},
                    NameCase{"\xC3\xA9.txt", 0}));

TEST_F(AmVolumesTest, MarkersAreFilesOnly) {
    VolumeOne("Q/A/V", 2);
    folder.MakeDir("Q/A/7.txt");
    EXPECT_EQ(Resolve(At("Q/A/V")), OnlyVolumeOne(2, "Q/A/V"));
}

TEST_F(AmVolumesTest, MarkersInVolumeOneAreItsOwn) {
    VolumeOne("Q/A/V", 2);
    Marker("Q/A/V", 7, "Y");
    EXPECT_EQ(Resolve(At("Q/A/V")), OnlyVolumeOne(2, "Q/A/V"));
}

}  // namespace
}  // namespace launcher::test
