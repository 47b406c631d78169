#include "mediatool/base/sentences.h"

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include <algorithm>
#include <utility>

#include "fs/encoding.h"
#include "fs/owners.h"

namespace launcher::mediatool {
namespace {

struct Character {
    char32_t code;
    std::size_t bytes;
};

// The first one of a text that is not empty. A byte that begins none is one that is shown as it is.
Character FirstOf(std::string_view text) {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    if (byte(0) >= 0x80 && byte(0) < 0xC2) return {U'\uFFFD', 1};
    const std::size_t count = byte(0) < 0x80 ? 1 : byte(0) < 0xE0 ? 2 : byte(0) < 0xF0 ? 3 : 4;
    char32_t code = count == 1 ? byte(0) : byte(0) & (0x7F >> count);
    for (std::size_t i = 1; i < count; ++i) {
        if (i == text.size() || (byte(i) & 0xC0) != 0x80) return {U'\uFFFD', 1};
        code = code << 6 | (byte(i) & 0x3F);
    }
    return {code, count};
}

bool IsControl(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

// Characters without a shape that turn the direction of others, or that nothing in a text needs.
// Those that join letters and signs, or keep them apart, are needed.
bool IsUnseen(char32_t code) {
    constexpr std::pair<char32_t, char32_t> kRanges[] = {
        {0x061C, 0x061C}, {0x200B, 0x200B}, {0x200E, 0x200F}, {0x2028, 0x202E},
        {0x2060, 0x206F}, {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}};
    return std::ranges::any_of(
        kRanges, [code](const auto& range) { return range.first <= code && code <= range.second; });
}

// "\x1B", "\u202E"
std::string Escaped(char32_t code) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = code < 0x100 ? "\\x" : "\\u";
    for (int shift = code < 0x100 ? 4 : 12; shift >= 0; shift -= 4)
        text += kDigits[(code >> shift) & 15];
    return text;
}

std::string Shown(std::string_view text, std::string_view kept, bool (*isHidden)(char32_t)) {
    std::string shown;
    while (!text.empty()) {
        const Character first = FirstOf(text);
        const bool isKept = kept.find(text.front()) != std::string_view::npos;
        if (isHidden(first.code) && !isKept)
            shown += Escaped(first.code);
        else
            shown += text.substr(0, first.bytes);
        text.remove_prefix(first.bytes);
    }
    return shown;
}

}  // namespace

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

std::vector<std::string> ArgumentsIn(const std::wstring& commandLine) {
    int count = 0;
    const LocalMemory<wchar_t*> split(CommandLineToArgvW(commandLine.c_str(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(ToNarrow(split.Get()[i]));
    return arguments;
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

std::string ControlsShown(const std::string& text, std::string_view kept) {
    return Shown(text, kept, &IsControl);
}

std::string Harmless(const std::string& text, std::string_view kept) {
    return Shown(text, kept, [](char32_t code) { return IsControl(code) || IsUnseen(code); });
}

std::string OnOneLine(std::string text) {
    while (text.ends_with('\n') || text.ends_with('\r'))
        text.pop_back();
    return Harmless(text, "\t");
}

std::string Counted(std::uint64_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string Listed(const std::vector<std::string>& names, const std::string& comma,
                   const std::string& last) {
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i)
        list += (i == 0 ? "" : i + 1 < names.size() ? comma : last) + names[i];
    return list;
}

}  // namespace launcher::mediatool
