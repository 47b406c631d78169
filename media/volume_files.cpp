#include "media/volume_files.h"

#include <windows.h>

#include <istream>
#include <streambuf>

#include "fs/encoding.h"
#include "fs/open_file.h"

namespace launcher {
namespace {

// The bytes of a file; none when it cannot be opened. Not std::filebuf, which opens files with
// inheritable handles and pulls in code for writing and conversion, a twentieth of the whole
// program.
class FileBuffer : public std::streambuf {
  public:
    explicit FileBuffer(const std::string& path)
        : file_(OpenSharedFile(ToWide(path), GENERIC_READ, OPEN_EXISTING)) {}

  private:
    int_type underflow() override {
        DWORD count = 0;
        if (!file_ || !ReadFile(file_.Get(), bytes_, sizeof bytes_, &count, nullptr) || count == 0)
            return traits_type::eof();
        setg(bytes_, bytes_, bytes_ + count);
        return traits_type::to_int_type(*bytes_);
    }

    FileHandle file_;
    char bytes_[512] = {};
};

}  // namespace

std::string ReadMtbDir(const std::string& path) {
    FileBuffer file(path);
    std::istream input(&file);
    return FindMtbDir(input);
}

std::optional<VolumeCount> ReadVolumeCount(const std::string& path) {
    FileBuffer file(path);
    std::istream input(&file);
    return ParseVolumeCount(input);
}

}  // namespace launcher
