#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "fs/path.h"

namespace launcher {

// 64 bits wide: a count may be as large as INT_MAX, and the number of an outer volume is up to 98
// above it.
using VolumeNumber = std::int64_t;

// Calls `visit` with the numbers from `first` to `last`, in order, for which `folder` may hold an
// entry named number + `suffix` (ASCII). As many as a medium may really have are all visited. Of
// more, which only a damaged count asks for, those that a listing of the folder names: what cannot
// exist is not looked for. A folder that cannot be listed has them all visited, however many.
void ForEachVolumeNumber(const Path& folder, VolumeNumber first, VolumeNumber last,
                         const std::string& suffix, const std::function<void(VolumeNumber)>& visit);

}  // namespace launcher
