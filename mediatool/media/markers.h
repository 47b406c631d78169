#pragma once

#include <string>

#include "fs/path.h"

namespace launcher::mediatool {

// The small text files of a split media: their places and texts, as the launcher reads them.

inline constexpr char kCountFileName[] = "volumes.txt";

// "inst\volumes.txt" of volume 1.
Path CountFileIn(const Path& volumeOne);
std::string CountFileText(int volumes);

// "7.txt"
std::string MarkerName(long long number);

// "<number>.txt" at a volume's root.
Path MarkerIn(const Path& volume, long long number);
std::string MarkerText(const std::string& id);

}  // namespace launcher::mediatool
