// What a test program that was killed leaves behind on the machine, the next one puts right.

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <memory>

#include "tests/support/links.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

constexpr int kKilled = 9;

// Runs `body` in a process that ends where it stands: no destructor runs.
template <class Body>
void ExpectKilledAfter(const Body& body) {
    const auto run = [&] {
        const auto left = body();
        TerminateProcess(GetCurrentProcess(), kKilled);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(kKilled), "");
}

TEST(KilledRunDeathTest, LeavesItsDriveToTheNext) {
    const TemporaryFolder first;
    const TemporaryFolder second;
    second.Write("file");
    ExpectKilledAfter([&] { return std::make_unique<MappedDrive>("n:", first.Dir()); });
    ASSERT_TRUE(stdfs::exists(L"n:\\"));
    {
        const MappedDrive drive("n:", second.Dir());
        EXPECT_TRUE(stdfs::exists(drive.Root() / "file"));
    }
    EXPECT_FALSE(stdfs::exists(L"n:\\"));
    EXPECT_TRUE(TreeBelow(first.Dir()).empty());
}

TEST(KilledRunDeathTest, LeavesADriveWhoseFolderIsGone) {
    const TemporaryFolder second;
    ExpectKilledAfter([] {
        const TemporaryFolder first;
        return std::make_unique<MappedDrive>("o:", first.Dir());
    });
    const MappedDrive drive("o:", second.Dir());
    EXPECT_TRUE(stdfs::exists(drive.Root()));
}

TEST(KilledRunDeathTest, KeepsNoFreeLetter) {
    const TemporaryFolder folder;
    const stdfs::path free = MappedDrive(folder.Dir()).Root();
    ExpectKilledAfter([&] { return std::make_unique<MappedDrive>(folder.Dir()); });
    EXPECT_EQ(MappedDrive(folder.Dir()).Root(), free);
}

// A library of its own: others look for the system's at the same time.
class KilledRunSystemDllDeathTest : public testing::Test {
  protected:
    void SetUp() override {
        if (!IsWine()) GTEST_SKIP() << "only Wine's system folder is the tests' own";
        wchar_t folder[MAX_PATH] = {};
        GetSystemDirectoryW(folder, MAX_PATH);
        library_ = stdfs::path(folder) / L"launcher-test.dll";
        WriteFile(library_, "genuine");
        ExpectKilledAfter([this] { return Replaced(); });
        ASSERT_EQ(ReadFile(library_), "replacement");
    }
    void TearDown() override { stdfs::remove(library_); }
    std::unique_ptr<SystemDll> Replaced() const {
        scratch_.Write("replacement", "replacement");
        return std::make_unique<SystemDll>("launcher-test.dll", scratch_.Dir() / "replacement");
    }

    const TemporaryFolder scratch_;
    stdfs::path library_;
};

TEST_F(KilledRunSystemDllDeathTest, TheNextReplacementKeepsTheGenuineOne) {
    Replaced().reset();
    EXPECT_EQ(ReadFile(library_), "genuine");
}

TEST_F(KilledRunSystemDllDeathTest, WhoeverAsksForItGetsTheGenuineOne) {
    WineSettings("launcher-test.exe").OverrideDll("launcher-test", "builtin");
    EXPECT_EQ(ReadFile(library_), "genuine");
}

TEST_F(KilledRunSystemDllDeathTest, ALivingOneIsLeftAlone) {
    const std::unique_ptr<SystemDll> replaced = Replaced();
    WineSettings("launcher-test.exe").OverrideDll("launcher-test", "builtin");
    EXPECT_EQ(ReadFile(library_), "replacement");
}

TEST(KilledRunSettingsDeathTest, AreNotThoseOfTheNext) {
    if (!IsWine()) GTEST_SKIP() << "settings of Wine's";
    ExpectKilledAfter([] {
        auto settings = std::make_unique<WineSettings>("launcher-test.exe");
        settings->PoseAs("win7");
        return settings;
    });
    const WineSettings settings("launcher-test.exe");
    EXPECT_EQ(RegGetValueW(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\launcher-test.exe",
                           L"Version", RRF_RT_REG_SZ, nullptr, nullptr, nullptr),
              ERROR_FILE_NOT_FOUND);
}

}  // namespace
}  // namespace launcher::test
