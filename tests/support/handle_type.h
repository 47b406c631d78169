#pragma once

#include <windows.h>
// windows.h first: the other header needs it.
#include <winternl.h>

#include <string>

namespace launcher::test {

// The type of an open handle, as Windows names it: "File" or "Event"; "?" when it does not tell.
inline std::wstring TypeOf(HANDLE handle) {
    static const auto queryObject = reinterpret_cast<decltype(&NtQueryObject)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll"), "NtQueryObject")));
    // The answer begins with the name.
    alignas(UNICODE_STRING) char answer[1024] = {};
    if (queryObject(handle, ObjectTypeInformation, answer, sizeof answer, nullptr) < 0) return L"?";
    const auto& name = *reinterpret_cast<const UNICODE_STRING*>(answer);
    return {name.Buffer, name.Length / sizeof(wchar_t)};
}

}  // namespace launcher::test
