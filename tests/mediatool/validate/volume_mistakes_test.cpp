// Every kind of mistake in the volumes of a split medium and their markers.

#include "mediatool/validate/validate.h"
#include "tests/mediatool/validate/mistake_row.h"

namespace launcher::test {
namespace {

constexpr char kTwo[] = "../2/2.txt";

class VolumeMistakeTest : public MistakeTest {};

TEST_P(VolumeMistakeTest, IsFoundByItsName) {
    ExpectToBeFound(GetParam());
}

using Media = SampleMedia;

const Mistake kTextMistakes[] = {
    {"volume-marker-bom", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "\xEF\xBB\xBFMTBDIR=SET\r\n"); }},
    {"volume-marker-bom", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "\xEF\xBB\xBF# Volume 2\r\nMTBDIR=SET\r\n"); }, "OnAnotherLine"},
    {"volume-marker-utf16", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, std::string_view("\xFF\xFEM\0T\0", 6)); }},
    {"volume-marker-utf16", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, std::string_view("M\0T\0", 4)); }, "WithoutAMark"},
    {"volume-marker-empty", Level::Error, Layout::Siblings, [](Media& m) { m.Write(kTwo, ""); }},
    {"volume-marker-no-id", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "SET\r\n"); }},
    {"volume-marker-no-id", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIX=SET\r\n"); }, "AfterAnotherWord"},
    {"volume-marker-no-id", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "# Volume 2\rMTBDIR=SET\r\n"); }, "BehindACarriageReturn"},
    {"volume-marker-no-id", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "# Volume 2\rSET"); }, "WithCarriageReturnsAlone"},
    {"volume-marker-no-id", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "notes of a meeting").Marker("../old/2.txt"); }, "BesideACopy"},
    {"volume-marker-no-id", Level::Error, Layout::Siblings,
     [](Media& m) {
         m.Write("1.txt", "notes of a meeting").Write("../2/9.txt", "notes of a meeting");
     },
     "OfVolumeOneBesideAnother"},
    {"volume-marker-lower-case", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "mtbdir=SET\r\n"); }},
    {"volume-marker-leading-blank", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, " MTBDIR=SET\r\n"); }},
    {"volume-marker-leading-blank", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, " MTBDIR=\r\n"); }, "AndNothingBehind"},
    {"volume-marker-blank-before-equals", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR =SET\r\n"); }},
    {"volume-marker-no-equals", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR:SET\r\n"); }},
    {"volume-id-empty", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR=\r\n"); }},
    {"volume-id-leading-blank", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, " SET"); }, "", "volume-id-blanks-differ"},
    {"volume-id-trailing-blank", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "SET "); }, "", "volume-id-blanks-differ"},
    {"volume-id-blanks-differ", Level::Error, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "SET "); }, "", "volume-id-trailing-blank"},
    {"volume-id-blanks-differ", Level::Error, Layout::Siblings,
     [](Media& m) { m.Marker("1.txt", "SET "); }, "OfVolumeOne", "volume-id-trailing-blank"},
    {"volume-id-quoted", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "\"SET\""); }, "", "volume-id-differs"},
    {"volume-id-not-utf8", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "S\xE9T"); }, "", "volume-id-differs"},
    {"volume-id-control-character", Level::Error, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "SET\x1A"); }, "", "volume-id-differs"},
    {"volume-id-control-character", Level::Error, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "SET\t2027"); }, "OfWhichTheTabIsOne", "volume-id-differs"},
    {"volume-id-control-character", Level::Error, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "SET\xC2\x85"); }, "OfUnicode", "volume-id-differs"},
    {"volume-marker-double-cr", Level::Error, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "SET\r"); }, "", "volume-id-differs"},
    {"volume-marker-cr-only", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR=SET\rVolume 2"); }, "", "volume-id-differs"},
    {"volume-marker-cr-only", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "# Volume 2\rMTBDIR=SET\r"); }, "BeforeTheIdentifier"},
    {"volume-marker-cr-only", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR=SET\r\r"); }, "WithABlankLine", "volume-id-differs"},
    {"volume-marker-cr-only", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR=SET\rMTBDIR=OLD"); }, "WithTwoIdentifiers",
     "volume-id-differs"},
    {"volume-marker-cr-only", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR= SET\rVolume 2"); }, "WithABlank",
     "volume-id-differs volume-id-leading-blank"},
    {"volume-id-letters-differ", Level::Error, Layout::Siblings,
     [](Media& m) {
         for (const char* name : {"1.txt", "../3/3.txt"})
             m.Marker(name, "S\xC3\x89T");
         m.Marker(kTwo, "SE\xCC\x81T");
     }},
    {"volume-id-differs", Level::Error, Layout::Siblings,
     [](Media& m) {
         for (const char* name : {"1.txt", "../3/3.txt"})
             m.Marker(name, "M\xC4RZ");
         m.Marker(kTwo, "M\xD6RZ");
     },
     "InALetterThatIsNotUtf8", "volume-id-not-utf8"},
    {"volume-id-differs", Level::Error, Layout::Siblings,
     [](Media& m) {
         for (const char* name : {"1.txt", "../3/3.txt"})
             m.Marker(name, "M\xC4RZ");
         m.Marker(kTwo, "M\xD6rz");
     },
     "InALetterThatIsNotUtf8AndInCapitals", "volume-id-not-utf8"},
    {"volume-id-differs", Level::Error, Layout::Siblings,
     [](Media& m) {
         for (const char* name : {"1.txt", "../3/3.txt"})
             m.Marker(name, "M\xC4RZ");
         m.Marker(kTwo, "M\xD6RZ ");
     },
     "InALetterThatIsNotUtf8AndInABlank", "volume-id-not-utf8 volume-id-trailing-blank"},
    // U+FFFD is what such a byte becomes.
    {"volume-id-differs", Level::Error, Layout::Siblings,
     [](Media& m) {
         for (const char* name : {"1.txt", "../3/3.txt"})
             m.Marker(name, "M\xEF\xBF\xBDRZ");
         m.Marker(kTwo, "M\xC4RZ");
     },
     "InALetterThatIsNotUtf8InOne", "volume-id-not-utf8"},
    {"volume-id-differs", Level::Error, Layout::Siblings,
     [](Media& m) {
         for (const char* name : {"1.txt", "../3/3.txt"})
             m.Marker(name, "M\xC4RZ");
         m.Marker(kTwo, "M\xEF\xBF\xBDRZ");
     },
     "InALetterThatIsNotUtf8InTheOthers", "volume-id-not-utf8"},
    {"volume-id-too-long", Level::Error, Layout::Siblings,
     [](Media& m) {
         for (const char* name : {"1.txt", kTwo, "../3/3.txt"})
             m.Marker(name, std::string(32767, 'x'));
     }},
    {"volume-marker-two-ids", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR=SET\r\nMTBDIR=OLD\r\n"); }},
    {"volume-marker-is-folder", Level::Error, Layout::Siblings,
     [](Media& m) { m.Remove(kTwo).MakeDir(kTwo); }},
};
INSTANTIATE_TEST_SUITE_P(Text, VolumeMistakeTest, testing::ValuesIn(kTextMistakes), MistakeName);

const Mistake kPlaceMistakes[] = {
    {"volume-marker-missing", Level::Error, Layout::Siblings, [](Media& m) { m.Remove(kTwo); }},
    {"volume-marker-missing", Level::Error, Layout::Siblings, [](Media& m) { m.Remove("1.txt"); },
     "OfVolumeOne"},
    {"volume-marker-missing", Level::Error, Layout::OneFolder,
     [](Media& m) { m.Remove("1.txt").Write("2.txt", "notes of a meeting"); },
     "OfVolumeOneBesideAnother"},
    {"volume-marker-missing", Level::Error, Layout::Siblings,
     [](Media& m) { m.Remove(kTwo).Marker("../2/3.txt", "OTHER"); }, "BesideThatOfAnotherSet"},
    {"volume-marker-leading-zeros", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename(kTwo, "../2/02.txt"); }},
    {"volume-marker-leading-zeros", Level::Error, Layout::OneFolder,
     [](Media& m) { m.Rename("2.txt", "02.txt"); }, "InOneFolder"},
    {"volume-marker-double-extension", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename(kTwo, "../2/2.txt.txt"); }},
    {"volume-marker-wrong-number", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename(kTwo, "../2/3.txt"); }, "", "volume-number-twice"},
    {"volume-marker-wrong-number", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename(kTwo, "../2/4.txt"); }, "BeyondTheCount", "volume-beyond-count"},
    {"volume-marker-wrong-number", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename(kTwo, "../2/3.txt").Marker("../2/4.txt"); }, "BesideAnother",
     "volume-beyond-count volume-number-twice"},
    {"volume-id-differs", Level::Error, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "OTHER"); }},
    {"volume-id-differs", Level::Error, Layout::OneFolder,
     [](Media& m) { m.Marker("2.txt", "OTHER"); }, "InOneFolder"},
    {"volume-id-case-differs", Level::Error, Layout::Siblings,
     [](Media& m) { m.Marker(kTwo, "Set"); }},
    {"volume-missing", Level::Error, Layout::Siblings, [](Media& m) { m.Remove("../3"); }},
    {"volume-missing", Level::Error, Layout::OneFolder, [](Media& m) { m.Remove("3.txt"); },
     "InOneFolder"},
    {"volume-missing", Level::Error, Layout::OneFolder, [](Media& m) { m.Remove("2.txt"); },
     "InOneFolderWithTheLast"},
    {"volume-missing", Level::Error, Layout::Siblings,
     [](Media& m) { m.Remove("../3").Marker("4.txt"); }, "BesideAMarkerBeyondTheCount",
     "volume-beyond-count"},
    {"volume-folder-named-otherwise", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename("../2", "../Disc 2"); }},
    {"volume-folder-named-otherwise", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename("../2", "../x").Rename("../3", "../2").Rename("../x", "../3"); },
     "InThatOfAnother"},
    {"volumes-mixed-layouts", Level::Error, Layout::OneFolder,
     [](Media& m) { m.Remove("3.txt").Marker("../3/3.txt"); }},
    {"volumes-mixed-layouts", Level::Error, Layout::OneFolder,
     [](Media& m) { m.Remove("2.txt").Marker("../2/2.txt").Marker("../3/3.txt"); },
     "BesideOneInBoth", "volume-number-twice"},
    {"count-file-zero", Level::Error, Layout::OneFolder,
     [](Media& m) { m.Write("inst/volumes.txt", "0\r\n"); }, "BesideMarkers"},
    {"volume-beyond-count", Level::Error, Layout::Siblings,
     [](Media& m) { m.Marker("../4/4.txt"); }},
    {"volume-beyond-count", Level::Error, Layout::OneFolder, [](Media& m) { m.Marker("4.txt"); },
     "InOneFolder"},
    {"volume-number-twice", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Marker("../2/1.txt"); }, "ThatOfVolumeOne"},
    {"volume-number-twice", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Marker("../2/3.txt"); }, "ThatOfALaterVolume"},
    {"volume-number-twice", Level::Error, Layout::Siblings, [](Media& m) { m.Marker("2.txt"); },
     "InVolumeOne", "volumes-mixed-layouts"},
    {"volume-number-twice", Level::Warning, Layout::Outer,
     [](Media& m) { m.Marker("../../../8/media/2/3.txt"); }, "InOuterVolumes"},
    {"volumes-elsewhere", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Remove("../2").Remove("../3"); }},
};
INSTANTIATE_TEST_SUITE_P(Place, VolumeMistakeTest, testing::ValuesIn(kPlaceMistakes), MistakeName);

