#include "mediatool/media/markers.h"

#include "media/folder_names.h"

namespace launcher::mediatool {

Path CountFileIn(const Path& volumeOne) {
    return Join(Join(volumeOne, kInstFolder), kCountFileName);
}

std::string CountFileText(int volumes) {
    return std::to_string(volumes) + "\r\n";
}

std::string MarkerName(long long number) {
    return std::to_string(number) + ".txt";
}

Path MarkerIn(const Path& volume, long long number) {
    return Join(volume, MarkerName(number));
}

std::string MarkerText(const std::string& id) {
    return "MTBDIR=" + id + "\r\n";
}

}  // namespace launcher::mediatool
