#include "mediatool/media/markers.h"

#include "media/volume_text.h"

namespace launcher::mediatool {

std::string CountFileText(int volumes) {
    return std::to_string(volumes) + "\r\n";
}

std::string MarkerText(const std::string& id) {
    return kMtbDirPrefix + id + "\r\n";
}

}  // namespace launcher::mediatool
