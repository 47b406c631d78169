#include "media/volume_files.h"

#include <windows.h>

#include <string_view>

#include "fs/encoding.h"
#include "fs/open_file.h"
#include "media/input_stream.h"

namespace launcher {
namespace {

// The bytes of a file; none when it cannot be opened.
class FileStream : public InputStream {
  public:
    explicit FileStream(const std::string& path)
        : file_(OpenSharedFile(ToWide(path), GENERIC_READ, OPEN_EXISTING)) {}

  private:
    std::string_view NextBlock() override {
        DWORD count = 0;
        if (!file_ || !ReadFile(file_.Get(), bytes_, sizeof bytes_, &count, nullptr)) return {};
        return {bytes_, count};
    }

    FileHandle file_;
    char bytes_[512] = {};
};

}  // namespace

std::string MtbDirInFile(const std::string& path) {
    FileStream input(path);
    return FindMtbDir(input);
}

std::optional<VolumeCount> ReadVolumeCount(const std::string& path) {
    FileStream input(path);
    return ParseVolumeCount(input);
}

}  // namespace launcher
