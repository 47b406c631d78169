// The programs of a medium: those that are cut off, what is behind them, and other versions.

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <filesystem>
#include <utility>

#include "mediatool/media/program_file.h"
#include "tests/mediatool/validate/mistake_row.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

constexpr char kProgram[] = "inst/win_b64/code/bin/ZEPInsAppliGUI.exe";

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
                         testing::Values(std::pair(kProgram, "installer-cut-off"),
                                         std::pair("setup.exe", "launcher-cut-off")),
                         [](const auto& row) {
                             return std::string(row.index == 0 ? "Installer" : "Launcher");
                         });

// The certificates of a signature are at the end of the file, and a part of it.
TEST(TrailingBytes, AreNotTheCertificates) {
    std::string bytes = LauncherWithoutSymbols();
    bytes.resize((bytes.size() + 7) / 8 * 8);
    IMAGE_DOS_HEADER dos{};
    std::memcpy(&dos, bytes.data(), sizeof dos);
    const std::size_t headers = static_cast<std::size_t>(dos.e_lfanew);
    IMAGE_FILE_HEADER file{};
    std::memcpy(&file, bytes.data() + headers + sizeof(DWORD), sizeof file);
    const std::size_t directories =
        file.Machine == kX64 ? offsetof(IMAGE_NT_HEADERS64, OptionalHeader.DataDirectory)
                             : offsetof(IMAGE_NT_HEADERS32, OptionalHeader.DataDirectory);
    const IMAGE_DATA_DIRECTORY place{static_cast<DWORD>(bytes.size()), 64};
    std::memcpy(
        bytes.data() + headers + directories + IMAGE_DIRECTORY_ENTRY_SECURITY * sizeof place,
        &place, sizeof place);
    bytes.append(64, 'c');
    SampleMedia media;
    EXPECT_EQ(Changes(media.Write("setup.exe", bytes).Validate()), "-launcher-not-signed");
    EXPECT_EQ(Changes(media.Write("setup.exe", bytes + "x").Validate()),
              "launcher-trailing-bytes -launcher-not-signed");
}

TEST(LauncherOfAnotherVersion, IsToldWithBoth) {
    SampleMedia media;
    const Validation validation = media.Write("setup.exe", OtherLauncherBytes()).Validate();
    EXPECT_EQ(Changes(validation), "launcher-other-version");
    const std::vector<Finding> findings = validation.findings.Sorted();
    const auto found = std::ranges::find(findings, "launcher-other-version", &Finding::id);
    ASSERT_NE(found, findings.end());
    EXPECT_EQ(found->level, Level::Note);
    EXPECT_EQ(found->file, media.Text("setup.exe"));
    EXPECT_EQ(found->what, "setup.exe is version " + kOtherVersion + " of the launcher.");
    EXPECT_EQ(found->why, "These findings apply to version " LAUNCHER_VERSION ".");
}

TEST(AnotherProgramInTheLaunchersPlace, IsToldByItsName) {
    std::string name;  // in UTF-16
    for (const char c : std::string(mediatool::kLauncherProduct))
        name += {c, '\0'};
    std::string bytes = LauncherBytes();
    for (std::size_t at = 0; (at = bytes.find(name, at)) != std::string::npos;)
        bytes[at] = '9';
    SampleMedia media;
    const Validation validation = media.Write("setup.exe", bytes).Validate();
    EXPECT_EQ(Changes(validation), "launcher-not-this-one");
    const std::vector<Finding> findings = validation.findings.Sorted();
    EXPECT_EQ(findings.front().what,
              "setup.exe is not this launcher but \"9nstallation media launcher\".");
}

}  // namespace
}  // namespace launcher::test