const Mistake kOuterMistakes[] = {
    {"outer-marker-upper-case", Level::Error, Layout::Outer,
     [](Media& m) { m.Remove("../../7.txt").Marker("../../7.TXT", "OUTER"); }},
    {"outer-marker-number-too-high", Level::Error, Layout::Outer,
     [](Media& m) { m.Rename("../../7.txt", "../../700.txt"); }},
    {"outer-marker-zero", Level::Error, Layout::Outer,
     [](Media& m) { m.Rename("../../7.txt", "../../0.txt"); }},
    {"outer-marker-zero", Level::Error, Layout::Outer,
     [](Media& m) { m.Rename("../../7.txt", "../../00.txt"); }, "InTwoDigits"},
    {"outer-marker-missing", Level::Error, Layout::Outer, [](Media& m) { m.Remove("../../7.txt"); },
     "OfTheFirst"},
    {"outer-marker-missing", Level::Error, Layout::Outer,
     [](Media& m) { m.Rename("../../7.txt", "../../700.txt.bak"); }, "OfTheFirstBesideABackup"},
    {"outer-marker-missing", Level::Error, Layout::Outer,
     [](Media& m) { m.Rename("../../7.txt", "../../volume.txt"); }, "OfTheFirstBesideAWord"},
    {"outer-marker-missing", Level::Error, Layout::Outer,
     [](Media& m) { m.Remove("../../7.txt").Write("../../700.txt", "notes of a meeting"); },
     "OfTheFirstBesideANumber"},
    {"outer-marker-missing", Level::Error, Layout::Outer,
     [](Media& m) { m.Remove("../../7.txt").Marker("../../../8/media/1/1.txt"); },
     "OfTheFirstBesideACopy"},
    {"outer-marker-missing", Level::Error, Layout::Outer,
     [](Media& m) { m.Remove("../../7.txt").Write("../5.txt", "notes of a meeting"); },
     "OfTheFirstBesideAStray", "outer-marker-stray"},
    {"volume-beyond-count", Level::Error, Layout::Outer,
     [](Media& m) { m.Write("inst/volumes.txt", "2\r\n"); }, "InOuterVolumes"},
    {"volume-beyond-count", Level::Error, Layout::Outer,
     [](Media& m) { m.Write("inst/volumes.txt", "1\r\n"); }, "OfOneInOuterVolumes",
     "count-file-one"},
    {"volume-beyond-count", Level::Error, Layout::Outer,
     [](Media& m) { m.Marker("../../../100/media/4/4.txt"); }, "InAnOuterVolumeAbove99"},
    {"volume-beyond-count", Level::Error, Layout::Outer,
     [](Media& m) { m.Marker("../../../1/media/4/4.txt"); }, "InOuterVolume1"},
    {"outer-marker-irregular", Level::Error, Layout::Outer,
     [](Media& m) { m.Rename("../../7.txt", "../../7a.txt"); }},
    {"outer-markers-two", Level::Error, Layout::Outer,
     [](Media& m) { m.Marker("../../9.txt", "OUTER"); }},
    {"outer-marker-stray", Level::Error, Layout::Outer,
     [](Media& m) { m.Write("../5.txt", "notes of a meeting"); }},
    {"outer-marker-stray", Level::Error, Layout::Siblings,
     [](Media& m) { m.Remove("../2").Remove("../3").Write("../7.txt", "notes of a meeting"); },
     "WithoutOuterVolumes", "volumes-elsewhere"},
    {"outer-marker-stray", Level::Error, Layout::Siblings,
     [](Media& m) { m.Remove("../2").Remove("../3").Marker("../7.txt"); }, "OfTheMediaItself",
     "volumes-elsewhere"},
    {"outer-marker-stray", Level::Error, Layout::Outer,
     [](Media& m) { m.Marker("../../7.txt").Remove("../../../8").Remove("../../../9"); },
     "InAFolderOfItsNumber", "volumes-elsewhere"},
    {"outer-marker-stray", Level::Error, Layout::Outer,
     [](Media& m) {
         m.Marker("../../7.txt").Remove("../../../8").Remove("../../../9");
         m.Marker("../../../10/10.txt");
     },
     "BesideAnOuterVolumeBeyond", "volumes-elsewhere"},
    {"outer-marker-missing", Level::Error, Layout::Outer,
     [](Media& m) { m.Remove("../../../8/8.txt"); }},
    {"outer-volume-missing", Level::Error, Layout::Outer, [](Media& m) { m.Remove("../../../8"); }},
    {"outer-volume-missing", Level::Error, Layout::Outer,
     [](Media& m) { m.Marker("../../7.txt").Remove("../../../8").Marker("../../../9/9.txt"); },
     "BesideTheLast", "outer-id-same"},
    {"outer-id-differs", Level::Error, Layout::Outer,
     [](Media& m) { m.Marker("../../../8/8.txt", "OTHER"); }},
    {"outer-id-same", Level::Warning, Layout::Outer,
     [](Media& m) {
         m.Marker("../../7.txt", "SET")
             .Marker("../../../8/8.txt", "SET")
             .Marker("../../../9/9.txt", "SET");
     }},
    {"outer-inner-folder-missing", Level::Error, Layout::Outer,
     [](Media& m) { m.Rename("../../../8/media", "../../../8/other"); }},
    {"volume-id-differs", Level::Error, Layout::Outer,
     [](Media& m) { m.Marker("../../../8/media/2/2.txt", "OTHER"); }, "InOuterVolume"},
    {"volume-marker-no-id", Level::Error, Layout::Outer,
     [](Media& m) { m.Write("../../7.txt", "notes of a meeting"); }, "OfOuterVolume"},
    {"volume-marker-no-id", Level::Error, Layout::Outer,
     [](Media& m) { m.Write("../../../8/8.txt", "notes of a meeting"); }, "OfALaterOuterVolume"},
    {"outer-marker-missing", Level::Error, Layout::Outer,
     [](Media& m) { m.Remove("../../7.txt").Remove("../../../8/8.txt").Remove("../../../9"); },
     "OfTwo"},
};
INSTANTIATE_TEST_SUITE_P(Outer, VolumeMistakeTest, testing::ValuesIn(kOuterMistakes), MistakeName);

