// Every kind of mistake in the launcher's own part of a media, its installers, its flavour markers
// and its count file.

#include <windows.h>

#include <filesystem>
#include <utility>

#include "tests/mediatool/validate/mistake_row.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

constexpr char kExe[] = "inst/win_b64/code/bin/ZEPInsAppliGUI.exe";
constexpr char kExe32[] = "inst/intel_a/code/bin/ZEPInsAppliGUI.exe";
constexpr char kMarker[] = "inst/common/win_b64.installos";
constexpr char kCount[] = "inst/volumes.txt";
constexpr Layout kPlain = Layout::NotSplit;

TEST_P(MistakeTest, IsFoundByItsName) {
    ExpectToBeFound(GetParam());
}

using Media = SampleMedia;

const Mistake kLauncherMistakes[] = {
    {"launcher-missing", Level::Error, Layout::Siblings, [](Media& m) { m.Remove("setup.exe"); },
     "", "-launcher-not-signed -launcher-not-this-one"},
    {"launcher-not-file", Level::Error, kPlain,
     [](Media& m) { m.Remove("setup.exe").MakeDir("setup.exe"); }, "",
     "-launcher-not-signed -launcher-not-this-one"},
    {"launcher-empty", Level::Error, kPlain, [](Media& m) { m.Write("setup.exe", ""); }, "",
     "-launcher-not-signed -launcher-not-this-one"},
    {"launcher-not-program", Level::Error, kPlain,
     [](Media& m) { m.Write("setup.exe", "#!/bin/sh\n"); }, "",
     "-launcher-not-signed -launcher-not-this-one"},
    {"launcher-wrong-machine", Level::Error, kPlain,
     [](Media& m) { m.Write("setup.exe", ProgramBytes(kArm64)); }},
    {"launcher-redirection", Level::Warning, kPlain,
     [](Media& m) { m.MakeDir("setup.exe.local"); }},
    {"launcher-foreign-manifest", Level::Warning, kPlain,
     [](Media& m) { m.Write("setup.exe.manifest"); }},
    {"launcher-64-bit-only", Level::Note, kPlain,
     [](Media& m) { m.Write(kExe32, ProgramBytes(kX86)); }, "",
     "flavour-marker-missing -not-for-32-bit-windows"},
    {"root-entry-missing", Level::Warning, kPlain, [](Media& m) { m.Remove("media.db"); }},
    {"root-entry-missing", Level::Error, Layout::Siblings,
     [](Media& m) { m.Remove("StartTUI.exe").Remove("../3"); }, "BeforeACopy", "volume-missing"},
    {"root-entry-is-folder", Level::Warning, kPlain,
     [](Media& m) { m.Remove("media.xml").MakeDir("media.xml"); }},
    {"inst-missing", Level::Error, kPlain, [](Media& m) { m.Remove("inst"); }, "",
     "-not-for-32-bit-windows"},
    {"inst-is-file", Level::Error, kPlain, [](Media& m) { m.Remove("inst").Write("inst"); }, "",
     "-not-for-32-bit-windows"},
};
INSTANTIATE_TEST_SUITE_P(Launcher, MistakeTest, testing::ValuesIn(kLauncherMistakes), MistakeName);

