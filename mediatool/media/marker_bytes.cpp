#include "mediatool/media/marker_bytes.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>

#include "fs/encoding.h"
#include "media/input_stream.h"
#include "media/volume_files.h"

namespace launcher::mediatool {
namespace {

// The bytes of the control character at `i`; 0 where there is none. In UTF-8, those from U+0080 to
// U+009F are a C2 and one of their own value.
std::size_t ControlLength(const std::string& text, std::size_t i) {
    const auto byte = [&text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    if (byte(i) < 0x20 || byte(i) == 0x7F) return 1;
    const bool pair = byte(i) == 0xC2 && i + 1 < text.size();
    return pair && byte(i + 1) >= 0x80 && byte(i + 1) < 0xA0 ? 2 : 0;
}

}  // namespace

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
    for (std::size_t i = 0; i < text.size(); ++i)
        if (text[i] != '\t' && ControlLength(text, i) > 0) return true;
    return false;
}

std::string Visible(const std::string& text) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string visible;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = ControlLength(text, i);
        if (length == 0) visible += text[i++];
        for (const std::size_t end = i + length; length > 0 && i < end; ++i) {
            const auto byte = static_cast<unsigned char>(text[i]);
            visible += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
    return visible;
}

std::string SpeltOut(const std::string& text) {
    std::string spelt;
    for (const wchar_t c : ToWide(Visible(text))) {
        char unit[8] = {static_cast<char>(c)};
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
