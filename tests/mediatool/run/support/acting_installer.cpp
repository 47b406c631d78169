// A stand-in for an installer that does what it is told by STANDIN_ACTS: actions with their values,
// one after the other, separated by "|".
//
//   print TEXT      a line on the standard output, when there is one
//   complain TEXT   a line on the standard error stream
//   piece TEXT      on the standard output, without a line end
//   mutter TEXT     on the standard error stream, without a line end
//   lines COUNT     lines of 100 bytes, together with their ends, on the standard output
//   box TEXT        a message box with the launcher's caption, which the program does not wait for
//   child ACTS      starts this program again, to do one thing: "," stands for its "|"
//   wait NAME       waits for the event of that name, for two minutes at most
//   note FILE       writes how many bytes were written, and "failed" after a failure
//   exit CODE       ends at once

#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <string>

#include "fs/encoding.h"

namespace {

constexpr DWORD kLongestWait = 120000;  // milliseconds: a test that fails leaves nothing running

std::size_t written = 0;
bool failed = false;

void Write(DWORD stream, const std::string& bytes) {
    DWORD count = 0;
    if (!WriteFile(GetStdHandle(stream), bytes.data(), static_cast<DWORD>(bytes.size()), &count,
                   nullptr))
        failed = true;
    written += count;
}

void WriteLines(int count) {
    for (int i = 0; i < count; ++i) {
        std::string line = "line " + std::to_string(i) + " ";
        line.resize(98, '.');
        Write(STD_OUTPUT_HANDLE, line + "\r\n");
    }
}

DWORD WINAPI ShowOwnBox(void* text) {
    MessageBoxW(nullptr, static_cast<const wchar_t*>(text), nullptr, MB_ICONERROR);
    return 0;
}

void StartChild(std::wstring acts) {
    for (wchar_t& character : acts)
        if (character == L',') character = L'|';
    SetEnvironmentVariableW(L"STANDIN_ACTS", acts.c_str());
    std::wstring program(32768, L'\0');
    program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    CreateProcessW(program.c_str(), nullptr, nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                   &process);
}

void WaitFor(const std::wstring& name) {
    const HANDLE event = OpenEventW(SYNCHRONIZE, FALSE, name.c_str());
    WaitForSingleObject(event, kLongestWait);
}

void Note(const std::wstring& path) {
    const std::string note = std::to_string(written) + (failed ? " failed" : "");
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD count = 0;
    WriteFile(file, note.data(), static_cast<DWORD>(note.size()), &count, nullptr);
    CloseHandle(file);
}

void Act(const std::wstring& verb, const std::wstring& value) {
    const std::string text = launcher::ToNarrow(value.c_str());
    if (verb == L"print") Write(STD_OUTPUT_HANDLE, text + "\r\n");
    if (verb == L"complain") Write(STD_ERROR_HANDLE, text + "\r\n");
    if (verb == L"piece") Write(STD_OUTPUT_HANDLE, text);
    if (verb == L"mutter") Write(STD_ERROR_HANDLE, text);
    if (verb == L"lines") WriteLines(std::atoi(text.c_str()));
    if (verb == L"box")
        CreateThread(nullptr, 0, &ShowOwnBox, (new std::wstring(value))->data(), 0, nullptr);
    if (verb == L"child") StartChild(value);
    if (verb == L"wait") WaitFor(value);
    if (verb == L"note") Note(value);
    if (verb == L"exit") ExitProcess(std::wcstoul(value.c_str(), nullptr, 0));
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    std::wstring acts(32767, L'\0');
    acts.resize(GetEnvironmentVariableW(L"STANDIN_ACTS", acts.data(), 32767));
    for (std::size_t start = 0; start < acts.size();) {
        const std::size_t end = std::min(acts.find(L'|', start), acts.size());
        const std::wstring act = acts.substr(start, end - start);
        const std::size_t blank = std::min(act.find(L' '), act.size());
        Act(act.substr(0, blank), act.substr(std::min(blank + 1, act.size())));
        start = end + 1;
    }
    return 0;
}