bool Finds(const Validation& validation, const std::string& id) {
    EXPECT_TRUE(Has(validation, id)) << "found only: " << Ids(validation);
    ExpectListed(validation, Layout::Siblings);
    return Has(validation, id);
}

TEST(GivenFolders, ThatNoLayoutFits) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../3").Rename("../2", "../../elsewhere");
    EXPECT_TRUE(Finds(media.Validate({"../../elsewhere"}), "no-layout-fits"));
}

TEST(GivenFolders, TwoWithTheSameNumber) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../3").Marker("../../a/2.txt").Marker("../../b/2.txt");
    EXPECT_TRUE(Finds(media.Validate({"../../a", "../../b"}), "volume-number-twice"));
}

TEST(GivenFolders, OneThatTheLauncherDoesNotComeTo) {
    SampleMedia media(Layout::Siblings);
    media.Marker("../../other/3.txt");
    EXPECT_TRUE(Finds(media.Validate({"../2", "../3", "../../other"}), "folder-not-a-volume"));
    EXPECT_FALSE(Has(media.Validate({"../2", "../3"}), "folder-not-a-volume"));
}

// And a volume at its place is not said to lie elsewhere.
TEST(GivenFolders, NotAllOfTheSet) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../3");
    const Validation validation = media.Validate({"../2"});
    EXPECT_EQ(Changes(validation, Layout::Siblings), "volume-missing") << Ids(validation);
    ExpectListed(validation, Layout::Siblings);
}

