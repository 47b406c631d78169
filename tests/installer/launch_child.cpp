// The child process of the launch tests.
//
//   launch_child exit CODE         ends with the code
//   launch_child set HANDLE        sets the event that an inherited handle names; ends with 0
//   launch_child value NAME VALUE  ends with 0 when the environment says so, else with 1

#include <windows.h>

#include <cstdlib>
#include <string>

namespace {

unsigned long Number(const wchar_t* text) {
    return std::wcstoul(text, nullptr, 0);
}

HANDLE InheritedHandle(const wchar_t* text) {
    return reinterpret_cast<HANDLE>(static_cast<UINT_PTR>(Number(text)));
}

bool HasVariable(const wchar_t* name, const std::wstring& value) {
    wchar_t text[200] = {};
    GetEnvironmentVariableW(name, text, 200);
    return text == value;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const std::wstring verb = argc > 2 ? argv[1] : L"";
    if (verb == L"exit") ExitProcess(Number(argv[2]));
    if (verb == L"set") return SetEvent(InheritedHandle(argv[2])) ? 0 : 1;
    if (verb == L"value" && argc > 3) return HasVariable(argv[2], argv[3]) ? 0 : 1;
    return 2;
}
