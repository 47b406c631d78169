#include "fs/encoding.h"

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

}  // namespace launcher
