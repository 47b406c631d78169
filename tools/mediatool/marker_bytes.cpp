#include "tools/mediatool/marker_bytes.h"

#include <windows.h>

#include <algorithm>
#include <sstream>

#include "media/volume_files.h"

namespace launcher::mediatool {

bool HasUtf16Mark(const std::string& bytes) {
    return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

std::vector<std::string> LinesOf(const std::string& bytes) {
    std::istringstream input(bytes);
    std::vector<std::string> lines;
    for (std::string line; ReadTextLine(input, line);)
        lines.push_back(line);
    return lines;
}

bool HasControlCharacter(const std::string& text) {
    return std::ranges::any_of(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t'; });
}

bool IsUtf8(const std::string& text) {
    return text.empty() || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                               static_cast<int>(text.size()), nullptr, 0) > 0;
}

std::string Trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" \t");
    if (begin == std::string::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

bool IsNumber(const std::string& text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace launcher::mediatool
