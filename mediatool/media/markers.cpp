#include "mediatool/media/markers.h"

#include <vector>

#include "media/volume_text.h"

namespace launcher::mediatool {
namespace {

// With the line ends.
std::vector<std::string> LinesWithEnds(const std::string& text) {
    std::vector<std::string> lines;
    for (const char c : text) {
        if (lines.empty() || lines.back().ends_with('\n')) lines.emplace_back();
        lines.back() += c;
    }
    return lines;
}

std::string LineEndOf(const std::string& line) {
    return line.ends_with('\n') && !line.ends_with("\r\n") ? "\n" : "\r\n";
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line;
    return text;
}

constexpr char kDigits[] = "0123456789";
constexpr char kBlanks[] = " \t\r\n";

}  // namespace

std::string CountFileText(int volumes) {
    return std::to_string(volumes) + "\r\n";
}

std::optional<std::string> WithCount(const std::string& text, int volumes) {
    if (text.find_first_not_of(kBlanks) == std::string::npos) return CountFileText(volumes);
    std::vector<std::string> lines = LinesWithEnds(text);
    if (lines.front().find_first_of(kDigits) == std::string::npos ||
        lines.front().find_first_not_of(std::string(kDigits) + kBlanks) != std::string::npos)
        return std::nullopt;
    lines.front() = std::to_string(volumes) + LineEndOf(lines.front());
    return Joined(lines);
}

std::string MarkerText(const std::string& id) {
    return kMtbDirPrefix + id + "\r\n";
}

std::optional<std::string> WithId(const std::string& text, const std::string& id) {
    std::vector<std::string> lines = LinesWithEnds(text);
    for (std::string& line : lines) {
        if (!line.starts_with(kMtbDirPrefix)) continue;
        // A line end of the launcher's own is LF alone: what follows a CR is of the same line to
        // it.
        const std::size_t last = line.find_last_not_of(kBlanks);
        if (line.find('\r') < last) return std::nullopt;
        line = kMtbDirPrefix + id + LineEndOf(line);
    }
    return Joined(lines);
}

}  // namespace launcher::mediatool
