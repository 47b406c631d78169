#include "installer/environment_backup.h"

#include "fs/environment.h"
#include "tests/support/isolated_test.h"

namespace launcher {
namespace {

class EnvironmentBackupTest : public test::IsolatedTest {};

TEST_F(EnvironmentBackupTest, KeepsTheValueAfterThePrefix) {
    SetEnvVar("PATH", "C:\\Windows;\xC3\xA4 \"b\"=c");
    BackupEnvVar("PATH");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_PATH"), "ZEP_BAK=C:\\Windows;\xC3\xA4 \"b\"=c");
    EXPECT_EQ(GetEnvVar("PATH"), "C:\\Windows;\xC3\xA4 \"b\"=c");
}

TEST_F(EnvironmentBackupTest, IsOverwrittenByTheNextOne) {
    for (const std::string value : {"first", "second", ""}) {
        SetEnvVar("Launcher_Test", value);
        BackupEnvVar("Launcher_Test");
        EXPECT_EQ(GetEnvVar("ZEP_BAK_Launcher_Test"), "ZEP_BAK=" + value);
    }
}

}  // namespace
}  // namespace launcher
