// Volumes that are given as drives or folders of their own, volumes without content, those that are
// found where the launcher does not look, and those that are missing.

#include "tests/mediatool/validate/mistake_row.h"
#include "tests/support/links.h"

namespace launcher::test {
namespace {

using Media = SampleMedia;

// Sets of three volumes, each on a drive of its own, and what is wrong with them.
struct DiscRow {
    const char* name;
    void (*make)(SampleMedia& media);
    const char* changes;  // as Changes() tells them
    bool isThirdGiven = true;
};
void PrintTo(const DiscRow& row, std::ostream* stream) {
    *stream << row.name;
}

class VolumesOnDrives : public testing::TestWithParam<DiscRow> {};

TEST_P(VolumesOnDrives, AreCheckedForNumberAndIdentifier) {
    SampleMedia media(Layout::Siblings);
    media.Rename("../2", "../../two").Rename("../3", "../../three");
    GetParam().make(media);
    const MappedDrive first("n:", FromUtf8(media.Text()));
    const MappedDrive second("o:", FromUtf8(media.Text("../../two")));
    const MappedDrive third("p:", FromUtf8(media.Text("../../three")));
    mediatool::ValidateRequest request;
    request.folders = {ToUtf8(first.Root()), ToUtf8(second.Root())};
    if (GetParam().isThirdGiven) request.folders.push_back(ToUtf8(third.Root()));
    const Validation validation = mediatool::Validate(request);
    EXPECT_EQ(Changes(validation, Layout::Siblings), GetParam().changes) << Ids(validation);
    ExpectListed(validation, Layout::Siblings);
}

const DiscRow kDiscs[] = {
    {"Right", [](Media&) {}, "volumes-on-other-drives"},
    {"AForeignIdentifier", [](Media& m) { m.Marker("../../three/3.txt", "OTHER"); },
     "volume-id-differs volumes-on-other-drives"},
    {"AnIdentifierInOtherLetters", [](Media& m) { m.Marker("../../three/3.txt", "set"); },
     "volume-id-case-differs volumes-on-other-drives"},
    {"NoMarker", [](Media& m) { m.Remove("../../three/3.txt"); },
     "volume-marker-missing volumes-on-other-drives"},
    {"NoMarkerAtAll", [](Media& m) { m.Remove("../../two/2.txt").Remove("../../three/3.txt"); },
     "volume-marker-missing volumes-on-other-drives"},
    {"AMarkerWithAZero", [](Media& m) { m.Rename("../../three/3.txt", "../../three/03.txt"); },
     "volume-marker-leading-zeros volumes-on-other-drives"},
    {"AMarkerWithAMark",
     [](Media& m) { m.Write("../../three/3.txt", "\xEF\xBB\xBFMTBDIR=SET\r\n"); },
     "volume-marker-bom volumes-on-other-drives"},
    {"ADiscThatIsNotGiven", [](Media&) {}, "volume-missing volumes-on-other-drives", false},
    {"TheSameNumberTwice", [](Media& m) { m.Rename("../../three/3.txt", "../../three/2.txt"); },
     "volume-missing volume-number-twice volumes-on-other-drives"},
    {"ANumberBeyondTheCount", [](Media& m) { m.Rename("../../three/3.txt", "../../three/4.txt"); },
     "volume-beyond-count volume-missing volumes-on-other-drives"},
    {"AWholeOtherMedium",
     [](Media& m) {
         m.Remove("../../three/3.txt").Marker("../../three/1.txt", "OTHER");
         m.Write("../../three/setup.exe").Write("../../three/inst/volumes.txt", "2\r\n");
     },
     "count-file-in-later-volume folder-other-medium volume-missing volumes-on-other-drives"},
    {"AnEmptyDisc", [](Media& m) { m.Remove("../../three/content.bin"); },
     "volume-empty volumes-on-other-drives"},
    {"NoMarkerBesideMoreMissingOnes",
     [](Media& m) { m.Remove("../../three/3.txt").Write("inst/volumes.txt", "5\r\n"); },
     "volume-marker-missing volume-missing volumes-on-other-drives"},
    {"AMisnamedMarkerBeyondTheCount",
     [](Media& m) { m.Rename("../../three/3.txt", "../../three/04.txt"); },
     "volume-marker-missing volumes-on-other-drives"},
    {"AMisnamedMarkerOfTheFirst",
     [](Media& m) { m.Rename("../../three/3.txt", "../../three/01.txt"); },
     "volume-marker-missing volumes-on-other-drives"},
    {"AMarkerOfTheFirstBesideItsOwn", [](Media& m) { m.Marker("../../three/1.txt"); },
     "volume-number-twice volumes-on-other-drives"},
    {"ALauncherWithoutAMarker",
     [](Media& m) { m.Remove("../../three/3.txt").Write("../../three/setup.exe", "x"); },
     "folder-other-medium volume-missing volumes-on-other-drives"},
    {"ALauncherBesideAForeignMarker",
     [](Media& m) { m.Marker("../../three/3.txt", "OTHER").Write("../../three/setup.exe", "x"); },
     "folder-other-medium volume-missing volumes-on-other-drives"},
    {"ACountFileWithoutAMarker",
     [](Media& m) { m.Remove("../../three/3.txt").Write("../../three/inst/volumes.txt", "2\r\n"); },
     "count-file-in-later-volume folder-other-medium volume-missing volumes-on-other-drives"},
    {"TheMarkerOfTheFirst", [](Media& m) { m.Rename("../../three/3.txt", "../../three/1.txt"); },
     "volume-marker-missing volume-number-twice volumes-on-other-drives"},
};
INSTANTIATE_TEST_SUITE_P(Discs, VolumesOnDrives, testing::ValuesIn(kDiscs),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(VolumesOnDrives, NameTheFileThatIsMissing) {
    SampleMedia media(Layout::Siblings);
    media.Rename("../2", "../../two").Rename("../3", "../../three");
    media.Remove("../../three/3.txt");
    const Validation validation = media.Validate({"../../two", "../../three"});
    const std::vector<Finding> findings = validation.findings.Sorted();
    EXPECT_EQ(findings.front().id, "volume-marker-missing");
    EXPECT_EQ(findings.front().file, media.Text("../../three/3.txt"));
    EXPECT_EQ(findings.front().action, "Write the file with the line MTBDIR=SET.");
}

TEST(VolumesOnDrives, AreNamedOnceEachForANumberOfThree) {
    SampleMedia media(Layout::Siblings);
    media.Rename("../2", "../../two").Rename("../3", "../../three");
    media.Rename("../../three/3.txt", "../../three/2.txt").Marker("../../four/2.txt");
    std::vector<std::string> files;
    for (const Finding& finding :
         media.Validate({"../../two", "../../three", "../../four"}).findings.Sorted())
        if (finding.id == "volume-number-twice") files.push_back(finding.file);
    EXPECT_THAT(files, testing::UnorderedElementsAre(media.Text("../../three/2.txt"),
                                                     media.Text("../../four/2.txt")));
}

TEST(VolumesOnDrives, ThatAreAnotherMediumAreNamed) {
    SampleMedia media(Layout::Siblings);
    media.Rename("../2", "../../two").Rename("../3", "../../three");
    SampleMedia other(Layout::Siblings);
    other.Marker("1.txt", "OTHER");
    mediatool::ValidateRequest request;
    request.folders = {media.Text(), media.Text("../../two"), media.Text("../../three"),
                       other.Text()};
    const std::vector<Finding> findings = mediatool::Validate(request).findings.Sorted();
    EXPECT_EQ(findings.front().id, "folder-other-medium");
    EXPECT_EQ(findings.front().file, other.Text());
}

struct EmptyRow {
    const char* name;
    Layout layout;
    void (*make)(SampleMedia& media);
    bool isEmpty;
};
void PrintTo(const EmptyRow& row, std::ostream* stream) {
    *stream << row.name;
}

class EmptyVolumes : public testing::TestWithParam<EmptyRow> {};

TEST_P(EmptyVolumes, AreReported) {
    SampleMedia media(GetParam().layout);
    GetParam().make(media);
    const Validation validation = media.Validate();
    EXPECT_EQ(Changes(validation, GetParam().layout), GetParam().isEmpty ? "volume-empty" : "")
        << Ids(validation);
    ExpectListed(validation, GetParam().layout);
}

const EmptyRow kEmpty[] = {
    {"TheSecond", Layout::Siblings, [](Media& m) { m.Remove("../2/content.bin"); }, true},
    {"TheLast", Layout::Siblings, [](Media& m) { m.Remove("../3/content.bin"); }, true},
    {"InOuterVolumes", Layout::Outer, [](Media& m) { m.Remove("../../../9/media/3/content.bin"); },
     true},
    {"WithAnEmptyFolder", Layout::Siblings,
     [](Media& m) { m.Remove("../2/content.bin").MakeDir("../2/data"); }, true},
    {"WithALeftover", Layout::Siblings,
     [](Media& m) { m.Remove("../2/content.bin").Write("../2/Thumbs.db", "x"); }, true},
    {"ButForAFolder", Layout::Siblings,
     [](Media& m) { m.Remove("../2/content.bin").Write("../2/data/part.cab", "x"); }, false},
};
INSTANTIATE_TEST_SUITE_P(Volumes, EmptyVolumes, testing::ValuesIn(kEmpty),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(EmptyVolumes, MayHaveAListOfChecksums) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../2/content.bin").Write("../2/SHA256SUMS", "x");
    EXPECT_TRUE(Has(media.Validate(), "volume-empty"));
}

// Nothing is said of discs where the volumes are found.
const Mistake kLost[] = {
    {"volume-misplaced", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename("../2", "2").Rename("../3", "3"); }, "BelowVolumeOne"},
    {"volumes-elsewhere", Level::Warning, Layout::Siblings,
     [](Media& m) {
         m.Rename("../2", "2").Rename("../3", "3");
         m.Marker("2/2.txt", "OTHER").Marker("3/3.txt", "OTHER");
     },
     "BesideThoseOfAnotherSet"},
    {"volume-misplaced", Level::Error, Layout::Siblings,
     [](Media& m) { m.MakeDir("../Disk").Rename("../2", "../Disk/2").Rename("../3", "../Disk/3"); },
     "InAFolderBeside"},
    {"volume-misplaced", Level::Error, Layout::Siblings,
     [](Media& m) { m.MakeDir("../Disk").Rename("../2", "../Disk/2").Remove("../3"); },
     "BesideAMissingOne", "volume-missing"},
    {"volume-misplaced", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename("../2", "2").Marker("../Disk/2/2.txt").Remove("../3"); },
     "InTwoFolders", "volume-missing"},
    {"volume-misplaced", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename("../2", "../../2").Rename("../3", "3"); }, "HigherAndLower"},
    {"volume-too-deep", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename("../2", "../x").MakeDir("../2").Rename("../x", "../2/Disc 2"); }},
    {"volume-too-deep", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename("../2", "../../2").Rename("../3", "../../3"); }, "OfVolumeOne"},
    {"volume-too-deep", Level::Error, Layout::Outer,
     [](Media& m) {
         m.Rename("../../../8", "../../../x").MakeDir("../../../8");
         m.Rename("../../../x", "../../../8/8");
     },
     "OfAnOuterVolume"},
    {"volume-marker-wrong-number", Level::Error, Layout::Outer,
     [](Media& m) {
         m.Rename("../../../8/media/2/2.txt", "../../../8/media/2/3.txt");
         m.Rename("../../../9/media/3/3.txt", "../../../9/media/3/2.txt");
     },
     "SwappedInOuterVolumes"},
    {"volume-not-unpacked", Level::Error, Layout::Siblings,
     [](Media& m) {
         m.Remove("../2").Remove("../3").Write("../2.zip", "PK").Write("../Disc-3.ISO", "x");
     }},
    {"volume-not-unpacked", Level::Error, Layout::Siblings,
     [](Media& m) { m.Remove("../2").Remove("../3").Write("../2.zip", "PK"); }, "BesideAMissingOne",
     "volume-missing"},
    {"volume-missing", Level::Error, Layout::Siblings,
     [](Media& m) {
         m.Remove("../3").MakeDir("../3.zip").Write("../Disc-3.doc", "x");
         m.Write("../disc.iso", "x");
     },
     "BesideWhatOnlyLooksPacked"},
};
class LostVolumeTest : public MistakeTest {};
TEST_P(LostVolumeTest, IsFoundByItsName) {
    ExpectToBeFound(GetParam());
}
INSTANTIATE_TEST_SUITE_P(Lost, LostVolumeTest, testing::ValuesIn(kLost), MistakeName);