const Mistake kInstallerMistakes[] = {
    {"not-for-windows", Level::Error, kPlain, [](Media& m) { m.Remove(kExe).Remove(kMarker); }, "",
     "installer-missing -not-for-32-bit-windows"},
    {"installer-missing", Level::Error, kPlain, [](Media& m) { m.Remove(kExe).Remove(kMarker); },
     "", "not-for-windows -not-for-32-bit-windows"},
    {"installer-other-name", Level::Error, kPlain,
     [](Media& m) {
         m.Rename(kExe, "inst/win_b64/code/bin/ZEPInsAppliGUI_new.exe").Remove(kMarker);
     },
     "", "not-for-windows -not-for-32-bit-windows"},
    {"installer-other-name", Level::Error, kPlain,
     [](Media& m) { m.Rename(kExe, "inst/win_b64/code/bin/ZEPInsAppliGUI.exe.bak"); },
     "BesideItsMarker", "installer-on-other-media"},
    {"installer-other-name", Level::Error, kPlain,
     [](Media& m) {
         m.Write(kExe32, ProgramBytes(kX86))
             .Rename(kExe, "inst/win_b64/code/bin/ZEPInsAppliGUI (1).exe");
     },
     "BesideThatFor32Bit", "flavour-marker-missing launcher-64-bit-only -not-for-32-bit-windows"},
    {"installer-other-name", Level::Warning, kPlain,
     [](Media& m) { m.Rename(kExe, "inst/win_b64/code/bin/Install.exe"); }, "OrAnotherProgram",
     "installer-on-other-media"},
    {"installer-misplaced", Level::Error, kPlain,
     [](Media& m) { m.Rename("inst/win_b64/code/bin", "inst/win_b64/bin"); }, "",
     "installer-on-other-media"},
    {"installer-misplaced", Level::Error, kPlain,
     [](Media& m) {
         m.Write(kExe32, ProgramBytes(kX86)).Rename("inst/win_b64/code/bin", "inst/win_b64/bin");
     },
     "BesideThatFor32Bit", "flavour-marker-missing launcher-64-bit-only -not-for-32-bit-windows"},
    {"installer-misplaced", Level::Error, kPlain,
     [](Media& m) { m.Rename("inst/win_b64/code", "inst/code"); }, "WithoutItsFolder",
     "installer-on-other-media"},
    {"installer-misplaced", Level::Error, kPlain,
     [](Media& m) { m.Rename("inst/win_b64", "win_b64"); }, "OutsideInst",
     "installer-on-other-media"},
    {"installer-is-folder", Level::Error, kPlain, [](Media& m) { m.Remove(kExe).MakeDir(kExe); }},
    {"installer-empty", Level::Error, kPlain, [](Media& m) { m.Write(kExe, ""); }},
    {"installer-not-program", Level::Error, kPlain, [](Media& m) { m.Write(kExe, "echo off"); }},
    {"installer-is-library", Level::Error, kPlain,
     [](Media& m) { m.Write(kExe, ProgramBytes(kX64, true)); }},
    {"installer-wrong-machine", Level::Error, kPlain,
     [](Media& m) { m.Write(kExe, ProgramBytes(kArm64)); }},
    {"installer-32-bit-in-64-bit-folder", Level::Warning, kPlain,
     [](Media& m) { m.Write(kExe, ProgramBytes(kX86)); }},
    {"installer-64-bit-in-32-bit-folder", Level::Error, kPlain,
     [](Media& m) { m.Write(kExe32, ProgramBytes(kX64)); }, "",
     "flavour-marker-missing launcher-64-bit-only -not-for-32-bit-windows"},
    {"installer-folder-unknown", Level::Error, kPlain,
     [](Media& m) { m.Rename("inst/win_b64", "inst/win64"); }, "", "installer-on-other-media"},
    {"installer-in-two-places", Level::Warning, kPlain,
     [](Media& m) { m.Write("1/" + std::string(kExe), ProgramBytes(kX64)); }},
    {"installer-never-used", Level::Note, kPlain,
     [](Media& m) { m.Write("inst/win_csa64/code/bin/ZEPInsAppliGUI.exe", ProgramBytes(kX64)); },
     "", "flavour-marker-missing"},
    {"installer-on-other-media", Level::Note, kPlain, [](Media& m) { m.Remove(kExe); }},
    {"only-32-bit-installer", Level::Note, kPlain,
     [](Media& m) { m.Remove("inst/win_b64").Remove(kMarker).Write(kExe32, ProgramBytes(kX86)); },
     "", "flavour-marker-missing launcher-64-bit-only -not-for-32-bit-windows"},
    {"flavour-marker-missing", Level::Note, kPlain, [](Media& m) { m.Remove(kMarker); }},
    {"flavour-marker-double-extension", Level::Error, kPlain,
     [](Media& m) { m.Rename(kMarker, "inst/common/win_b64.installos.txt"); }, "",
     "flavour-marker-missing"},
    {"flavour-marker-unknown", Level::Warning, kPlain,
     [](Media& m) { m.Write("inst/common/win64.installos"); }},
    {"flavour-marker-misplaced", Level::Error, kPlain,
     [](Media& m) { m.Rename(kMarker, "inst/win_b64.installos"); }, "", "flavour-marker-missing"},
    {"flavour-marker-is-folder", Level::Warning, kPlain,
     [](Media& m) { m.Remove(kMarker).MakeDir(kMarker); }},
};
INSTANTIATE_TEST_SUITE_P(Installers, MistakeTest, testing::ValuesIn(kInstallerMistakes),
                         MistakeName);

