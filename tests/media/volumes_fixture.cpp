#include "tests/media/volumes_fixture.h"

#include <windows.h>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "launcher/base/launch_options.h"
#include "media/volumes.h"
#include "tests/support/journal.h"

namespace launcher::test {

void PrintTo(const Outcome& outcome, std::ostream* out) {
    *out << outcome.result << (outcome.skipTemporaryCopy ? ", no temporary copy" : "");
    for (const std::string& volume : outcome.volumes)
        *out << "\n  volume " << volume;
    for (const std::string& message : outcome.messages)
        *out << "\n  " << message;
    *out << "\n  count \"" << outcome.volumesCount << "\", id \"" << outcome.mtbDir
         << "\", first outer volume \"" << outcome.firstOuterVolume << "\" in \""
         << outcome.firstOuterPath << "\", relative path \"" << outcome.outerRelativePath << '"';
}

Outcome Resolve(const std::string& mediaDir, bool softMgt) {
    for (const char* name :
         {"ZEPAdmInstVolumesCount", "ZEPAdmInstMTBDIR", "ZEPAdmInstFirstAMVolume",
          "ZEPAdmInstFirstAMPath", "ZEPAdmInstAMRelativePath"})
        SetEnvVar(name, "stale");
    journal.clear();
    LaunchOptions options(0, nullptr, "", true, false);
    options.mediaDir = Path(mediaDir);
    options.softMgt = softMgt;
    Outcome outcome;
    outcome.result = ResolveVolumes(options, outcome.volumes);
    outcome.skipTemporaryCopy = options.skipTemporaryCopy;
    outcome.messages = journal;
    outcome.volumesCount = GetEnvVar("ZEPAdmInstVolumesCount");
    outcome.mtbDir = GetEnvVar("ZEPAdmInstMTBDIR");
    outcome.firstOuterVolume = GetEnvVar("ZEPAdmInstFirstAMVolume");
    outcome.firstOuterPath = GetEnvVar("ZEPAdmInstFirstAMPath");
    outcome.outerRelativePath = GetEnvVar("ZEPAdmInstAMRelativePath");
    return outcome;
}

FileHandle VolumesTest::Lock(const std::string& relative) const {
    FileHandle file(CreateFileW(ToWide(At(relative)).c_str(), GENERIC_READ, 0, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    EXPECT_TRUE(file);
    return file;
}

}  // namespace launcher::test
