#pragma once

#include <string>

namespace launcher::fuzz {

// The folder that this program's executable seems to be in.
inline constexpr char kModuleFolder[] = "D:\\media";

// Thrown where the program would report a text and end.
struct ReportedError {
    std::string text;
    bool useGui = false;
};

// UTF-8 of one character, and a text of them with one element for each.
void AppendUtf8(std::string& text, char32_t character);

}  // namespace launcher::fuzz