// What a copy leaves that was broken off.
class CutOffPrograms : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(CutOffPrograms, AreFound) {
    const auto [name, id] = GetParam();
    const SampleMedia media;
    const std::filesystem::path file = FromUtf8(media.Text(name));
    CopyFileW(BuiltFile(SETUP_PROGRAM).c_str(), file.c_str(), FALSE);
    EXPECT_FALSE(Has(media.Validate(), id));
    std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
    const std::vector<Finding> findings = media.Validate().findings.Sorted();
    EXPECT_EQ(findings.front().id, id);
    EXPECT_EQ(findings.front().level, Level::Error);
}

INSTANTIATE_TEST_SUITE_P(Programs, CutOffPrograms,
                         testing::Values(std::pair(kExe, "installer-cut-off"),
                                         std::pair("setup.exe", "launcher-cut-off")),
                         [](const auto& row) {
                             return std::string(row.index == 0 ? "Installer" : "Launcher");
                         });

// The 32-bit refusal is in the ordinary media already: it must go when an installer comes.
TEST(InstallerNotes, SayThatThereIsNothingFor32BitWindowsOnlyWhenThereIsNot) {
    SampleMedia media;
    EXPECT_TRUE(Has(media.Validate(), "not-for-32-bit-windows"));
    media.Write(kExe32, ProgramBytes(kX86));
    EXPECT_FALSE(Has(media.Validate(), "not-for-32-bit-windows"));
}

const Mistake kCountFileMistakes[] = {
    {"count-file-bom", Level::Error, Layout::Siblings,
     [](Media& m) {
         m.Write(kCount,
                 "\xEF\xBB\xBF"
                 "3\r\n");
     }},
    {"count-file-utf16", Level::Error, Layout::Siblings,
     [](Media& m) {
         m.Write(kCount, std::string_view("\xFF\xFE"
                                          "3\0",
                                          4));
     }},
    {"count-file-utf16", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, std::string_view("3\0\r\0\n\0", 6)); }, "WithoutAMark"},
    {"count-file-utf16", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, std::string_view("\0003\0\r\0\n", 6)); }, "BigEndian"},
    {"count-file-empty", Level::Error, Layout::Siblings, [](Media& m) { m.Write(kCount, ""); }},
    {"count-file-blank-line-first", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "\r\n3\r\n"); }, "", "count-file-more-lines"},
    {"count-file-not-a-number", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "three\r\n"); }},
    {"count-file-out-of-range", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "30000000000\r\n"); }},
    {"count-file-more-than-number", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3 volumes\r\n"); }},
    {"count-file-blanks", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3 \r\n"); }},
    {"count-file-plus-sign", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "+3\r\n"); }},
    {"count-file-leading-zeros", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "03\r\n"); }},
    {"count-file-negative", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "-3\r\n"); }},
    {"count-file-zero", Level::Error, Layout::Siblings, [](Media& m) { m.Write(kCount, "0\r\n"); }},
    {"count-file-one", Level::Note, Layout::Siblings, [](Media& m) { m.Write(kCount, "1\r\n"); },
     "", "volume-beyond-count"},
    {"volume-beyond-count", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "1\r\n"); }, "OfOneVolume", "count-file-one"},
    {"volume-beyond-count", Level::Error, Layout::OneFolder,
     [](Media& m) { m.Write(kCount, "1\r\n"); }, "OfOneVolumeInOneFolder", "count-file-one"},
    {"count-file-in-later-volume", Level::Warning, Layout::Siblings,
     [](Media& m) { m.Write("../2/inst/volumes.txt", "3\r\n"); }},
    {"count-file-absurd", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3000\r\n"); }, "", "volume-missing"},
    {"count-file-double-cr", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3\r\r\n"); }},
    {"count-file-cr-only", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3\rvolumes\r"); }},
    {"count-file-control-character", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3\x1A"); }},
    {"count-file-more-lines", Level::Note, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3\r\nof them\r\n"); }},
    {"count-file-is-folder", Level::Error, Layout::Siblings,
     [](Media& m) { m.Remove(kCount).MakeDir(kCount); }},
    {"count-file-misplaced", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename(kCount, "volumes.txt"); }},
    {"count-file-misspelt", Level::Error, Layout::Siblings,
     [](Media& m) { m.Rename(kCount, "inst/volumes.txt.txt"); }},
    {"count-file-missing", Level::Error, Layout::Siblings, [](Media& m) { m.Remove(kCount); }},
};
INSTANTIATE_TEST_SUITE_P(CountFile, MistakeTest, testing::ValuesIn(kCountFileMistakes),
                         MistakeName);

}  // namespace
}  // namespace launcher::test