// The second marker is told once, not for the given folders again.
TEST(GivenFolders, OneWithASecondMarker) {
    SampleMedia media(Layout::Siblings);
    media.Marker("../2/3.txt").Write("inst/volumes.txt", "4\r\n");
    const Validation validation = media.Validate({"../2", "../3"});
    EXPECT_EQ(Changes(validation, Layout::Siblings), "volume-missing volume-number-twice")
        << Ids(validation);
    ExpectListed(validation, Layout::Siblings);
}

TEST(GivenFolders, BesideVolumeOneUnderOtherNames) {
    SampleMedia media(Layout::Siblings);
    media.Rename("../2", "../Disc 2").Rename("../3", "../Disc 3");
    media.Write("../Disc 2/Disc 2.txt", "named by its folder, and no marker");
    const Validation validation = media.Validate({"../Disc 2", "../Disc 3"});
    EXPECT_EQ(Changes(validation, Layout::Siblings), "volume-folder-named-otherwise")
        << Ids(validation);
    ExpectListed(validation, Layout::Siblings);
}

TEST(GivenFolders, ElsewhereUnderTheRightName) {
    SampleMedia media(Layout::Siblings);
    media.MakeDir("../../other").Rename("../2", "../../other/2");
    const Validation validation = media.Validate({"../../other/2", "../3"});
    EXPECT_EQ(Changes(validation, Layout::Siblings), "volume-misplaced") << Ids(validation);
    ExpectListed(validation, Layout::Siblings);
}

