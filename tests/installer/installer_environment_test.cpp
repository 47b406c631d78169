#include "installer/installer_environment.h"

#include <windows.h>

#include <string>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/exceptions.h"
#include "tests/installer/fakes.h"
#include "tests/support/hook.h"

namespace launcher {
namespace {

using testing::ElementsAre;

constexpr const char* kBackedUp[] = {
    "MORInst",         "MORInstaller",   "MORInstallPath",    "MORDictionaryPath",
    "MORReffilesPath", "MORGraphicPath", "MORMsgCatalogPath", "PATH"};

class InstallerEnvironmentTest : public test::InstallerTest {
  protected:
    InstallerEnvironmentTest() { options_.mediaInstDir = "E:\\Inst\\inst\\"; }
};

TEST_F(InstallerEnvironmentTest, HasEveryVariableInItsOrder) {
    for (const std::string name : kBackedUp)
        SetEnvVar(name, "old " + name);
    {
        const test::Hook<decltype(&SetEnvironmentVariableW)> record(
            "SetEnvironmentVariableW", [](auto real, LPCWSTR name, LPCWSTR value) {
                test::Record(ToNarrow(name) + "=" + ToNarrow(value));
                return real(name, value);
            });
        PrepareInstallerEnvironment(options_);
    }
    EXPECT_THAT(
        test::journal,
        ElementsAre(
            "ZEPAdmInstCurrentMediaDir=D:\\Media",
            // The paths of the media, each after its backup.
            "ZEP_BAK_MORInst=ZEP_BAK=old MORInst", "MORInst=D:\\Media\\inst",
            "ZEP_BAK_MORInstaller=ZEP_BAK=old MORInstaller", "MORInstaller=E:\\Inst\\inst\\",
            "ZEP_BAK_MORInstallPath=ZEP_BAK=old MORInstallPath",
            "MORInstallPath=D:\\Media\\inst\\win_b64",
            "ZEP_BAK_MORDictionaryPath=ZEP_BAK=old MORDictionaryPath",
            "MORDictionaryPath=D:\\Media\\inst\\win_b64\\code\\dictionary;"
            "D:\\Media\\inst\\common\\code\\dictionary;"
            "E:\\Inst\\inst\\win_b64\\code\\dictionary;E:\\Inst\\inst\\common\\code\\dictionary",
            "ZEP_BAK_MORReffilesPath=ZEP_BAK=old MORReffilesPath",
            "MORReffilesPath=D:\\Media\\inst\\win_b64\\reffiles;D:\\Media\\inst\\common\\reffiles;"
            "E:\\Inst\\inst\\win_b64\\reffiles;E:\\Inst\\inst\\common\\reffiles",
            "ZEP_BAK_MORGraphicPath=ZEP_BAK=old MORGraphicPath",
            "MORGraphicPath=D:\\Media\\inst\\win_b64\\resources\\graphic;"
            "D:\\Media\\inst\\common\\resources\\graphic;"
            "D:\\Media\\inst\\win_b64\\resources\\graphic\\icons;"
            "D:\\Media\\inst\\common\\resources\\graphic\\icons;"
            "D:\\Media\\inst\\win_b64\\resources\\graphic\\splashscreens;"
            "D:\\Media\\inst\\common\\resources\\graphic\\splashscreens;"
            "E:\\Inst\\inst\\win_b64\\resources\\graphic;"
            "E:\\Inst\\inst\\common\\resources\\graphic;"
            "E:\\Inst\\inst\\win_b64\\resources\\graphic\\icons;"
            "E:\\Inst\\inst\\common\\resources\\graphic\\icons;"
            "E:\\Inst\\inst\\win_b64\\resources\\graphic\\splashscreens;"
            "E:\\Inst\\inst\\common\\resources\\graphic\\splashscreens",
            "ZEP_BAK_MORMsgCatalogPath=ZEP_BAK=old MORMsgCatalogPath",
            "MORMsgCatalogPath=D:\\Media\\inst\\win_b64\\resources\\msgcatalog;"
            "D:\\Media\\inst\\common\\resources\\msgcatalog;"
            "E:\\Inst\\inst\\win_b64\\resources\\msgcatalog;"
            "E:\\Inst\\inst\\common\\resources\\msgcatalog",
            "ZEP_BAK_PATH=ZEP_BAK=old PATH", "PATH=D:\\Media\\inst\\win_b64\\code\\bin;old PATH",
            // The fixed switches and the session, without a backup.
            "ZEPSysIRManagementActivation=NO", "MORAppBridge=NO", "ZEPAdmInstDebugEnv=f",
            "ZEPAdmInstDebugSummary=f", "ZEPAdmInstDebugIndexes=f", "ZEPAdmInstDebugAction=f",
            "ZEPAdmInstDebugError=1", "ZEPAdmInstDebugEverything=1", "ZEP_OS=win_b64",
            "ZEPIns_HasElevatedPrivileges=1", "ZEPIns_IsInteractiveSession=1"));
}

TEST_F(InstallerEnvironmentTest, HasOnlyTheMediaWhereThereIsNoOther) {
    options_.mediaInstDir = "";
    options_.osFolder = "intel_a";
    SetEnvVar("MORInstaller", "old");
    PrepareInstallerEnvironment(options_);
    EXPECT_EQ(GetEnvironmentVariableW(L"MORInstaller", nullptr, 0), 0u);
    EXPECT_EQ(GetEnvVar("ZEP_BAK_MORInstaller"), "ZEP_BAK=old");
    EXPECT_EQ(GetEnvVar("MORReffilesPath"),
              "D:\\Media\\inst\\intel_a\\reffiles;D:\\Media\\inst\\common\\reffiles");
    EXPECT_EQ(GetEnvVar("ZEP_OS"), "intel_a");
}

TEST_F(InstallerEnvironmentTest, BacksUpEachPathVariableEvenWhenItWasUnset) {
    for (const char* const name : kBackedUp)
        SetEnvVar(name, "");
    PrepareInstallerEnvironment(options_);
    for (const std::string name : kBackedUp)
        EXPECT_EQ(GetEnvVar("ZEP_BAK_" + name), "ZEP_BAK=") << name;
}

TEST_F(InstallerEnvironmentTest, EndsThePathInASeparatorWhereThereWasNone) {
    SetEnvVar("PATH", "");
    PrepareInstallerEnvironment(options_);
    EXPECT_EQ(GetEnvVar("PATH"), "D:\\Media\\inst\\win_b64\\code\\bin;");
}

TEST_F(InstallerEnvironmentTest, ForcesTheSwitchesWithoutABackup) {
    SetEnvVar("ZEPAdmInstDebugEnv", "t");
    SetEnvVar("ZEPAdmInstDebugError", "f");
    PrepareInstallerEnvironment(options_);
    EXPECT_EQ(GetEnvVar("ZEPAdmInstDebugEnv"), "f");
    EXPECT_EQ(GetEnvVar("ZEPAdmInstDebugError"), "1");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_ZEPAdmInstDebugEnv"), "");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_ZEPAdmInstDebugError"), "");
}

