// What is just a mistake, and what is just none: each border from both sides.

#include <windows.h>

#include "fs/encoding.h"
#include "mediatool/base/failures.h"
#include "mediatool/validate/volume_markers.h"
#include "tests/mediatool/validate/mistake_row.h"
#include "tests/support/hook.h"
#include "tests/support/links.h"

namespace launcher::test {
namespace {

using Media = SampleMedia;

constexpr char kBin[] = "inst/win_b64/code/bin/";
constexpr char kInstaller[] = "inst/win_b64/code/bin/ZEPInsAppliGUI.exe";
constexpr char kMarker[] = "inst/common/win_b64.installos";
constexpr char kMarker32[] = "inst/common/intel_a.installos";
constexpr char kCount[] = "inst/volumes.txt";
constexpr char kTwo[] = "../2/2.txt";
constexpr std::size_t k64K = 65536;

struct Border {
    const char* name;
    Layout layout;
    void (*make)(SampleMedia& media);
    const char* changes = "";  // as Changes() tells them
};
void PrintTo(const Border& row, std::ostream* stream) {
    *stream << row.name;
}

class Borders : public testing::TestWithParam<Border> {};

TEST_P(Borders, AreWhereTheyAre) {
    SampleMedia media(GetParam().layout);
    GetParam().make(media);
    const Validation validation = media.Validate();
    EXPECT_EQ(Changes(validation, GetParam().layout), GetParam().changes) << Ids(validation);
    ExpectListed(validation, GetParam().layout);
}

void Autorun(Media& media, std::string_view text) {
    media.Write("autorun.inf", text);
}

const Border kOfPrograms[] = {
    {"AutorunOfAnotherSection", Layout::NotSplit,
     [](Media& m) { Autorun(m, "[autorun]\r\n[other]\r\nopen=menu.exe\r\n"); }},
    {"AutorunBeforeAnySection", Layout::NotSplit,
     [](Media& m) { Autorun(m, "open=menu.exe\r\n[autorun]\r\n"); }},
    {"AutorunInCapitals", Layout::NotSplit,
     [](Media& m) { Autorun(m, " [AUTORUN]\r\n OPEN = menu.exe\r\n"); }, "autorun-other-program"},
    {"AutorunOfAnotherKey", Layout::NotSplit,
     [](Media& m) { Autorun(m, "[autorun]\r\nopen\r\nopens=menu.exe\r\nicon=menu.exe\r\n"); }},
    {"CutNamesTwo", Layout::NotSplit,
     [](Media& m) {
         m.Rename("meta.TOCxml", "META.TOC").Rename("setup_noUAC.exe", "SETUP_NO.EXE");
     },
     "names-cut-short -not-for-32-bit-windows"},
    {"CutNamesOfTheInstallerAndItsMarker", Layout::NotSplit,
     [](Media& m) {
         m.Rename(kInstaller, std::string(kBin) + "ZEPINSAP.EXE");
         m.Rename(kMarker, "inst/common/WIN_B64.INS");
     },
     "names-cut-short -not-for-32-bit-windows"},
    {"MarkerOfAnUnknownIntel", Layout::NotSplit,
     [](Media& m) { m.Write("inst/common/intel64.installos"); }, "flavour-marker-unknown"},
    {"MarkerOfAnotherSystem", Layout::NotSplit,
     [](Media& m) { m.Write("inst/common/linux_b64.installos"); }},
    {"MarkerWithAnotherExtension", Layout::NotSplit,
     [](Media& m) { m.Write("inst/common/win_x.installo"); }},
    {"MarkerAtTheRoot", Layout::NotSplit, [](Media& m) { m.Write("win_b64.installos"); },
     "flavour-marker-misplaced"},
    {"MarkerInTheFlavoursFolder", Layout::NotSplit,
     [](Media& m) { m.Write("inst/win_b64/win_b64.installos"); }, "flavour-marker-misplaced"},
    {"InstallerInInst", Layout::NotSplit,
     [](Media& m) { m.Rename(kInstaller, "inst/ZEPInsAppliGUI.exe").Remove("inst/win_b64"); },
     "installer-misplaced installer-on-other-media"},
    {"InstallerAtTheRoot", Layout::NotSplit,
     [](Media& m) { m.Rename(kInstaller, "ZEPInsAppliGUI.exe").Remove("inst/win_b64"); },
     "installer-misplaced installer-on-other-media"},
    {"InstallerInBin", Layout::NotSplit,
     [](Media& m) {
         m.MakeDir("bin").Rename(kInstaller, "bin/ZEPInsAppliGUI.exe").Remove("inst/win_b64");
     },
     "installer-misplaced installer-on-other-media"},
    {"InstallerInCodeBin", Layout::NotSplit,
     [](Media& m) { m.Rename("inst/win_b64/code", "code").Remove("inst/win_b64"); },
     "installer-misplaced installer-on-other-media"},
    {"InstallerInAnyOtherFolder", Layout::NotSplit,
     [](Media& m) { m.Rename("inst/win_b64/code", "inst/data").Remove("inst/win_b64"); },
     "installer-misplaced installer-on-other-media"},
    {"InstallerOutsideWithoutInst", Layout::NotSplit,
     [](Media& m) { m.Remove("inst").Write("ZEPInsAppliGUI.exe", ProgramBytes(kX64)); },
     "inst-missing -not-for-32-bit-windows"},
    {"InstallersInTwoWrongPlaces", Layout::NotSplit,
     [](Media& m) {
         m.Remove(kInstaller);
         for (const char* folder : {"a", "b"})
             m.Write("inst/win_b64/" + std::string(folder) + "/ZEPInsAppliGUI.exe",
                     ProgramBytes(kX64));
     },
     "installer-misplaced installer-on-other-media"},
    {"InstallersBesideTheRightOne", Layout::NotSplit,
     [](Media& m) {
         for (const char* name : {"inst/", "", "bin/", "code/bin/", "inst/data/", "1/"})
             m.Write(name + std::string("ZEPInsAppliGUI.exe"), ProgramBytes(kX64));
     }},
    {"FolderNamedAsTheInstaller", Layout::NotSplit,
     [](Media& m) { m.Remove("inst/win_b64").MakeDir("inst/data/ZEPInsAppliGUI.exe"); },
     "installer-on-other-media"},
    {"OtherProgramsOfTheInstaller", Layout::NotSplit,
     [](Media& m) {
         m.Remove(kInstaller).MakeDir(std::string(kBin) + "folder.exe");
         for (const char* name : {"ZEPInsPipeServer.exe", "ZEPInsAppliODT.EXE", "readme.txt"})
             m.Write(kBin + std::string(name), "x");
     },
     "installer-on-other-media"},
    {"MarkersOfBothWithoutInstallers", Layout::NotSplit,
     [](Media& m) { m.Remove("inst/win_b64").Write(kMarker32); },
     "installer-on-other-media -not-for-32-bit-windows"},
    {"TheMarkerFor32BitAlone", Layout::NotSplit,
     [](Media& m) { m.Remove("inst/win_b64").Remove(kMarker).Write(kMarker32); },
     "installer-on-other-media only-32-bit-installer -not-for-32-bit-windows"},
    {"FoldersWithNamesOfFiles", Layout::NotSplit,
     [](Media& m) { m.MakeDir("inst/x.tmp").MakeDir("inst/x.exe").MakeDir("x.dll"); }},
    {"ProgramOfOneByte", Layout::NotSplit, [](Media& m) { m.Write("inst/x.exe", "x"); }},
};
INSTANTIATE_TEST_SUITE_P(Programs, Borders, testing::ValuesIn(kOfPrograms),
                         [](const auto& row) { return std::string(row.param.name); });

const Border kOfTexts[] = {
    {"CountWithALineAtTheEndOf64K", Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3\n" + std::string(k64K - 3, ' ') + "x"); },
     "count-file-more-lines"},
    {"CountWithALineBehind64K", Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3\n" + std::string(k64K - 2, ' ') + "x"); }},
    {"CountWithBlankLines", Layout::Siblings, [](Media& m) { m.Write(kCount, "3\r\n \r\n\r\n"); }},
    {"CountNegativeAndTooLong", Layout::Siblings,
     [](Media& m) { m.Write(kCount, "-30000000000\r\n"); }, "count-file-out-of-range"},
    {"CountOfASign", Layout::Siblings, [](Media& m) { m.Write(kCount, "+x\r\n"); },
     "count-file-not-a-number"},
    {"CountOfALetterAndADigit", Layout::Siblings, [](Media& m) { m.Write(kCount, "x3\r\n"); },
     "count-file-not-a-number"},
    {"CountBehindABlank", Layout::Siblings, [](Media& m) { m.Write(kCount, " 3\r\n"); },
     "count-file-blanks"},
    {"CountWithTwoSigns", Layout::Siblings, [](Media& m) { m.Write(kCount, "3+\r\n"); },
     "count-file-more-than-number"},
    {"CountOf99WithoutThem", Layout::Siblings, [](Media& m) { m.Write(kCount, "99\r\n"); },
     "volume-missing"},
    {"CountOf100WithoutThem", Layout::Siblings, [](Media& m) { m.Write(kCount, "100\r\n"); },
     "count-file-absurd volume-missing"},
    {"CountInVolumeTxt", Layout::Siblings, [](Media& m) { m.Rename(kCount, "inst/volume.txt"); },
     "count-file-misspelt"},
    {"CountInVolumes", Layout::Siblings, [](Media& m) { m.Rename(kCount, "inst/volumes"); },
     "count-file-misspelt"},
    {"CountInVolumesText", Layout::Siblings,
     [](Media& m) { m.Rename(kCount, "inst/volumes.text"); }, "count-file-misspelt"},
    {"CountInCommon", Layout::Siblings,
     [](Media& m) { m.Rename(kCount, "inst/common/volumes.txt"); }, "count-file-misplaced"},
    {"CountInAFolderOfAnotherName", Layout::Siblings,
     [](Media& m) { m.Remove(kCount).MakeDir("inst/volumes"); }, "count-file-missing"},
    {"NoCountWithoutASet", Layout::NotSplit, [](Media& m) { m.Marker("2.txt"); }},
    {"IdentifierBehindATab", Layout::Siblings, [](Media& m) { m.Marker(kTwo, "\tSET"); },
     "volume-id-blanks-differ volume-id-leading-blank"},
    {"IdentifierBeforeATab", Layout::Siblings, [](Media& m) { m.Marker(kTwo, "SET\t"); },
     "volume-id-blanks-differ volume-id-trailing-blank"},
    {"IdentifierOfOneQuote", Layout::Siblings, [](Media& m) { m.Marker(kTwo, "\""); },
     "volume-id-differs"},
    {"IdentifierOfTwoQuotes", Layout::Siblings, [](Media& m) { m.Marker(kTwo, "\"\""); },
     "volume-id-differs volume-id-quoted"},
    {"IdentifierThatBeginsWithAQuote", Layout::Siblings, [](Media& m) { m.Marker(kTwo, "\"S"); },
     "volume-id-differs"},
    {"IdentifierThatEndsWithAQuote", Layout::Siblings, [](Media& m) { m.Marker(kTwo, "S\""); },
     "volume-id-differs"},
    {"MarkerWithACommentInFront", Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "# volume 2\r\nmtbdir=SET\r\n"); }, "volume-marker-lower-case"},
    {"MarkerWithTheSameIdentifierTwice", Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR=SET\r\nMTBDIR=SET\r\n"); }},
    {"MarkerWithAnotherIdentifierAtItsMegabytesEnd", Layout::Siblings,
     [](Media& m) {
         m.Write(kTwo, "MTBDIR=SET\n" + std::string(16 * k64K - 19, ' ') + "\nMTBDIR=OLD");
     },
     "volume-marker-two-ids"},
    {"MarkerWithAnotherIdentifierBehindItsMegabyte", Layout::Siblings,
     [](Media& m) {
         m.Write(kTwo, "MTBDIR=SET\n" + std::string(16 * k64K - 18, ' ') + "\nMTBDIR=OLD");
     }},
    {"MarkerWithACarriageReturnAtItsEnd", Layout::Siblings,
     [](Media& m) { m.Write(kTwo, "MTBDIR=SET\r"); }},
    {"VolumeInAFolderWithAZero", Layout::Siblings,
     [](Media& m) { m.Remove("../3").Marker("../03/3.txt"); }, "volume-folder-named-otherwise"},
};
INSTANTIATE_TEST_SUITE_P(Texts, Borders, testing::ValuesIn(kOfTexts),
                         [](const auto& row) { return std::string(row.param.name); });

// What is there beside the volumes that the launcher finds, and what it never looks at.
const Border kOfVolumes[] = {
    {"FourthVolumeBesideOneFolder", Layout::OneFolder, [](Media& m) { m.Marker("../4/4.txt"); }},
    {"FourthVolumeBesideThoseInOuterVolumes", Layout::Outer,
     [](Media& m) { m.Marker("../4/4.txt"); }},
    {"FourthVolumeAsInAnOuterVolume", Layout::Siblings,
     [](Media& m) { m.Marker("../../8/4/4.txt"); }},
    {"FourthVolumeInAnOuterVolume0", Layout::Outer,
     [](Media& m) { m.Marker("../../../0/media/4/4.txt"); }},
    {"MarkerOfAnotherSetInOneFolder", Layout::OneFolder,
     [](Media& m) { m.Marker("4.txt", "OTHER"); }},
    {"MarkersOfAnotherSetInAVolume", Layout::Siblings,
     [](Media& m) { m.Marker("../2/3.txt", "OTHER").Marker("../2/4.txt", "OTHER"); }},
    {"VolumeOfAnotherSetBeside", Layout::Siblings,
     [](Media& m) { m.Marker("../4/4.txt", "OTHER"); }},
    {"VolumeOfAnotherSetInAnOuterVolume", Layout::Outer,
     [](Media& m) { m.Marker("../../../10/media/4/4.txt", "OTHER"); }},
    {"OuterMarkerAboveAnother", Layout::Outer,
     [](Media& m) { m.Marker("../../../5.txt", "OTHER"); }},
    {"FolderNamedAsAnOuterMarker", Layout::Outer, [](Media& m) { m.MakeDir("../../5.txt"); }},
    {"OuterVolumesWhoseFirstWouldBe0", Layout::Outer,
     [](Media& m) {
         m.Remove("../../7.txt").Rename("../../../8", "../../../1");
         m.Rename("../../../9", "../../../2");
     },
     "volumes-elsewhere"},
};
INSTANTIATE_TEST_SUITE_P(Volumes, Borders, testing::ValuesIn(kOfVolumes),
                         [](const auto& row) { return std::string(row.param.name); });

// --- values

const std::string& WhatOf(const std::vector<Finding>& findings, const std::string& id) {
    static const std::string none = "none";
    const auto found = std::ranges::find(findings, id, &Finding::id);
    return found == findings.end() ? none : found->what;
}

std::string ProgramOfAutorun(std::string_view text) {
    Media media;
    Autorun(media, text);
    return WhatOf(media.Validate().findings.Sorted(), "autorun-other-program");
}

TEST(AutorunPrograms, AreToldAsTheyStand) {
    const auto starts = [](const std::string& program) {
        return "autorun.inf starts \"" + program + "\", not the launcher.";
    };
    EXPECT_EQ(ProgramOfAutorun("[autorun]\nopen=menu.exe\t/x"), starts("menu.exe"));
    EXPECT_EQ(ProgramOfAutorun("[autorun]\nopen=\"my menu.exe"), starts("my menu.exe"));
    EXPECT_EQ(ProgramOfAutorun("[autorun]\nopen=\"my menu.exe\" \"x\""), starts("my menu.exe"));
    EXPECT_EQ(ProgramOfAutorun("[autorun]\nopen=" + std::string(k64K, 'a')),
              starts(std::string(k64K - 15, 'a')));
    std::string utf16 = "\xFF\xFE";
    for (const wchar_t c : std::wstring(L"[autorun]\nopen=\u0141\u6F22.exe"))
        utf16 += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
    EXPECT_EQ(ProgramOfAutorun(utf16 + "x"), starts("\xC5\x81\xE6\xBC\xA2.exe"));
}

// A folder of which a thousand files are alike.
struct Kind {
    const char* id;
    const char* prefix;
    const char* suffix;
    const char* content;
};
TEST(ManyOfOneKind, AreFiveFindings) {
    const std::string longName = std::string(84, 'a') + "/" + std::string(79, 'b');
    for (const Kind& kind :
         {Kind{"leftover", "x", ".tmp", "x"}, Kind{"program-empty", "x", ".exe", ""},
          Kind{"name-outside-oem-code-page", "\xE6\xBC\xA2", ".txt", "x"},
          Kind{"path-too-long-in-copy", longName.c_str(), ".dll", "x"}}) {
        Media media;
        for (int i = 0; i < 7; ++i)
            media.Write("inst/" + std::string(kind.prefix) + std::to_string(i) + kind.suffix,
                        kind.content);
        std::vector<Finding> findings = media.Validate().findings.Sorted();
        std::erase_if(findings, [&kind](const Finding& each) { return each.id != kind.id; });
        EXPECT_EQ(findings.size(), 5u) << kind.id;
    }
}

// On a disc that tells capitals apart.
TEST(ManyOfOneKind, ThatDifferInCapitalsAreFiveFindings) {
    Media media;
    for (int i = 0; i < 7; ++i)
        for (const char* prefix : {"part", "qart"})
            media.Write("inst/" + (prefix + std::to_string(i)), "x");
    const Hook<decltype(&FindNextFileW)> renamed("FindNextFileW",
                                                 [](auto real, HANDLE search, auto data) -> BOOL {
                                                     const BOOL found = real(search, data);
                                                     if (found && data->cFileName[0] == L'q')
                                                         data->cFileName[0] = L'P';
                                                     return found;
                                                 });
    std::vector<Finding> findings = media.Validate().findings.Sorted();
    std::erase_if(findings, [](const Finding& each) { return each.id != "name-differs-in-case"; });
    EXPECT_EQ(findings.size(), 5u);
}

TEST(ManyOfOneKind, ThatCannotBeReadAreFiveFindings) {
    Media media;
    for (int i = 0; i < 7; ++i)
        media.Write("inst/closed" + std::to_string(i) + ".bin", "x");
    const Hook<decltype(&CreateFileW)> closed(
        "CreateFileW", [](auto real, LPCWSTR name, auto... rest) -> HANDLE {
            if (std::wstring(name).find(L"closed") == std::wstring::npos)
                return real(name, rest...);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
    std::vector<Finding> findings = media.Validate().findings.Sorted();
    std::erase_if(findings, [](const Finding& each) { return each.id != "file-unreadable"; });
    EXPECT_EQ(findings.size(), 5u);
}

// In a copy below a temporary folder of 100 characters: 100 + 1 + 36 + 1 are in front.
TEST(LongPathsInACopy, AreTooLongByOneCharacter) {
    const auto found = [](std::size_t length, bool isFolder) {
        Media media;
        const std::string first = "inst/" + std::string(50, 'a');
        const std::string name = first + "/" + std::string(length - 138 - first.size() - 1, 'b');
        if (isFolder)
            media.MakeDir(name);
        else
            media.Write(name, "x");
        mediatool::ValidateRequest request;
        request.folders = {media.Text()};
        request.temp = "C:\\" + std::string(97, 't');
        return WhatOf(mediatool::Validate(request).findings.Sorted(), "path-too-long-in-copy");
    };
    const Hook<decltype(&RegGetValueW)> disabled(
        "RegGetValueW", [](auto&&...) { return LSTATUS{ERROR_FILE_NOT_FOUND}; });
    EXPECT_EQ(found(247, true), "none");
    EXPECT_EQ(found(248, true),
              "In a copy, the path would have 248 characters; Windows takes 247 unless long paths "
              "are enabled.");
    EXPECT_EQ(found(248, false), "none");
}

TEST(ProgressOfValidate, CountsTheEntriesBelowInst) {
    const Media media;
    std::vector<std::size_t> told;
    mediatool::ValidateRequest request;
    request.folders = {media.Text()};
    request.progress = [&told](std::size_t entries) { told.push_back(entries); };
    mediatool::Validate(request);
    EXPECT_THAT(told, testing::ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST(TemporaryFolderOfValidate, IsAskedForWithAnExample) {
    mediatool::ValidateRequest request;
    request.temp = "Temp";
    try {
        mediatool::Validate(request);
        FAIL() << "it was taken";
    } catch (const mediatool::BadInput& failure) {
        EXPECT_STREQ(failure.what(),
                     "--temp takes the full path of a folder, such as C:\\Temp, not \"Temp\".");
    }
}

TEST(DeviceNames, WithoutAnExtensionAreReservedEverywhere) {
    Media media;
    media.Write("inst/xyz", "x");
    const Hook<decltype(&FindNextFileW)> renamed(
        "FindNextFileW", [](auto real, HANDLE search, auto data) -> BOOL {
            const BOOL found = real(search, data);
            if (found && std::wstring(data->cFileName) == L"xyz")
                std::wstring(L"com").copy(data->cFileName, 3), data->cFileName[3] = L'7',
                                                               data->cFileName[4] = 0;
            return found;
        });
    const std::vector<Finding> findings = media.Validate().findings.Sorted();
    const auto found = std::ranges::find(findings, "name-reserved", &Finding::id);
    ASSERT_NE(found, findings.end());
    EXPECT_EQ(found->file, media.Text("inst\\com7"));
    const auto text = std::ranges::find(mediatool::findings::kTexts, std::string("name-reserved"),
                                        &mediatool::FindingText::name);
    EXPECT_EQ(found->why, text->why);
}

// Shortened from 201 bytes on.
TEST(ValuesForReaders, MayHave200Bytes) {
    for (const std::size_t size : {198u, 199u}) {  // and two quotation marks
        Media media(Layout::Siblings);
        media.Marker(kTwo, std::string(size, 'x'));
        EXPECT_EQ(WhatOf(media.Validate().findings.Sorted(mediatool::Findings::Shown::Readable),
                         "volume-id-differs"),
                  "The identifier is " +
                      (size == 198 ? "\"" + std::string(198, 'x') + "\""
                                   : "\"" + std::string(79, 'x') + "... (201 characters)") +
                      "; volume 1 has \"SET\".");
    }
}

// A letter of four bytes, of which the first three are the last of the start.
TEST(ValuesForReaders, AreNotCutWithinTheLongestLetter) {
    Media media(Layout::Siblings);
    std::string id(76, 'x');
    for (int i = 0; i < 60; ++i)
        id += "\xF0\x9F\x92\xBF";
    media.Marker(kTwo, id);
    EXPECT_EQ(WhatOf(media.Validate().findings.Sorted(mediatool::Findings::Shown::Readable),
                     "volume-id-differs"),
              "The identifier is \"" + std::string(76, 'x') +
                  "... (198 characters); volume 1 has \"SET\".");
}

struct Fewest {
    const char* count;
    const char* what;
};
TEST(MissingVolumesOfFive, AreAllNamed) {
    for (const auto& [count, what] :
         {Fewest{"8", "5 volumes are missing: 4, 5, 6, 7 and 8."},
          Fewest{"9", "6 volumes are missing: 4, 5, 6, 7, 8 and so on."}}) {
        Media media(Layout::Siblings);
        media.Write(kCount, count);
        EXPECT_EQ(WhatOf(media.Validate().findings.Sorted(), "volume-missing"), what);
    }
}

TEST(PackedVolumes, AreArchivesWithANumberAtTheirEnd) {
    const struct {
        const char* name;
        bool isOne;
    } rows[] = {
        {"3.zip", true},         {"3.7z", true},    {"Disc3.rar", true}, {"disc-3.ISO", true},
        {"3.tar", true},         {"3.gz", true},    {"3.tar.gz", true},  {"3.tgz", true},
        {"Volume 03.zip", true}, {"3a.zip", false}, {"13.zip", false},   {"3.cab", false},
        {"30.zip", false},       {"zip", false},    {".zip", false},     {"3", false},
        {"disc.3.zip", false},   {"1.zip", false},  {"2.zip", false},    {"4.zip", false}};
    for (const auto& [name, isOne] : rows) {
        Media media(Layout::Siblings);
        media.Remove("../3").Write("../" + std::string(name), "x");
        EXPECT_EQ(Changes(media.Validate(), Layout::Siblings),
                  isOne ? "volume-not-unpacked" : "volume-missing")
            << name;
    }
}

TEST(MarkerNumbers, AreThoseOfTheNames) {
    for (const auto& [name, number] :
         std::vector<std::pair<std::string, VolumeNumber>>{{"1.txt", 1},
                                                           {"27.TXT", 27},
                                                           {"2147483647.txt", 2147483647},
                                                           {"2147483648.txt", 0},
                                                           {"0.txt", 0},
                                                           {"01.txt", 0},
                                                           {"1.txt.txt", 0},
                                                           {".txt", 0},
                                                           {"1a.txt", 0},
                                                           {"1.text", 0},
                                                           {"1", 0}})
        EXPECT_EQ(mediatool::NumberIn(Path("C:\\" + name)), number) << name;
}

TEST(MarkersOfAFolder, AreItsFilesWithNumbers) {
    const TemporaryFolder scratch;
    for (const char* name : {"1.txt", "02.txt", "3.txt.txt", "x.txt", "4.tx", "0.txt"})
        scratch.Write(name);
    scratch.MakeDir("5.txt");
    const Path folder(scratch.Text());
    const std::vector<Path> markers = mediatool::NumberedMarkers(folder);
    ASSERT_EQ(markers.size(), 1u);
    EXPECT_EQ(markers.front().Text(), scratch.Text("1.txt"));
    std::vector<std::string> meant;
    for (const auto& [number, marker] : mediatool::MarkersMeantIn(folder))
        meant.push_back(std::to_string(number) + " " + FileName(marker.file) +
                        (marker.hasZeros ? " with zeros" : ""));
    EXPECT_THAT(meant, testing::ElementsAre("0 0.txt with zeros", "1 1.txt", "2 02.txt with zeros",
                                            "3 3.txt.txt", "5 5.txt"));
}

TEST(NumberedFolders, AreThoseFromOneNumberToAnother) {
    const TemporaryFolder scratch;
    for (const char* name : {"1", "2", "3", "04", "5", "6", "102", "103", "x"})
        scratch.MakeDir(name);
    scratch.Write("4");
    const Path folder(scratch.Text());
    EXPECT_THAT(mediatool::NumberedFolders(folder, 2, 5), testing::ElementsAre(2, 3, 5));
    EXPECT_THAT(mediatool::NumberedFolders(folder, 2, 103),
                testing::ElementsAre(2, 3, 5, 6, 102, 103));
    // A hundred more than the first are asked for where nobody can list them.
    const Hook<decltype(&FindFirstFileW)> denied(
        "FindFirstFileW", FailsWith(ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE));
    EXPECT_THAT(mediatool::NumberedFolders(folder, 2, 5), testing::ElementsAre(2, 3, 5));
    EXPECT_THAT(mediatool::NumberedFolders(folder, 2, 1000), testing::ElementsAre(2, 3, 5, 6, 102));
}

TEST(RootEntries, ThatCannotBeReadMatterAsTheirCopyDoes) {
    const struct {
        Layout layout;
        const char* removed;
        Level level;
    } rows[] = {{Layout::Siblings, "none", Level::Warning},
                {Layout::Siblings, "../3", Level::Error}};
    for (const auto& [layout, removed, level] : rows)
        for (const char* name :
             {"meta.TOCxml", "media.xml", "media.db", "StartTUI.exe", "setup_noUAC.exe"}) {
            Media media(layout);
            media.Remove(removed);
            const std::wstring end = ToWide(std::string("\\1\\") + name);
            const Hook<decltype(&CreateFileW)> closed(
                "CreateFileW", [&end](auto real, LPCWSTR file, auto... rest) -> HANDLE {
                    if (!std::wstring(file).ends_with(end)) return real(file, rest...);
                    SetLastError(ERROR_SHARING_VIOLATION);
                    return INVALID_HANDLE_VALUE;
                });
            const std::vector<Finding> findings = media.Validate().findings.Sorted();
            const auto found = std::ranges::find(findings, "root-entry-unreadable", &Finding::id);
            ASSERT_NE(found, findings.end()) << name;
            EXPECT_EQ(found->level, level);
            EXPECT_EQ(found->file, media.Text(name));
        }
}

TEST(LinksToFolders, AreNotSearchedForInstallers) {
    Media media;
    media.Rename("inst/win_b64", "../target").MakeDir("inst/win_b64");
    const FolderLink link(FromUtf8(media.Text("inst/win_b64/link")),
                          FromUtf8(media.Text("../target")));
    EXPECT_EQ(Changes(media.Validate()), "installer-on-other-media link");
}

}  // namespace
}  // namespace launcher::test