TEST(GivenFolders, TheOuterVolumes) {
    const SampleMedia media(Layout::Outer);
    EXPECT_EQ(Changes(media.Validate({"../../../8", "../../../9"}), Layout::Outer), "");
}

TEST(GivenFolders, ALaterVolumeWithACountFile) {
    SampleMedia media(Layout::Siblings);
    media.Write("../2/inst/volumes.txt", "3\r\n");
    EXPECT_TRUE(Finds(media.Validate({"../2", "../3"}), "count-file-in-later-volume"));
}

TEST(Identifiers, ThatAZeroByteTellsApartDoNotDifferInCase) {
    SampleMedia media(Layout::Siblings);
    media.Marker(kTwo, std::string("SET\0", 4));
    const Validation validation = media.Validate();
    EXPECT_TRUE(Finds(validation, "volume-id-differs"));
    EXPECT_TRUE(Finds(validation, "volume-id-control-character"));
    EXPECT_FALSE(Has(validation, "volume-id-case-differs")) << Ids(validation);
}

// Those are shown in what is printed, but are no control characters.
TEST(Identifiers, MayHaveCharactersThatCannotBeSeen) {
    SampleMedia media(Layout::Siblings);
    for (const char* name : {"1.txt", kTwo, "../3/3.txt"})
        media.Marker(name, "SET\u200B\u202E\uFEFF");
    EXPECT_EQ(Changes(media.Validate(), Layout::Siblings), "");
}

