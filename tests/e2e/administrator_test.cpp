// The gate in front of the installer.

#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

constexpr char kRefusal[] =
    "The installer must be run from an elevated Command Prompt ('Run as administrator')";

class Administrator : public LauncherTest {};

TEST_F(Administrator, IsToldToTheInstaller) {
    EXPECT_EQ(Run(UsualMedia()).Installer().Variable("ZEPIns_HasElevatedPrivileges"), "1");
}

// The value is not interpreted.
TEST_F(Administrator, OthersAreRefused) {
    variables["ZEPProcessNotAdmin"] = "0";
    EXPECT_THAT(Run(UsualMedia(), {"-wait"}), IsRefusedWith(kRefusal));
}

TEST_F(Administrator, RefusalComesLastAndUndoesNothing) {
    variables["ZEPProcessNotAdmin"] = "1";
    const LauncherRun run = Run(MediaToCopy());
    EXPECT_THAT(run, IsRefusedWith(kRefusal));
    EXPECT_EQ(run.LeftInTemp().size(), 1u);
}

// Without anything pretended: what the tests are started with decides.
class NotElevated : public LauncherTest {
  protected:
    void SetUp() override {
        // All other tests need the rights that these must not have. Runs in an ordinary console on
        // Windows, and where Wine starts programs without them: tools/other-wines.sh.
        if (IsElevated()) GTEST_SKIP() << "needs a user without an administrator's full rights";
    }
};

TEST_F(NotElevated, IsRefused) {
    EXPECT_THAT(Run(UsualMedia(), {"-wait"}), IsRefusedWith(kRefusal));
}

TEST_F(NotElevated, IsLetInByTheVariable) {
    variables["ZEPAdmInstAllowNotAdminUser"] = "1";
    const LauncherRun run = Run(UsualMedia(), {"-wait"});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_EQ(run.Installer().Variable("ZEPIns_HasElevatedPrivileges"), "0");
}

class AllowNotAdmin : public LauncherTableTest<const char*> {};

TEST_P(AllowNotAdmin, LetsOthersIn) {
    variables["ZEPProcessNotAdmin"] = "1";
    variables["ZEPAdmInstAllowNotAdminUser"] = GetParam();
    const LauncherRun run = Run(UsualMedia(), {"-wait"});
    EXPECT_THAT(run, EndsQuietlyWith(0));
    EXPECT_THAT(run.output, testing::EndsWith(" INFO: The user is not admin, but continue.\r\n"));
    EXPECT_EQ(run.Installer().Variable("ZEPIns_HasElevatedPrivileges"), "0");
}

// Any value does.
INSTANTIATE_TEST_SUITE_P(Values, AllowNotAdmin, testing::Values("1", "0", "no", "false"),
                         [](const auto& row) { return std::string(row.param); });

}  // namespace
}  // namespace launcher::test
