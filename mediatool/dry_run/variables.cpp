#include "mediatool/dry_run/variables.h"

#include "fs/environment.h"
#include "installer/launch.h"
#include "launcher/base/launch_options.h"
#include "launcher/base/message.h"
#include "launcher/choose_installer.h"
#include "launcher/driver.h"
#include "launcher/installer_command_line.h"
#include "launcher/temporary_copy.h"
#include "media/flavours.h"
#include "media/volume_search.h"
#include "platform/administrator.h"

namespace launcher::mediatool {

// In the order and the words of the README's table.
const std::vector<ReadVariable> kReadVariables = {
    {kInstallerFolderVar,
     "the folder of a medium in which to look for the installer, after -installerPath"},
    {kIgnoreCurrentMediaVar, "ignore the installer on the current medium"},
    {kFlavourMarkerVar, "one file to check instead of all three flavour markers"},
    {kVolumesQuery, "start nothing; the exit code is the number of volumes"},
    {kDontCopyVar, "never copy the installer to a temporary folder"},
    {"TEMP", "where the temporary folder is created"},
    {kAllowNotAdministratorVar, "start the installer for a user who is not an administrator"},
    {kNotAdministratorVar, "behave as for a user who is not an administrator"},
    {kRepositoryVar, "do not look for the volumes of a split disc set"},
    {kCurrentMediaVar, "the medium for --odt"},
    {kDebugVar,
     "a program to put in front of the installer's command line; 1 shows the line in a console"},
    {kTraceBoxVar, "any single character: show trace messages in boxes"},
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