TEST(Identifiers, InComposedAndDecomposedLettersAreSpeltOut) {
    SampleMedia media(Layout::Siblings);
    media.Marker("1.txt", "S\xC3\x89T").Marker("../3/3.txt", "S\xC3\x89T");
    media.Marker(kTwo, "SE\xCC\x81T");
    EXPECT_EQ(media.Validate().findings.Sorted().front().what,
              "The identifier is \"SE\\u0301T\"; volume 1 has \"S\\u00C9T\".");
}

TEST(Identifiers, AsLongAsAVariableHolds) {
    SampleMedia media(Layout::Siblings);
    for (const char* name : {"1.txt", kTwo, "../3/3.txt"})
        media.Marker(name, std::string(32766, 'x'));
    EXPECT_EQ(Changes(media.Validate(), Layout::Siblings), "");
}

TEST(Identifiers, AreShortenedForReadersOnly) {
    SampleMedia media(Layout::Siblings);
    media.Marker(kTwo, std::string(3000, 'x'));
    const mediatool::Findings findings = media.Validate().findings;
    EXPECT_EQ(findings.Sorted().front().what,
              "The identifier is \"" + std::string(3000, 'x') + "\"; volume 1 has \"SET\".");
    EXPECT_EQ(findings.Sorted(mediatool::Findings::Shown::Readable).front().what,
              "The identifier is \"" + std::string(79, 'x') +
                  "... (3002 characters); volume 1 has \"SET\".");
}

// Beside folders that only look like outer volumes: no marker can have such a number.
TEST(OuterMarkers, AreNotAskedForAbove99) {
    SampleMedia media(Layout::Outer);
    media.Remove("../../7.txt").Rename("../../../8", "../../../101");
    media.Rename("../../../9", "../../../102");
    EXPECT_EQ(Changes(media.Validate(), Layout::Outer).find("outer-marker-missing"),
              std::string::npos);
}

// Volume 1 under another name than 1. What is said of it is in the list.
std::string ChangesAs(const std::string& name, SampleMedia& media) {
    media.Rename("", "../" + name);
    mediatool::ValidateRequest request;
    request.folders = {media.Text("../" + name)};
    const Validation validation = mediatool::Validate(request);
    ExpectListed(validation, Layout::Siblings);
    return Changes(validation, Layout::Siblings);
}

