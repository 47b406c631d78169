#include "mediatool/base/sentences.h"

namespace launcher::mediatool {

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string Quoted(const Path& path) {
    return Quoted(path.Text());
}

// Backslashes are themselves, but in front of a quote each pair of them is one.
std::string QuotedArgument(const std::string& argument) {
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '"') text.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, '\\') + "\"";
}

std::string ExplainQuoteIn(const std::string& text, std::size_t quote) {
    return text.substr(0, quote + 1) +
           "... has a quote in it: a backslash before the closing quote, as in \"" +
           text.substr(0, quote) + "\\\", does that; leave it out.";
}

std::string Grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3;) {
        i -= 3;
        digits.insert(i, 1, ',');
    }
    return digits;
}

std::string Harmless(const std::string& text, std::string_view kept) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string harmless;
    const auto show = [&](unsigned char code) {
        harmless += {'\\', 'x', kDigits[code >> 4], kDigits[code & 15]};
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        if (byte == 0xC2 && next >= 0x80 && next < 0xA0) {  // U+0080 to U+009F
            show(next);
            ++i;
        } else if ((byte < 0x20 || byte == 0x7F) && kept.find(text[i]) == std::string_view::npos) {
            show(byte);
        } else {
            harmless += text[i];
        }
    }
    return harmless;
}

std::string OnOneLine(std::string text) {
    while (text.ends_with('\n') || text.ends_with('\r'))
        text.pop_back();
    return Harmless(text, "\t");
}

std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace launcher::mediatool
