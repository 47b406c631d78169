#include "tests/mediatool/agreement/case_maker.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

void Maker::MakeArguments() {
    const std::vector<std::vector<std::string>> harmless = {
        {"-wait"},
        {"-wait"},
        {"-env", "EXTRA=a=b"},
        {"-env", "EXTRA"},
        {"plain"},
        {"with blank", "tail\\"},
        {""},
        {"quo\"te", "*.txt"},
        {"Größe 漢字"},
        {"-WAIT", "[x,y]"},
    };
    const std::vector<std::vector<std::string>> pieces = {
        {"-UI"},
        {"-env", "PATH="},
        {"-env", "ZEPAdmInstDontCopyInstaller"},
        {"-env", "ZEPAdmODTMultiVolumes"},
        {"-env", "ZEPAdmInstAllowNotAdminUser=0"},
        {"-env", "ZEPProcessNotAdmin"},
        {"-env", "ZEP_UseExternalInstaller"},
        {"-env", "TEMP=" + ToUtf8(folder_ / "other temp")},
        {"-env"},
        {"-installerPath", externalText_},
        {"-installerPath", externalText_ + "\\"},
        {"-installerPath", ToUtf8(folder_ / "nowhere")},
        {"-installerPath"},
        {"-SoftMgt", "-List"},
        {"-SoftMgt", "-Check"},
        {"-Commit", "-SoftMgt"},
        {"-Rollback"},
        {"-SoftMgt"},
        {"--pipeserver"},
        {"--odt"},
        {"--mgt"},
        {"--uninst"},
    };
    for (unsigned count = Below(6); count > 0; --count) {
        const auto& from = IsFree() && Chance(70) ? pieces : harmless;
        for (const std::string& word : from[Below(static_cast<unsigned>(from.size()))])
            case_.arguments.push_back(word);
    }
}

void Maker::MakeVariables() {
    auto& variables = case_.variables;
    const auto maybe = [&](unsigned percent, const char* name, const std::string& value) {
        if (Chance(percent)) variables[name] = value;
    };
    variables["STANDIN_EXIT"] = std::to_string(Below(4000));
    maybe(10, "MORInst", "C:\\Before");
    maybe(10, "ZEPAdmInstDebugEnv", "t");
    if (!IsFree()) return;
    maybe(75, "ZEP_TALVOR_Installer", externalText_);
    maybe(5, "ZEP_UseExternalInstaller", "1");
    maybe(5, "ZEPAdmInstODTinstallOSpath", ToUtf8(media_ / "media.xml"));
    maybe(4, "ZEPAdmODTMultiVolumes", "1");
    maybe(8, "ZEPAdmInstDontCopyInstaller", "1");
    maybe(8, "ZEPProcessNotAdmin", "1");
    maybe(30, "ZEPAdmInstAllowNotAdminUser", "no");
    maybe(5, "ZEP_Online_Installation_Caf_Repositiory", "x");
    maybe(80, "CurrentMediaDir", ToUtf8(media_));
    maybe(6, "ZEP_TraceMsgBox", "1");
    if (Chance(20)) SetDebugProgram();
}

void Maker::SetDebugProgram() {
    auto& variables = case_.variables;
    if (Chance(50)) {
        // What is found first is not the console that stays open.
        PutProgram(STANDIN_PROGRAM, media_ / "cmd.exe");
        variables["DEBUGCMD_INSTALLK7"] = "1";
        return;
    }
    PutProgram(STANDIN_PROGRAM, folder_ / "prefix.exe");
    variables["DEBUGCMD_INSTALLK7"] = "\"" + ToUtf8(folder_ / "prefix.exe") + "\" -x";
}

}  // namespace launcher::test
