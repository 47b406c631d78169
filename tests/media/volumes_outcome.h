#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "tests/media/recorded_messages.h"

namespace launcher::test {

// All that a search for volumes leaves behind. Every member is compared, so a test names each one
// that is not empty.
struct Outcome {
    int result = 0;
    bool skipTemporaryCopy = false;
    std::vector<std::string> volumes = {};
    std::vector<Message> messages = {};
    std::string volumesCount = {};    // "ZEPAdmInstVolumesCount"
    std::string mtbDir = {};          // "ZEPAdmInstMTBDIR"
    std::string firstAmVolume = {};   // "ZEPAdmInstFirstAMVolume"
    std::string firstAmPath = {};     // "ZEPAdmInstFirstAMPath"
    std::string amRelativePath = {};  // "ZEPAdmInstAMRelativePath"

    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out);

// Calls ResolveVolumes, with each of the five variables set to something stale before.
Outcome Resolve(const std::string& mediaDir, bool softMgt = false);

}  // namespace launcher::test
