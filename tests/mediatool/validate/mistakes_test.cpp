// Every kind of mistake in the launcher's own part of a medium, its installers, its flavour markers
// and its count file.

#include "tests/mediatool/validate/mistake_row.h"

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
     "", "-launcher-not-signed"},
    {"launcher-not-file", Level::Error, kPlain,
     [](Media& m) { m.Remove("setup.exe").MakeDir("setup.exe"); }, "", "-launcher-not-signed"},
    {"launcher-empty", Level::Error, kPlain, [](Media& m) { m.Write("setup.exe", ""); }, "",
     "-launcher-not-signed"},
    {"launcher-not-program", Level::Error, kPlain,
     [](Media& m) { m.Write("setup.exe", "#!/bin/sh\n"); }, "", "-launcher-not-signed"},
    {"launcher-wrong-machine", Level::Error, kPlain,
     [](Media& m) { m.Write("setup.exe", ProgramBytes(kArm64)); }, "", "launcher-not-this-one"},
    {"launcher-not-this-one", Level::Error, kPlain,
     [](Media& m) { m.Write("setup.exe", ProgramBytes(kX64)); }},
    {"launcher-trailing-bytes", Level::Warning, kPlain,
     [](Media& m) { m.Write("setup.exe", LauncherWithoutSymbols() + "x"); }},
    {"autorun-other-program", Level::Warning, kPlain,
     [](Media& m) { m.Write("autorun.inf", "[AutoRun]\r\nicon=a.ico\r\nopen=menu.exe /x\r\n"); }},
    {"autorun-other-program", Level::Warning, kPlain,
     [](Media& m) {
         m.Write("autorun.inf", "[autorun.amd64]\nshellexecute = \"start me\\menu.exe\"\n");
     },
     "InQuotes"},
    {"autorun-other-program", Level::Warning, kPlain,
     [](Media& m) {
         m.Write("autorun.inf", std::string_view("\xFF\xFE[\0a\0u\0t\0o\0r\0u\0n\0]\0\n\0o\0p\0"
                                                 "e\0n\0=\0x\0",
                                                 34));
     },
     "InUtf16"},
    {"launcher-redirection", Level::Warning, kPlain,
     [](Media& m) { m.MakeDir("setup.exe.local"); }},
    {"launcher-foreign-manifest", Level::Warning, kPlain,
     [](Media& m) { m.Write("setup.exe.manifest"); }},
    {"launcher-64-bit-only", Level::Note, kPlain,
     [](Media& m) { m.Write(kExe32, ProgramBytes(kX86)); }, "",
     "flavour-marker-missing -not-for-32-bit-windows"},
    {"root-entry-missing", Level::Note, kPlain, [](Media& m) { m.Remove("media.db"); }},
    {"root-entry-missing", Level::Warning, Layout::OneFolder,
     [](Media& m) { m.Remove("media.db"); }, "OfASet"},
    {"root-entry-missing", Level::Error, Layout::Siblings,
     [](Media& m) { m.Remove("StartTUI.exe").Remove("../3"); }, "BeforeACopy", "volume-missing"},
    {"root-entry-is-folder", Level::Warning, kPlain,
     [](Media& m) { m.Remove("media.xml").MakeDir("media.xml"); }},
    {"names-cut-short", Level::Error, kPlain,
     [](Media& m) {
         m.Rename("meta.TOCxml", "META.TOC").Rename("setup_noUAC.exe", "SETUP_NO.EXE");
         m.Rename(kExe, "inst/win_b64/code/bin/ZEPINSAP.EXE");
         m.Rename(kMarker, "inst/common/WIN_B64.INS");
     },
     "", "-not-for-32-bit-windows"},
    {"root-entry-missing", Level::Note, kPlain,
     [](Media& m) { m.Rename("meta.TOCxml", "META.TOC"); }, "WithACutName"},
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
    {"installer-missing", Level::Note, kPlain,
     [](Media& m) { m.Write("inst/intel_a/code/bin/shared.dll", ProgramBytes(kX86, true)); },
     "BesideTheFirstChoice"},
    {"installer-missing", Level::Error, kPlain,
     [](Media& m) {
         m.Write(kExe32, ProgramBytes(kX86)).Remove(kExe).Remove(kMarker);
         m.Write("inst/win_b64/code/bin/shared.dll", ProgramBytes(kX64, true));
     },
     "BesideTheLastChoice",
     "flavour-marker-missing launcher-64-bit-only only-32-bit-installer -not-for-32-bit-windows"},
    {"program-empty", Level::Warning, kPlain,
     [](Media& m) { m.Write("inst/win_b64/code/bin/helper.DLL"); }},
    {"program-empty", Level::Warning, kPlain, [](Media& m) { m.Write("StartTUI.exe"); },
     "AtTheRoot"},
    {"leftover", Level::Note, kPlain, [](Media& m) { m.Write("inst/data/~WRL1.TMP", "x"); }},
    {"leftover", Level::Note, kPlain, [](Media& m) { m.Write("inst/Thumbs.db", "x"); }, "Pictures"},
    {"leftover", Level::Note, kPlain, [](Media& m) { m.Write(".DS_Store", "x"); }, "AtTheRoot"},
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

TEST(Autorun, MayStartTheProgramsOfTheMedium) {
    SampleMedia media;
    for (const char* open : {"setup.exe", "SETUP.EXE -UI", "\"setup.exe\"", ".\\setup.exe", "setup",
                             "StartTUI.exe", "setup_noUAC.exe"}) {
        media.Write("autorun.inf", "[autorun]\r\nopen=" + std::string(open) + "\r\n");
        EXPECT_EQ(Changes(media.Validate()), "") << open;
    }
    media.Write("autorun.inf", "[other]\r\nopen=menu.exe\r\n[autorun]\r\nopen=\r\n");
    EXPECT_EQ(Changes(media.Validate()), "");
}

// Without the installer, the launcher goes by the marker that is there.
TEST(FlavourMarkers, OfAnotherFlavourAreTheReason) {
    SampleMedia media;
    media.Rename(kMarker, "inst/common/win_csa64.installos");
    const std::vector<Finding> findings = media.Validate().findings.Sorted();
    const auto found = std::ranges::find(findings, "flavour-marker-missing", &Finding::id);
    ASSERT_NE(found, findings.end());
    EXPECT_EQ(found->what,
              "There is an installer for win_b64, but only the flavour marker of "
              "win_csa64.");
    EXPECT_EQ(found->file, media.Text("inst\\common\\win_b64.installos"));
}

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
    {"count-file-cr-only", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, "3\r\r"); }, "WithABlankLine"},
    {"count-file-control-character", Level::Error, Layout::Siblings,
     [](Media& m) { m.Write(kCount, std::string_view("3\0", 2)); }, "OfZero"},
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
