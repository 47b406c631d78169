#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace launcher::fuzz {

// A small text file as a whole.
struct TextFile {
    std::vector<std::string> lines;  // without their ends
    bool lastIsOpen = false;         // the last line has no LF
};

TextFile SplitLines(std::string_view bytes);

// The decimal number that a text begins with, when it fits into 32 bits with a sign.
std::optional<int> LeadingNumber(std::string_view text);

std::string MtbDirOf(const TextFile& file);

}  // namespace launcher::fuzz