// There they are at the place where the launcher looks, if it is started from there. What is beside
// them is a part of volume 1.
TEST(VolumesAtADrivesRoot, AreNotLost) {
    SampleMedia media(Layout::Siblings);
    media.Rename("../2", "2").Remove("../3").Write("3.zip", "PK");
    const MappedDrive drive("n:", FromUtf8(media.Text()));
    mediatool::ValidateRequest request;
    request.folders = {ToUtf8(drive.Root())};
    const Validation validation = mediatool::Validate(request);
    EXPECT_EQ(Changes(validation, Layout::Siblings), "volume-missing volumes-at-drive-root")
        << Ids(validation);
    ExpectListed(validation, Layout::Siblings);
}

TEST(StrayMarkers, MayBeAtTheRootOfADrive) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../2").Remove("../3").Write("../7.txt", "notes of a meeting");
    const MappedDrive drive("n:", FromUtf8(media.Text("..")));
    mediatool::ValidateRequest request;
    request.folders = {ToUtf8(drive.Root() / "1")};
    EXPECT_EQ(Changes(mediatool::Validate(request), Layout::Siblings),
              "outer-marker-stray volumes-elsewhere");
}

// A volume comes with its outer volume: the folder moves, not the marker.
TEST(SwappedVolumes, InOuterVolumesTradeTheirFolders) {
    SampleMedia media(Layout::Outer);
    media.Rename("../../../8/media/2/2.txt", "../../../8/media/2/3.txt");
    media.Rename("../../../9/media/3/3.txt", "../../../9/media/3/2.txt");
    EXPECT_EQ(media.Validate().findings.Sorted().front().action,
              "Rename the folder to " + media.Text("../../../9/media/3") +
                  ", and leave the marker as it is.");
}

