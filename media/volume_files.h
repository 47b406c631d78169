#pragma once

#include <optional>
#include <string>

#include "fs/path.h"
#include "media/folder_names.h"
#include "media/volume_numbers.h"
#include "media/volume_text.h"

namespace launcher {

// The small files that tie the volumes of a split medium together. They are only read, shared with
// every other reader and writer, and nothing is reported about them.

// "inst\volumes.txt" of volume 1.
inline Path CountFileIn(const Path& volumeOne) {
    return Join(volumeOne, {kInstFolder, kCountFile});
}

// "7.txt".
inline std::string MarkerName(VolumeNumber number) {
    return std::to_string(number) + kVolumeMarkerSuffix;
}
inline Path MarkerIn(const Path& volume, VolumeNumber number) {
    return Join(volume, MarkerName(number));
}

// Both: the value of the first line of a volume's marker file that begins with "MTBDIR=": it names
// the media that the volume belongs to. Empty when the file cannot be opened, has no such line, or
// the value is empty. The second asks the file; the first is what the launcher goes by.
std::string ReadMtbDir(const std::string& path);
std::string MtbDirInFile(const std::string& path);

// The count in "volumes.txt"; nothing when the file cannot be opened or read, or its first line is
// no number.
std::optional<VolumeCount> ReadVolumeCount(const std::string& path);

}  // namespace launcher