TEST_F(InstallerEnvironmentTest, SaysWhenTheUserIsNoAdministrator) {
    test::below.isAdministrator = false;
    SetEnvVar("ZEPAdmInstAllowNotAdminUser", "1");
    PrepareInstallerEnvironment(options_);
    EXPECT_EQ(GetEnvVar("ZEPIns_HasElevatedPrivileges"), "0");
    EXPECT_EQ(test::below.administratorChecks, 1);
}

TEST_F(InstallerEnvironmentTest, EndsWithAFailedAdministratorCheck) {
    test::below.administratorCheckFails = true;
    EXPECT_THROW(PrepareInstallerEnvironment(options_), ZEPInsException);
}

TEST_F(InstallerEnvironmentTest, SaysThatNobodyWatchesThePipeServer) {
    options_ = test::ParseOptions({"--pipeserver"});
    PrepareInstallerEnvironment(options_);
    EXPECT_EQ(GetEnvVar("ZEPIns_IsInteractiveSession"), "0");
}

TEST_F(InstallerEnvironmentTest, IsPreparedOnTopOfAnEarlierPreparation) {
    SetEnvVar("PATH", "C:\\Windows");
    PrepareInstallerEnvironment(options_);
    PrepareInstallerEnvironment(options_);
    const std::string bin = "D:\\Media\\inst\\win_b64\\code\\bin;";
    EXPECT_EQ(GetEnvVar("PATH"), bin + bin + "C:\\Windows");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_PATH"), "ZEP_BAK=" + bin + "C:\\Windows");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_MORInst"), "ZEP_BAK=D:\\Media\\inst");
}

TEST_F(InstallerEnvironmentTest, StandsOnADriveAndOnAShare) {
    options_.mediaInstDir = "";
    for (const std::string media : {"D:", "\\\\srv\\share"}) {
        options_.mediaDir = Path(media + "\\");
        PrepareInstallerEnvironment(options_);
        EXPECT_EQ(GetEnvVar("MORReffilesPath"),
                  media + "\\inst\\win_b64\\reffiles;" + media + "\\inst\\common\\reffiles");
    }
}

TEST_F(InstallerEnvironmentTest, TakesTheInstallerMediaAsItIsWritten) {
    options_.mediaInstDir = "e:/inst\\\\x\\";
    SetSearchPathVariable(options_, "LAUNCHER_TEST", {"a", "a"});
    EXPECT_EQ(GetEnvVar("LAUNCHER_TEST"),
              "D:\\Media\\inst\\win_b64\\a;D:\\Media\\inst\\common\\a;"
              "D:\\Media\\inst\\win_b64\\a;D:\\Media\\inst\\common\\a;"
              "e:/inst\\\\x\\win_b64\\a;e:/inst\\\\x\\common\\a;"
              "e:/inst\\\\x\\win_b64\\a;e:/inst\\\\x\\common\\a");
}

TEST_F(InstallerEnvironmentTest, ReplacesASearchPathAfterItsBackup) {
    SetEnvVar("LAUNCHER_TEST", "old");
    SetSearchPathVariable(options_, "LAUNCHER_TEST", {});
    EXPECT_EQ(GetEnvVar("LAUNCHER_TEST"), "");
    EXPECT_EQ(GetEnvVar("ZEP_BAK_LAUNCHER_TEST"), "ZEP_BAK=old");
}

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
