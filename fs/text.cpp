#include "fs/text.h"

#include <windows.h>

#include <cstring>
#include <cwchar>

namespace launcher {

std::wstring ToWide(const char* narrow) {
    if (narrow == nullptr) return {};
    const int length = static_cast<int>(std::strlen(narrow));
    const int wideLength = MultiByteToWideChar(CP_UTF8, 0, narrow, length, nullptr, 0);
    if (wideLength < 1) return {};
    std::wstring wide(static_cast<std::size_t>(wideLength), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, narrow, length, wide.data(), wideLength);
    return wide;
}

std::string ToNarrow(const wchar_t* wide) {
    if (wide == nullptr) return {};
    const int length = static_cast<int>(std::wcslen(wide));
    const int narrowLength =
        WideCharToMultiByte(CP_UTF8, 0, wide, length, nullptr, 0, nullptr, nullptr);
    if (narrowLength < 1) return {};
    std::string narrow(static_cast<std::size_t>(narrowLength), '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide, length, narrow.data(), narrowLength, nullptr, nullptr);
    return narrow;
}

std::size_t ReplaceAll(std::string& text, const std::string& find, const std::string& replacement,
                       std::size_t start) {
    std::size_t count = 0;
    for (std::size_t at = text.find(find, start); at != std::string::npos;
         at = text.find(find, at + replacement.size())) {
        text.replace(at, find.size(), replacement);
        ++count;
    }
    return count;
}

}  // namespace launcher
