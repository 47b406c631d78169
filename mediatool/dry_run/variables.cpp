#include "mediatool/dry_run/variables.h"

#include "fs/environment.h"

namespace launcher::mediatool {

// In the order and the words of the README's table.
const std::vector<ReadVariable> kReadVariables = {
    {"ZEP_TALVOR_Installer",
     "the folder of a medium in which to look for the installer, after -installerPath"},
    {"ZEP_UseExternalInstaller", "ignore the installer on the current medium"},
    {"ZEPAdmInstODTinstallOSpath", "one file to check instead of all three flavour markers"},
    {"ZEPAdmODTMultiVolumes", "start nothing; the exit code is the number of volumes"},
    {"ZEPAdmInstDontCopyInstaller", "never copy the installer to a temporary folder"},
    {"TEMP", "where the temporary folder is created"},
    {"ZEPAdmInstAllowNotAdminUser", "start the installer for a user who is not an administrator"},
    {"ZEPProcessNotAdmin", "behave as for a user who is not an administrator"},
    {"ZEP_Online_Installation_Caf_Repositiory", "do not look for the volumes of a split disc set"},
    {"CurrentMediaDir", "the medium for --odt"},
    {"DEBUGCMD_INSTALLK7",
     "a program to put in front of the installer's command line; 1 shows the line in a console"},
    {"ZEP_TraceMsgBox", "any single character: show trace messages in boxes"},
};

std::vector<SetVariable> SetVariables() {
    std::vector<SetVariable> set;
    for (const ReadVariable& variable : kReadVariables) {
        const std::string value = GetEnvVar(variable.name);
        if (!value.empty()) set.push_back({variable.name, value, variable.effect});
    }
    return set;
}

}  // namespace launcher::mediatool
