#pragma once

#include <vector>

#include "mediatool/validate/disc_set.h"

namespace launcher::mediatool {

// Reports what is wrong with the volumes of a set that were given as folders or drives of their
// own, which is where nothing but their markers tells which volumes they are.
void CheckGivenVolumes(const DiscSet& set, const std::vector<Path>& given, Findings& out);

}  // namespace launcher::mediatool
