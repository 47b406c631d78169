// The variables that the installer is handed.

#include <map>
#include <optional>
#include <string>

#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

class InstallerEnvironment : public LauncherTest {};

// All variables that the launcher sets have one of these beginnings.
std::map<std::string, std::string> LaunchersOwn(const InstallerReport& seen) {
    std::map<std::string, std::string> own;
    for (const auto& [name, value] : seen.environment)
        if (name.starts_with("ZEP") || name.starts_with("MOR")) own[name] = value;
    return own;
}

// The path variables of a media folder, and the backups of unset ones.
std::map<std::string, std::string> PathVariables(const std::string& media) {
    const std::string os = media + "\\inst\\" + UsualOs() + "\\";
    const std::string common = media + "\\inst\\common\\";
    const auto both = [&](const std::string& folder) {
        return os + folder + ";" + common + folder;
    };
    std::map<std::string, std::string> expected = {
        {"MORInst", media + "\\inst"},
        {"MORInstallPath", media + "\\inst\\" + UsualOs()},
        {"MORDictionaryPath", both("code\\dictionary")},
        {"MORReffilesPath", both("reffiles")},
        {"MORGraphicPath", both("resources\\graphic") + ";" + both("resources\\graphic\\icons") +
                               ";" + both("resources\\graphic\\splashscreens")},
        {"MORMsgCatalogPath", both("resources\\msgcatalog")},
        {"ZEP_BAK_MORInstaller", "ZEP_BAK="}};
    for (const char* name : {"MORInst", "MORInstallPath", "MORDictionaryPath", "MORReffilesPath",
                             "MORGraphicPath", "MORMsgCatalogPath"})
        expected["ZEP_BAK_" + std::string(name)] = "ZEP_BAK=";
    return expected;
}

const std::map<std::string, std::string> kSwitches = {{"ZEPSysIRManagementActivation", "NO"},
                                                      {"MORAppBridge", "NO"},
                                                      {"ZEPAdmInstDebugEnv", "f"},
                                                      {"ZEPAdmInstDebugSummary", "f"},
                                                      {"ZEPAdmInstDebugIndexes", "f"},
                                                      {"ZEPAdmInstDebugAction", "f"},
                                                      {"ZEPAdmInstDebugError", "1"},
                                                      {"ZEPAdmInstDebugEverything", "1"},
                                                      {"ZEP_OS", UsualOs()},
                                                      {"ZEPIns_HasElevatedPrivileges", "1"},
                                                      {"ZEPIns_IsInteractiveSession", "1"}};

TEST_F(InstallerEnvironment, OfAPlainRunIsExactlyThis) {
    const Media media = UsualMedia();
    variables["PATH"] = "C:\\windows\\system32;C:\\x y";
    std::map<std::string, std::string> expected = PathVariables(media.Text());
    expected.insert(kSwitches.begin(), kSwitches.end());
    expected["ZEPAdmInstCurrentMediaDir"] = media.Text();
    expected["ZEP_BAK_PATH"] = "ZEP_BAK=C:\\windows\\system32;C:\\x y";
    const InstallerReport seen = Run(media).Installer();
    EXPECT_EQ(LaunchersOwn(seen), expected);
    EXPECT_EQ(seen.Variable("PATH"),
              media.Text("inst\\" + UsualOs() + "\\code\\bin") + ";C:\\windows\\system32;C:\\x y");
}

TEST_F(InstallerEnvironment, SwitchesAreForced) {
    for (const auto& [name, value] : kSwitches)
        variables[name] = "from before";
    const InstallerReport seen = Run(UsualMedia()).Installer();
    for (const auto& [name, value] : kSwitches) {
        EXPECT_EQ(seen.Variable(name), value);
        EXPECT_EQ(seen.Variable("ZEP_BAK_" + name), std::nullopt);
    }
}

TEST_F(InstallerEnvironment, EarlierValuesAreBackedUp) {
    for (const char* name : {"MORInst", "MORInstaller", "MORInstallPath", "MORDictionaryPath",
                             "MORReffilesPath", "MORGraphicPath", "MORMsgCatalogPath"})
        variables[name] = "old " + std::string(name);
    const InstallerReport seen = Run(UsualMedia()).Installer();
    for (const auto& [name, value] : variables)
        EXPECT_EQ(seen.Variable("ZEP_BAK_" + name), "ZEP_BAK=" + value);
    EXPECT_EQ(seen.Variable("MORInstaller"), std::nullopt);
}

TEST_F(InstallerEnvironment, SearchesASeparateInstallerToo) {
    AddStandInInstaller(scratch.Dir() / "other", UsualOs());
    const Media media = EmptyMedia().AddMarker(UsualOs());
    const InstallerReport seen = Run(media, {"-installerPath", scratch.Text("other")}).Installer();
    EXPECT_EQ(seen.Variable("MORReffilesPath"),
              media.Text("inst\\" + UsualOs() + "\\reffiles") + ";" +
                  media.Text("inst\\common\\reffiles") + ";" +
                  scratch.Text("other\\inst\\" + UsualOs() + "\\reffiles") + ";" +
                  scratch.Text("other\\inst\\common\\reffiles"));
    EXPECT_EQ(seen.Variable("MORInstaller"), scratch.Text("other\\inst") + "\\");
}

TEST_F(InstallerEnvironment, PathKeepsItsSeparatorWhenItWasUnset) {
    variables["PATH"] = "";
    const Media media = UsualMedia();
    const InstallerReport seen = Run(media).Installer();
    EXPECT_EQ(seen.Variable("PATH"), media.Text("inst\\" + UsualOs() + "\\code\\bin") + ";");
    EXPECT_EQ(seen.Variable("ZEP_BAK_PATH"), "ZEP_BAK=");
}

TEST_F(InstallerEnvironment, CallersVariablesArriveUntouched) {
    variables["Ünïcode näme"] = "väl=ue 漢字 😀";
    EXPECT_EQ(Run(UsualMedia()).Installer().Variable("Ünïcode näme"), "väl=ue 漢字 😀");
}

}  // namespace
}  // namespace launcher::test
