// A stand-in for the installer that looks at what its process was given by the one that started
// it, and writes it to the file named by PROBE_REPORT, in UTF-8 lines:
//
//   handle TYPE PATH      an inherited handle that is no folder's; the path for files only
//   error mode NUMBER
//   library folder PATH   what GetDllDirectoryW answers
//   policy NUMBER FLAGS   a mitigation policy of the process
//   library NAME PATH     where Windows found a library of PROBE_LIBRARIES, names with ';' between

#include <windows.h>

#include <cstdint>
#include <sstream>
#include <string>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/owners.h"
#include "tests/support/handle_type.h"

namespace {

using launcher::GetEnvVar;
using launcher::ToNarrow;
using launcher::ToWide;
using launcher::test::TypeOf;

constexpr DWORD kMaxLength = 32768;

template <class Function>
Function FunctionOf(const wchar_t* library, const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)));
}

std::string PathOf(HANDLE handle) {
    std::wstring path(kMaxLength, L'\0');
    if (GetFileType(handle) == FILE_TYPE_DISK)
        GetFinalPathNameByHandleW(handle, path.data(), kMaxLength, 0);
    return ToNarrow(path.c_str());
}

// The handle of the current folder, which Windows itself opens as inheritable in every process, is
// handed on from each to the next.
bool IsFolder(HANDLE handle) {
    BY_HANDLE_FILE_INFORMATION file{};
    return GetFileType(handle) == FILE_TYPE_DISK && GetFileInformationByHandle(handle, &file) &&
           (file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

void WriteHandles(std::ostream& report) {
    for (std::uintptr_t value = 4; value < 0x1000; value += 4) {
        const HANDLE handle = reinterpret_cast<HANDLE>(value);
        DWORD flags = 0;
        if (GetHandleInformation(handle, &flags) && (flags & HANDLE_FLAG_INHERIT) != 0 &&
            !IsFolder(handle))
            report << "handle " << ToNarrow(TypeOf(handle).c_str()) << ' ' << PathOf(handle)
                   << '\n';
    }
}

void WriteLibraryFolder(std::ostream& report) {
    std::wstring folder(kMaxLength, L'\0');
    GetDllDirectoryW(kMaxLength, folder.data());
    report << "library folder " << ToNarrow(folder.c_str()) << '\n';
}

// Those that Windows hands on to child processes, or that this image does not decide itself:
// dynamic code, handle checks, system calls, extension points, signatures, fonts, places of
// libraries, child processes.
void WritePolicies(std::ostream& report) {
    using GetPolicy = BOOL(WINAPI*)(HANDLE, int, void*, SIZE_T);
    const auto getPolicy = FunctionOf<GetPolicy>(L"kernel32", "GetProcessMitigationPolicy");
    if (getPolicy == nullptr) return;
    for (const int policy : {2, 3, 4, 6, 8, 9, 10, 13}) {
        DWORD flags = 0;
        if (getPolicy(GetCurrentProcess(), policy, &flags, sizeof flags))
            report << "policy " << policy << ' ' << flags << '\n';
    }
}

void WriteLibraries(std::ostream& report) {
    std::istringstream names(GetEnvVar("PROBE_LIBRARIES"));
    for (std::string name; std::getline(names, name, ';');) {
        std::wstring path(kMaxLength, L'\0');
        if (const HMODULE library = LoadLibraryW(ToWide(name).c_str()); library != nullptr)
            GetModuleFileNameW(library, path.data(), kMaxLength);
        report << "library " << name << ' ' << ToNarrow(path.c_str()) << '\n';
    }
}

void Save(const std::string& text, const std::string& path) {
    const launcher::FileHandle file(
        CreateFileW(ToWide(path).c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    std::ostringstream report;
    WriteHandles(report);  // first: nothing else has opened one yet
    report << "error mode " << GetErrorMode() << '\n';
    WriteLibraryFolder(report);
    WritePolicies(report);
    WriteLibraries(report);
    Save(report.str(), GetEnvVar("PROBE_REPORT"));
    return 0;
}
