#pragma once

#include "mediatool/validate/disc_set.h"
#include "mediatool/validate/findings.h"

namespace launcher::mediatool {

// The numbered outer volumes that a disc set may be nested in.

// Why the launcher does not find the volumes of the set there. False when nothing there was meant
// to be an outer volume.
bool ExplainOuterVolumes(const DiscSet& set, Findings& out);

// What may be wrong with those of a set whose volumes it finds.
void CheckOuterVolumes(const DiscSet& set, Findings& out);

}  // namespace launcher::mediatool