// The launcher's own search asks for what a listing names, and so does validate.
TEST(DamagedCounts, AreNotFollowedToTheEnd) {
    SampleMedia media(Layout::Siblings);
    media.Write("inst/volumes.txt", "2147483647\r\n").Rename("../3", "../Disk");
    EXPECT_EQ(Changes(media.Validate(), Layout::Siblings),
              "count-file-absurd volume-folder-named-otherwise volume-missing");
}

std::vector<Finding> Missing(const Validation& validation, const std::string& id) {
    std::vector<Finding> findings = validation.findings.Sorted();
    std::erase_if(findings, [&id](const Finding& finding) { return finding.id != id; });
    return findings;
}

struct Absence {
    Layout layout;
    const char* count;
    const char* id;
    const char* what;
};
void PrintTo(const Absence& row, std::ostream* stream) {
    *stream << row.id << " of " << row.count;
}

class MissingVolumes : public testing::TestWithParam<Absence> {};

// Of the three volumes that are counted in the sample, all are there.
TEST_P(MissingVolumes, AreCountedInOneFinding) {
    SampleMedia media(GetParam().layout);
    media.Write("inst/volumes.txt", std::string(GetParam().count) + "\r\n");
    const Validation validation = media.Validate();
    const std::vector<Finding> missing = Missing(validation, GetParam().id);
    ASSERT_EQ(missing.size(), 1u) << Ids(validation);
    EXPECT_EQ(missing.front().what, GetParam().what);
    ExpectListed(validation, GetParam().layout);
}

