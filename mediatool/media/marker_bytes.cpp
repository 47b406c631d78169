#include "mediatool/media/marker_bytes.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

#include "fs/encoding.h"
#include "media/input_stream.h"
#include "media/volume_files.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {

bool IsUtf16(const std::string& bytes) {
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return true;
    if (bytes.size() < 4) return false;  // a stray zero byte is no second character
    const auto isZero = [&bytes](std::size_t i) { return bytes[i] == '\0'; };
    return isZero(0) != isZero(1) && isZero(0) == isZero(2) && isZero(1) == isZero(3);
}

std::vector<std::string> LinesOf(const std::string& bytes) {
    InputStream input(bytes);
    std::vector<std::string> lines;
    for (std::string line; ReadTextLine(input, line);)
        lines.push_back(line);
    return lines;
}

bool HasControlCharacter(const std::string& text) {
    return ControlsShown(text, "\t") != text;
}

std::string SpeltOut(const std::string& text) {
    std::string spelt;
    for (const wchar_t c : ToWide(Harmless(text, ""))) {
        char unit[sizeof "\\uFFFF"] = {static_cast<char>(c)};
        if (c > 0x7F) std::snprintf(unit, sizeof unit, "\\u%04X", static_cast<unsigned>(c));
        spelt += unit;
    }
    return spelt;
}

std::wstring Composed(const std::string& text) {
    const std::wstring wide = ToWide(text);
    const int size = static_cast<int>(wide.size());
    std::wstring composed(wide.size(), L'\0');
    const int length = FoldStringW(MAP_PRECOMPOSED, wide.data(), size, composed.data(), size);
    composed.resize(static_cast<std::size_t>(length));
    return length > 0 ? composed : wide;
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
