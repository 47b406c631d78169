#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fs/path.h"

namespace launcher::mediatool {

// Parts of the sentences that mediatool says. Texts are UTF-8.

// In double quotes.
std::string Quoted(const std::string& text);
std::string Quoted(const Path& path);

// In double quotes, so that CommandLineToArgvW reads exactly this again.
// https://learn.microsoft.com/windows/win32/api/shellapi/nf-shellapi-commandlinetoargvw
std::string QuotedArgument(const std::string& argument);

// The arguments of a command line without the program, as the launcher splits its own: the C
// runtime may expand wildcards and has other ideas of quotes. None when it cannot be split.
std::vector<std::string> ArgumentsIn(const std::wstring& commandLine);

// Of a text with a quote at that place, which a backslash in front has made a part of it.
std::string ExplainQuoteIn(const std::string& text, std::size_t quote);

// "1234567" as "1,234,567"
std::string Grouped(std::uint64_t number);

// With each control character, but those of `kept`, as "\x1B". Those from U+0080 to U+009F are
// control characters too.
std::string ControlsShown(const std::string& text, std::string_view kept);

// The same, and characters that cannot be seen or turn the direction of the text as "\u202E": a
// terminal would obey them, and in the text of a file nobody would see them.
std::string Harmless(const std::string& text, std::string_view kept = "\t\n");

// The same for a sentence: without line ends at its end, and with LF as well.
std::string OnOneLine(std::string text);

// One of the names of an enumeration's values, which stand in its order.
template <class Enum, std::size_t Size>
const char* NameIn(const char* const (&names)[Size], Enum value) {
    return names[static_cast<std::size_t>(value)];
}

// "1 file", "3 files"
std::string Counted(std::uint64_t count, const std::string& what);

// "a, b and c", with these between them.
std::string Listed(const std::vector<std::string>& names, const std::string& comma,
                   const std::string& last);

}  // namespace launcher::mediatool
