// A stand-in for the installer of a medium, and for any other program that a test wants to see
// started. It writes what it was handed to the file named by STANDIN_REPORT, waits for the event
// named by STANDIN_WAIT, when there is one, stays for the milliseconds in STANDIN_LASTS, and exits
// with the code in STANDIN_EXIT (decimal or 0x hexadecimal; 0 without one).
//
// The report is UTF-8: pairs of a kind and a text, each ended by a zero byte, which no text of a
// process holds.

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include <cstdlib>
#include <cwchar>
#include <string>

#include "fs/encoding.h"
#include "fs/owners.h"

namespace {

using launcher::ToNarrow;

std::wstring Variable(const wchar_t* name) {
    std::wstring value(32768, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return value;
}

class ReportText {
  public:
    void Add(const char* kind, const wchar_t* text) {
        text_.append(kind).push_back('\0');
        text_.append(ToNarrow(text)).push_back('\0');
    }
    const std::string& Text() const { return text_; }

  private:
    std::string text_;
};

void AddArguments(ReportText& report) {
    report.Add("commandLine", GetCommandLineW());
    int count = 0;
    const launcher::LocalMemory<wchar_t*> arguments(CommandLineToArgvW(GetCommandLineW(), &count));
    for (int i = 0; i < count; ++i)
        report.Add("shellArgument", arguments.Get()[i]);
    for (int i = 0; i < __argc; ++i)
        report.Add("runtimeArgument", __wargv[i]);
}

void AddPlace(ReportText& report) {
    std::wstring text(32768, L'\0');
    GetModuleFileNameW(nullptr, text.data(), static_cast<DWORD>(text.size()));
    report.Add("module", text.c_str());
    GetCurrentDirectoryW(static_cast<DWORD>(text.size()), text.data());
    report.Add("folder", text.c_str());
}

void AddEnvironment(ReportText& report) {
    wchar_t* const block = GetEnvironmentStringsW();
    for (const wchar_t* entry = block; *entry != L'\0'; entry += std::wcslen(entry) + 1)
        report.Add("variable", entry);
    FreeEnvironmentStringsW(block);
}

// The handle of the current folder, which Windows itself opens as inheritable in every process, is
// handed on from each to the next.
bool IsFolder(HANDLE handle) {
    BY_HANDLE_FILE_INFORMATION file{};
    return GetFileInformationByHandle(handle, &file) &&
           (file.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The files among the handles that came with the process: nothing else has opened one yet.
void AddOpenFiles(ReportText& report) {
    for (ULONG_PTR value = 4; value < 0x1000; value += 4) {
        const HANDLE handle = reinterpret_cast<HANDLE>(value);
        DWORD flags = 0;
        if (!GetHandleInformation(handle, &flags) || (flags & HANDLE_FLAG_INHERIT) == 0 ||
            GetFileType(handle) != FILE_TYPE_DISK || IsFolder(handle))
            continue;
        std::wstring path(32768, L'\0');
        path.resize(
            GetFinalPathNameByHandleW(handle, path.data(), static_cast<DWORD>(path.size()), 0));
        report.Add("inheritedFile", path.c_str());
    }
}

// Under another name first, so that a report is never seen half written.
void Save(const ReportText& report, const std::wstring& path) {
    const std::wstring unfinished = path + L".part";
    {
        const launcher::FileHandle file(
            CreateFileW(unfinished.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        DWORD written = 0;
        WriteFile(file.Get(), report.Text().data(), static_cast<DWORD>(report.Text().size()),
                  &written, nullptr);
    }
    // A virus scanner may hold the new file for a moment.
    constexpr int kPatience = 20;  // times 100 milliseconds
    for (int i = 0;
         !MoveFileExW(unfinished.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) && i < kPatience;
         ++i)
        Sleep(100);
}

void WaitForEvent(const std::wstring& name) {
    if (name.empty()) return;
    const HANDLE event = OpenEventW(SYNCHRONIZE, FALSE, name.c_str());
    WaitForSingleObject(event, INFINITE);
    CloseHandle(event);
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    ReportText report;
    AddOpenFiles(report);
    AddArguments(report);
    AddPlace(report);
    AddEnvironment(report);
    if (const std::wstring path = Variable(L"STANDIN_REPORT"); !path.empty()) Save(report, path);
    WaitForEvent(Variable(L"STANDIN_WAIT"));
    Sleep(std::wcstoul(Variable(L"STANDIN_LASTS").c_str(), nullptr, 10));
    return static_cast<int>(std::wcstoul(Variable(L"STANDIN_EXIT").c_str(), nullptr, 0));
}
