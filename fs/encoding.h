#pragma once

#include <string>

namespace launcher {

// Text is held as UTF-8 in narrow strings everywhere in this program. These two conversions are
// made right at each Windows call. Neither reports a failure: what cannot be converted becomes
// empty.

// The UTF-16 form of a zero-terminated UTF-8 string. Null and empty give an empty string; invalid
// bytes are replaced as Windows does without strict checking.
// https://learn.microsoft.com/windows/win32/api/stringapiset/nf-stringapiset-multibytetowidechar
std::wstring ToWide(const char* narrow);
inline std::wstring ToWide(const std::string& narrow) {
    return ToWide(narrow.c_str());
}

// The UTF-8 form of a zero-terminated UTF-16 string. Null and empty give an empty string; a lone
// surrogate is replaced the way Windows does it without strict checking.
// https://learn.microsoft.com/windows/win32/api/stringapiset/nf-stringapiset-widechartomultibyte
std::string ToNarrow(const wchar_t* wide);

}  // namespace launcher
