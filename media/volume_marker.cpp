#include "media/volume_files.h"

namespace launcher {

std::string ReadMtbDir(const std::string& path) {
    return MtbDirInFile(path);
}

}  // namespace launcher