TEST(FirstVolumes, OfAnotherNameAreKnownWhereTheirMarkerIsTwice) {
    SampleMedia media(Layout::Siblings);
    media.Rename(kTwo, "../2/1.txt");
    EXPECT_EQ(ChangesAs("Disc 1", media), "volume-marker-wrong-number volume-number-twice");
}

TEST(FirstVolumes, OfAnotherNameAreNotLookedForBeside) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../3").Rename("", "../Disc 1").Marker("../1/2.txt");
    mediatool::ValidateRequest request;
    request.folders = {media.Text("../Disc 1")};
    EXPECT_EQ(Changes(mediatool::Validate(request), Layout::Siblings), "volume-missing");
}

TEST(FirstVolumes, NamedByANumberBeyondTheCountHaveASecondMarkerOnce) {
    SampleMedia media(Layout::Siblings);
    media.Marker("5.txt");
    EXPECT_EQ(ChangesAs("5", media), "volume-beyond-count");
}

// Bytes that only continue a letter: nothing in front of them begins one.
TEST(Identifiers, OfNothingButContinuationsAreShortened) {
    SampleMedia media(Layout::Siblings);
    media.Marker("1.txt", std::string(300, '\x80')).Remove(kTwo);
    const mediatool::Findings findings = media.Validate().findings;
    EXPECT_EQ(
        findings.Sorted(mediatool::Findings::Shown::Readable).front().action,
        "Write the file with the line MTBDIR=" + std::string(77, '\x80') + "... (300 characters).");
}

// The quotation mark and 78 letters are 79 bytes; the next letter would end at the 81st.
TEST(Identifiers, AreNotShortenedWithinALetter) {
    SampleMedia media(Layout::Siblings);
    std::string id(78, 'x');
    for (int i = 0; i < 100; ++i)
        id += "\xC3\xA4";
    const mediatool::Findings findings = media.Marker(kTwo, id).Validate().findings;
    EXPECT_EQ(findings.Sorted(mediatool::Findings::Shown::Readable).front().what,
              "The identifier is \"" + std::string(78, 'x') +
                  "... (180 characters); volume 1 has \"SET\".");
}

// A program gets them as they are.
TEST(Reports, SendNoCharactersThatATerminalWouldObey) {
    SampleMedia media(Layout::Siblings);
    media.Marker("1.txt", "S\x1B[2JT").Remove(kTwo).Marker("../3/3.txt", "S\x1B[2JT");
    media.Write("inst/x\u202Egpj.exe", "");
    const Validation validation = media.Validate();
    const std::string text = TextOf(validation);
    EXPECT_THAT(text, testing::HasSubstr("MTBDIR=S\\x1B[2JT"));
    EXPECT_EQ(text.find('\x1B'), std::string::npos) << text;
    EXPECT_THAT(text, testing::HasSubstr("x\\u202Egpj.exe is empty."));
    EXPECT_THAT(text, testing::HasSubstr("\\inst\\x\\u202Egpj.exe\n"));
    std::string whole;
    for (const Finding& finding : validation.findings.Sorted())
        whole += finding.action;
    EXPECT_THAT(whole, testing::HasSubstr("MTBDIR=S\x1B[2JT"));
}

TEST(StrayMarkers, AreToldTogetherWithTheMissingVolumes) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../2").Remove("../3").Write("../7.txt", "notes of a meeting");
    const Validation validation = media.Validate();
    EXPECT_TRUE(Finds(validation, "volumes-elsewhere"));
    EXPECT_FALSE(Has(validation, "volume-marker-no-id")) << Ids(validation);
    EXPECT_EQ(validation.findings.Sorted().front().action, "Delete or rename it.");
}

TEST(GivenFolders, VolumeOneIsTheOneWithTheLauncher) {
    SampleMedia media(Layout::Siblings);
    mediatool::ValidateRequest request;
    request.folders = {media.Text("../3"), media.Text("../2"), media.Text()};
    const Validation validation = mediatool::Validate(request);
    EXPECT_EQ(validation.view.layout, Layout::Siblings);
    EXPECT_EQ(validation.findings.Count(Level::Error), 0u) << Ids(validation);
}

}  // namespace
}  // namespace launcher::test
