#include "installer/environment_backup.h"

#include "fs/environment.h"
#include "tests/launcher/isolated_test.h"

namespace launcher {
namespace {

class EnvironmentBackupTest : public test::IsolatedTest {};

TEST_F(EnvironmentBackupTest, TellsThatAVariableWasUnset) {
    SetEnvVar("Launcher_Test", "");
    BackupEnvVar("Launcher_Test");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_Launcher_Test"), "ZEP_BAK=");
}

TEST_F(EnvironmentBackupTest, KeepsTheValueBehindThePrefix) {
    SetEnvVar("PATH", "C:\\Windows;\xC3\xA4 \"b\"=c");
    BackupEnvVar("PATH");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_PATH"), "ZEP_BAK=C:\\Windows;\xC3\xA4 \"b\"=c");
    EXPECT_EQ(GetEnvVar("PATH"), "C:\\Windows;\xC3\xA4 \"b\"=c");
}

TEST_F(EnvironmentBackupTest, IsOverwrittenByTheNextOne) {
    SetEnvVar("Launcher_Test", "first");
    BackupEnvVar("Launcher_Test");
    SetEnvVar("Launcher_Test", "second");
    BackupEnvVar("Launcher_Test");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_Launcher_Test"), "ZEP_BAK=second");
    SetEnvVar("Launcher_Test", "");
    BackupEnvVar("Launcher_Test");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_Launcher_Test"), "ZEP_BAK=");
}

}  // namespace
}  // namespace launcher
