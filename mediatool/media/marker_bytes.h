#pragma once

#include <string>
#include <vector>

namespace launcher::mediatool {

// The bytes of the small text files of a disc set: what in them no editor shows.

inline constexpr char kUtf8Mark[] = "\xEF\xBB\xBF";

// By its mark, or without one by its first two characters, which are of ASCII in these files.
bool IsUtf16(const std::string& bytes);

// As the launcher cuts them: at LF, without one CR before it.
std::vector<std::string> LinesOf(const std::string& bytes);

// A control character of ASCII or of Unicode (U+0080 to U+009F) other than the tab; CR among them.
bool HasControlCharacter(const std::string& text);

// The same text with all characters outside ASCII written out as UTF-16: "\u00E9". Tells apart what
// looks the same.
std::string SpeltOut(const std::string& text);

// The same text with letters and their accents in one piece.
std::wstring Composed(const std::string& text);

bool IsUtf8(const std::string& text);

// Without blanks and tabs at both ends.
std::string Trimmed(const std::string& text);

// Digits only, and at least one.
bool IsNumber(const std::string& text);

}  // namespace launcher::mediatool
