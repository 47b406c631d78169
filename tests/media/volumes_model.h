#pragma once

#include <string>

#include "tests/media/volumes_outcome.h"

namespace launcher::test {

// What a search for the volumes of the media in `mediaDir` (rooted, normalised) has to leave
// behind, worked out from the files on disk without any of the launcher's code: slow, obvious and
// without regard to anything but the order of the rules.
Outcome ModelOutcome(const std::string& mediaDir, bool softMgt);

}  // namespace launcher::test
