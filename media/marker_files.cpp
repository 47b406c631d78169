#include "media/marker_files.h"

#include <fstream>
#include <istream>
#include <stdexcept>
#include <string>

#include "fs/text.h"

namespace launcher {
namespace {

constexpr char kMtbDirPrefix[] = "MTBDIR=";

// A marker file opened for reading, shared with every other reader and writer. The runtime's
// stream buffers open wide paths; the streams themselves do not, everywhere.
class MarkerFile {
  public:
    explicit MarkerFile(const std::string& path) : stream_(&buffer_) {
        if (buffer_.open(ToWide(path).c_str(), std::ios::in | std::ios::binary) == nullptr)
            stream_.setstate(std::ios::failbit);
    }

    std::istream& Stream() { return stream_; }

  private:
    std::filebuf buffer_;
    std::istream stream_;
};

std::optional<int> ToInt(const std::string& text) {
    try {
        return std::stoi(text);
    } catch (const std::logic_error&) {  // no number, or one that does not fit
        return std::nullopt;
    }
}

}  // namespace

std::istream& ReadTextLine(std::istream& input, std::string& line) {
    if (std::getline(input, line) && line.ends_with('\r')) line.pop_back();
    return input;
}

std::string ReadMtbDir(const std::string& path) {
    MarkerFile file(path);
    std::string line;
    while (ReadTextLine(file.Stream(), line))
        if (line.starts_with(kMtbDirPrefix)) return line.substr(sizeof kMtbDirPrefix - 1);
    return {};
}

std::optional<VolumeCount> ReadVolumeCount(const std::string& path) {
    MarkerFile file(path);
    std::string line;
    if (!ReadTextLine(file.Stream(), line)) return std::nullopt;
    const std::optional<int> count = ToInt(line);
    if (!count) return std::nullopt;
    return VolumeCount{line, *count};
}

int ToIntOr(const std::string& text, int fallback) {
    return ToInt(text).value_or(fallback);
}

}  // namespace launcher
