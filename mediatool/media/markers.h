#pragma once

#include <optional>
#include <string>

#include "fs/path.h"

namespace launcher::mediatool {

// The small text files of a split media: their places and texts, as the launcher reads them.

inline constexpr char kCountFileName[] = "volumes.txt";

// "inst\volumes.txt" of volume 1.
Path CountFileIn(const Path& volumeOne);
std::string CountFileText(int volumes);
// `text` with another count and all its other lines; nothing when its first line is no number, and
// any line has something in it that would be lost.
std::optional<std::string> WithCount(const std::string& text, int volumes);

// "7.txt"
std::string MarkerName(long long number);

// "<number>.txt" at a volume's root.
Path MarkerIn(const Path& volume, long long number);
std::string MarkerText(const std::string& id);
// `text` with another identifier, and all its other lines as they are.
std::string WithId(const std::string& text, const std::string& id);

}  // namespace launcher::mediatool
