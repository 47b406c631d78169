#include "media/marker_files.h"

#include <windows.h>

#include <istream>
#include <stdexcept>
#include <streambuf>
#include <string>

#include "fs/owners.h"
#include "fs/text.h"

namespace launcher {
namespace {

constexpr char kMtbDirPrefix[] = "MTBDIR=";

// The bytes of a file, shared with every other reader and writer; none when it cannot be opened.
// Not std::filebuf, which opens files with inheritable handles and brings along what it takes to
// write and to convert: a twentieth of the whole program.
class FileBuffer : public std::streambuf {
  public:
    explicit FileBuffer(const std::string& path)
        : file_(CreateFileW(ToWide(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                            nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}

  private:
    int_type underflow() override {
        DWORD count = 0;
        if (!file_ || !ReadFile(file_.Get(), bytes_, sizeof bytes_, &count, nullptr) || count == 0)
            return traits_type::eof();
        setg(bytes_, bytes_, bytes_ + count);
        return traits_type::to_int_type(*bytes_);
    }

    FileHandle file_;
    char bytes_[512];
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
    FileBuffer file(path);
    std::istream input(&file);
    std::string line;
    while (ReadTextLine(input, line))
        if (line.starts_with(kMtbDirPrefix)) return line.substr(sizeof kMtbDirPrefix - 1);
    return {};
}

std::optional<VolumeCount> ReadVolumeCount(const std::string& path) {
    FileBuffer file(path);
    std::istream input(&file);
    std::string line;
    if (!ReadTextLine(input, line)) return std::nullopt;
    const std::optional<int> count = ToInt(line);
    if (!count) return std::nullopt;
    return VolumeCount{line, *count};
}

int ToIntOr(const std::string& text, int fallback) {
    return ToInt(text).value_or(fallback);
}

}  // namespace launcher
