#include "media/volume_text.h"

#include <stdexcept>

#include "media/folder_names.h"
#include "media/input_stream.h"

namespace launcher {
namespace {

std::optional<int> ToInt(const std::string& text) {
    try {
        return std::stoi(text);
    } catch (const std::logic_error&) {  // not a number, or out of range
        return std::nullopt;
    }
}

}  // namespace

InputStream& ReadTextLine(InputStream& input, std::string& line) {
    if (input.ReadLine(line) && line.ends_with('\r')) line.pop_back();
    return input;
}

int ToIntOr(const std::string& text, int fallback) {
    return ToInt(text).value_or(fallback);
}

int OuterMarkerNumber(const std::string& name) {
    constexpr std::size_t kSuffix = sizeof kVolumeMarkerSuffix - 1;
    const bool fits = name.size() == 1 + kSuffix || name.size() == 2 + kSuffix;
    if (!fits || !name.ends_with(kVolumeMarkerSuffix)) return -1;
    return ToIntOr(name.substr(0, name.size() - kSuffix), -1);
}

std::string FindMtbDir(InputStream& input) {
    std::string line;
    while (ReadTextLine(input, line))
        if (line.starts_with(kMtbDirPrefix)) return line.substr(sizeof kMtbDirPrefix - 1);
    return {};
}

std::optional<VolumeCount> ParseVolumeCount(InputStream& input) {
    std::string line;
    if (!ReadTextLine(input, line)) return std::nullopt;
    const std::optional<int> count = ToInt(line);
    if (!count) return std::nullopt;
    return VolumeCount{line, *count};
}

}  // namespace launcher
