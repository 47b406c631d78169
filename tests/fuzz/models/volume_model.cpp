#include "tests/fuzz/models/volume_model.h"

#include <algorithm>

namespace launcher::fuzz {
namespace {

std::string_view WithoutLeading(std::string_view text, std::string_view characters) {
    text.remove_prefix(std::min(text.find_first_not_of(characters), text.size()));
    return text;
}

}  // namespace

TextFile SplitLines(std::string_view bytes) {
    TextFile file;
    while (!bytes.empty()) {
        const std::size_t length = std::min(bytes.find('\n'), bytes.size());
        file.lastIsOpen = length == bytes.size();
        std::string line(bytes.substr(0, length));
        if (line.ends_with('\r')) line.pop_back();
        file.lines.push_back(line);
        bytes.remove_prefix(file.lastIsOpen ? length : length + 1);
    }
    return file;
}

// Compares digits as text, so that no number is ever too large.
std::optional<int> LeadingNumber(std::string_view text) {
    text = WithoutLeading(text, " \t\n\v\f\r");
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const std::size_t digits = text.size() - WithoutLeading(text, "0123456789").size();
    if (digits == 0) return std::nullopt;
    const std::string_view value = WithoutLeading(text.substr(0, digits), "0");
    const std::string_view largest = negative ? "2147483648" : "2147483647";
    if (value.size() > largest.size() || (value.size() == largest.size() && value > largest))
        return std::nullopt;
    long long number = 0;
    for (const char digit : value)
        number = number * 10 + (digit - '0');
    return static_cast<int>(negative ? -number : number);
}

std::string MtbDirOf(const TextFile& file) {
    constexpr std::string_view kKey = "MTBDIR=";
    for (const std::string& line : file.lines)
        if (line.substr(0, kKey.size()) == kKey) return line.substr(kKey.size());
    return {};
}

}  // namespace launcher::fuzz
