#include "fs/environment.h"

#include <windows.h>

#include "fs/encoding.h"

namespace launcher {

std::string GetEnvVar(const std::string& name) {
    if (name.empty()) return {};
    const std::wstring wideName = ToWide(name);
    std::wstring value(512, L'\0');
    for (;;) {
        const DWORD length = GetEnvironmentVariableW(wideName.c_str(), value.data(),
                                                     static_cast<DWORD>(value.size()));
        if (length < value.size()) return length == 0 ? std::string() : ToNarrow(value.c_str());
        value.resize(length);  // too small: `length` is the size needed, terminator included
    }
}

// The process functions rather than the C runtime's: the runtime refuses names that begin with
// '=', which "-env =X" needs.
void SetEnvVar(const std::string& name, const std::string& value) {
    if (name.empty()) return;
    const std::wstring wideValue = ToWide(value);
    SetEnvironmentVariableW(ToWide(name).c_str(), wideValue.empty() ? nullptr : wideValue.c_str());
}

}  // namespace launcher