INSTANTIATE_TEST_SUITE_P(
    Layouts, MissingVolumes,
    testing::Values(Absence{Layout::Siblings, "4", "volume-missing", "Volume 4 is missing."},
                    Absence{Layout::Siblings, "6", "volume-missing",
                            "3 volumes are missing: 4, 5 and 6."},
                    Absence{Layout::Siblings, "1000", "volume-missing",
                            "997 volumes are missing: 4, 5, 6, 7, 8 and so on."},
                    Absence{Layout::OneFolder, "2147483647", "volume-missing",
                            "2147483644 volumes are missing: 4, 5, 6, 7, 8 and so on."},
                    Absence{Layout::Outer, "5", "outer-volume-missing",
                            "2 outer volumes are missing: 10 and 11."},
                    Absence{Layout::Outer, "2147483647", "outer-volume-missing",
                            "2147483644 outer volumes are missing: 10, 11, 12, 13, 14 and so on."}),
    [](const auto& row) {
        return mediatool::LayoutName(row.param.layout).substr(0, 3) + row.param.count;
    });

// What is there beyond the last that is looked at one by one.
TEST(MissingVolumesOfMany, AreNotThoseThatAreThere) {
    SampleMedia media(Layout::Siblings);
    media.Write("inst/volumes.txt", "1000\r\n").Marker("../999/999.txt");
    EXPECT_EQ(Missing(media.Validate(), "volume-missing").front().what,
              "996 volumes are missing: 4, 5, 6, 7, 8 and so on.");
}

// Then the marker may be one that only looks like that of an outer volume.
TEST(MissingVolumes, OfAllOuterOnesMayBeNoneAtAll) {
    constexpr char kId[] = "outer-volume-missing";
    SampleMedia media(Layout::Outer);
    media.Remove("../../../8");
    EXPECT_EQ(Missing(media.Validate(), kId).front().action,
              "Put it into the folder 8 beside outer volume 7.");
    media.Remove("../../../9");
    const Finding missing = Missing(media.Validate(), kId).front();
    EXPECT_EQ(missing.what, "2 outer volumes are missing: 8 and 9.");
    EXPECT_EQ(missing.action,
              "Put each into a folder named by its number beside outer volume 7; or delete 7.txt, "
              "if the disc set is in no outer volume.");
}

}  // namespace
}  // namespace launcher::test
