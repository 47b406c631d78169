#pragma once

#include "mediatool/validate/disc_set.h"
#include "mediatool/validate/findings.h"

namespace launcher::mediatool {

// Reports what is wrong with the numbered outer volumes that a disc set is nested in. False, and
// nothing reported but stray markers, when nothing above it was meant to be an outer volume.
bool CheckOuterVolumes(const DiscSet& set, Findings& out);

}  // namespace launcher::mediatool
