#include "tests/media/volumes_outcome.h"

#include "fs/environment.h"
#include "launcher/base/launch_options.h"
#include "media/volumes.h"

namespace launcher::test {

void PrintTo(const Outcome& outcome, std::ostream* out) {
    *out << outcome.result << (outcome.skipTemporaryCopy ? ", no temporary copy" : "");
    for (const std::string& volume : outcome.volumes)
        *out << "\n  volume " << volume;
    for (const Message& message : outcome.messages) {
        *out << "\n  ";
        PrintTo(message, out);
    }
    *out << "\n  count \"" << outcome.volumesCount << "\", id \"" << outcome.mtbDir
         << "\", first AM volume \"" << outcome.firstAmVolume << "\" in \"" << outcome.firstAmPath
         << "\", relative path \"" << outcome.amRelativePath << '"';
}

Outcome Resolve(const std::string& mediaDir, bool softMgt) {
    for (const char* name :
         {"ZEPAdmInstVolumesCount", "ZEPAdmInstMTBDIR", "ZEPAdmInstFirstAMVolume",
          "ZEPAdmInstFirstAMPath", "ZEPAdmInstAMRelativePath"})
        SetEnvVar(name, "stale");
    TakeMessages();
    LaunchOptions options(0, nullptr, "", true, false);
    options.mediaDir = Path(mediaDir);
    options.softMgt = softMgt;
    Outcome outcome;
    outcome.result = ResolveVolumes(options, outcome.volumes);
    outcome.skipTemporaryCopy = options.skipTemporaryCopy;
    outcome.messages = TakeMessages();
    outcome.volumesCount = GetEnvVar("ZEPAdmInstVolumesCount");
    outcome.mtbDir = GetEnvVar("ZEPAdmInstMTBDIR");
    outcome.firstAmVolume = GetEnvVar("ZEPAdmInstFirstAMVolume");
    outcome.firstAmPath = GetEnvVar("ZEPAdmInstFirstAMPath");
    outcome.amRelativePath = GetEnvVar("ZEPAdmInstAMRelativePath");
    return outcome;
}

}  // namespace launcher::test
