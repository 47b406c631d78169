#include "tests/dialog/support/dialog_driver.h"

// windows.h first: the process list's header needs it.
#include <tlhelp32.h>

#include <set>
#include <stdexcept>
#include <string>

#include "fs/encoding.h"

namespace launcher::test {
namespace {

// The dialog's own controls, the same in Windows and Wine.
constexpr int kFolderEdit = 1152;
// Those of Wine's toolbar.
constexpr int kBackButton = 201;
constexpr int kForwardButton = 202;

constexpr int kBoxText = 0xFFFF;  // the text of a message box
// Milliseconds.
constexpr DWORD kPatience = 60000;
constexpr DWORD kShortPatience = 10000;
constexpr DWORD kRepeatAfter = 2000;
constexpr DWORD kPollInterval = 10;

template <class Condition>
bool Becomes(DWORD patience, Condition condition) {
    const ULONGLONG end = GetTickCount64() + patience;
    while (!condition()) {
        if (GetTickCount64() > end) return false;
        Sleep(kPollInterval);
    }
    return true;
}

// The processes that this one has started.
std::set<DWORD> Children() {
    std::set<DWORD> children;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more;
         more = Process32NextW(snapshot, &entry))
        if (entry.th32ParentProcessID == GetCurrentProcessId())
            children.insert(entry.th32ProcessID);
    CloseHandle(snapshot);
    return children;
}

struct WindowSearch {
    std::set<DWORD> processes;
    HWND found = nullptr;
};

BOOL CALLBACK StopAtDialog(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<WindowSearch*>(parameter);
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    wchar_t name[16] = {};
    GetClassNameW(window, name, 16);
    if (!search.processes.contains(process) || !IsWindowVisible(window) ||
        std::wstring(name) != L"#32770")
        return TRUE;
    search.found = window;
    return FALSE;
}

// A message box or a folder dialog of a child; null when there is none.
HWND OpenDialog() {
    WindowSearch search{Children()};
    EnumWindows(&StopAtDialog, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

bool IsOpen(HWND window) {
    return IsWindow(window) && IsWindowVisible(window);
}

// Returns when the window has done what the message says.
void Send(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (SendMessageTimeoutW(window, message, first, second, SMTO_NORMAL, kPatience, nullptr) == 0)
        throw std::runtime_error("the folder dialog does not answer");
}

std::string TextOf(HWND window) {
    std::wstring text(4096, L'\0');
    Send(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return ToNarrow(text.c_str());
}

void Press(HWND dialog, int button) {
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED),
                 reinterpret_cast<LPARAM>(GetDlgItem(dialog, button)));
}

// The list of the files in the folder, in Wine.
HWND FileList(HWND dialog) {
    HWND window = dialog;
    for (const wchar_t* name : {L"ExplorerBrowserControl", L"SHELLDLL_DefView", L"SysListView32"})
        window = FindWindowExW(window, nullptr, name, nullptr);
    return window;
}

}  // namespace

DialogDriver::DialogDriver() {
    std::set<HWND> boxes;
    const bool opened = Becomes(kPatience, [&] {
        const HWND window = OpenDialog();
        const HWND text = GetDlgItem(window, kBoxText);
        if (text != nullptr && boxes.insert(window).second) {
            boxesBefore_.push_back(TextOf(text));
            PostMessageW(window, WM_CLOSE, 0, 0);
        }
        if (text == nullptr) dialog_ = window;
        return dialog_ != nullptr;
    });
    if (!opened) throw std::runtime_error("no folder dialog opens");
}

std::string DialogDriver::Title() const {
    return TextOf(dialog_);
}

bool DialogDriver::OkBecomes(bool visible) const {
    return Becomes(kShortPatience, [&] {
        return (IsWindowVisible(GetDlgItem(dialog_, IDOK)) != FALSE) == visible;
    });
}

void DialogDriver::GoUp() {
    Send(FileList(dialog_), WM_KEYDOWN, VK_BACK, 0);
}

void DialogDriver::GoBack() {
    Send(dialog_, WM_COMMAND, kBackButton, 0);
}

void DialogDriver::GoForward() {
    Send(dialog_, WM_COMMAND, kForwardButton, 0);
}

void DialogDriver::Confirm(const std::string& folder) {
    Send(GetDlgItem(dialog_, kFolderEdit), WM_SETTEXT, 0,
         reinterpret_cast<LPARAM>(ToWide(folder).c_str()));
    PressAndWait(IDOK);
}

void DialogDriver::Cancel() {
    PressAndWait(IDCANCEL);
}

// Until the dialog is gone, so that nobody else finds it to answer it. A dialog that is still at
// work may take no notice: it is pressed again.
void DialogDriver::PressAndWait(int button) {
    const ULONGLONG end = GetTickCount64() + kPatience;
    do {
        Press(dialog_, button);
        if (Becomes(kRepeatAfter, [&] { return !IsOpen(dialog_); })) return;
    } while (GetTickCount64() < end);
    throw std::runtime_error("the folder dialog does not close");
}

}  // namespace launcher::test
