#include "mediatool/run/box_watcher.h"

#include <algorithm>
#include <optional>

#include "fs/encoding.h"

namespace launcher::mediatool {
namespace {

constexpr wchar_t kDialogClass[] = L"#32770";
constexpr int kMessageTextId = 0xFFFF;  // of the control that holds a message box's text
constexpr UINT kAnswerTime = 500;       // milliseconds for a window to tell its text
constexpr ULONGLONG kTextTime = 5000;   // for one that does not, before it is answered all the same
constexpr ULONGLONG kAgain = 1000;      // between two answers to the same window

std::optional<DWORD_PTR> Ask(HWND window, UINT message, WPARAM first, LPARAM second) {
    DWORD_PTR answer = 0;
    if (!SendMessageTimeoutW(window, message, first, second, SMTO_ABORTIFHUNG, kAnswerTime,
                             &answer))
        return std::nullopt;
    return answer;
}

std::optional<std::string> TextOf(HWND window) {
    const auto length = Ask(window, WM_GETTEXTLENGTH, 0, 0);
    if (!length) return std::nullopt;
    std::wstring text(*length + 1, L'\0');
    if (!Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data())))
        return std::nullopt;
    return ToNarrow(text.c_str());
}

std::wstring ClassOf(HWND window) {
    std::wstring name(MAX_PATH, L'\0');
    const int length = GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    name.resize(static_cast<std::size_t>(length));
    return name;
}

std::vector<HWND> ShownButtons(HWND box) {
    std::vector<HWND> buttons;
    HWND button = nullptr;
    while ((button = FindWindowExW(box, button, L"Button", nullptr)) != nullptr)
        if (IsWindowVisible(button)) buttons.push_back(button);
    return buttons;
}

// A box of the runtime may offer more than one: then it is the one that ends the program.
HWND ButtonToPress(HWND box) {
    const std::vector<HWND> buttons = ShownButtons(box);
    if (buttons.size() == 1) return buttons.front();
    const HWND abort = GetDlgItem(box, IDABORT);
    return abort != nullptr ? abort : GetDlgItem(box, IDCANCEL);
}

// As a click does. Posted: a window that is hung must not hang the watching.
void Press(HWND box, HWND button) {
    const auto id = static_cast<WORD>(GetDlgCtrlID(button));
    if (button == nullptr)
        PostMessageW(box, WM_CLOSE, 0, 0);
    else
        PostMessageW(box, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
}

BOOL CALLBACK AddWindow(HWND window, LPARAM windows) {
    if (IsWindowVisible(window)) reinterpret_cast<std::vector<HWND>*>(windows)->push_back(window);
    return TRUE;
}

std::vector<HWND> VisibleWindows() {
    std::vector<HWND> windows;
    EnumWindows(&AddWindow, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

}  // namespace

std::vector<SeenBox> BoxWatcher::Look(const std::vector<DWORD>& reporters) {
    std::vector<SeenBox> boxes;
    for (const HWND window : VisibleWindows()) {
        DWORD owner = 0;
        GetWindowThreadProcessId(window, &owner);
        const bool isOwn = owner == processId_ && ClassOf(window) == kDialogClass;
        if (isOwn || std::ranges::count(reporters, owner) > 0) See(window, boxes);
    }
    std::erase_if(answered_, [](const auto& entry) { return !IsWindow(entry.first); });
    return boxes;
}

void BoxWatcher::See(HWND window, std::vector<SeenBox>& boxes) {
    const ULONGLONG now = GetTickCount64();
    const HWND message = GetDlgItem(window, kMessageTextId);
    Answered& answered = answered_.try_emplace(window, Answered{now, 0}).first->second;
    if (answered.last == 0) {
        const auto text = TextOf(message != nullptr ? message : window);
        if (!text && now - answered.first < kTextTime) return;
        const bool isDialog = message == nullptr && GetDlgItem(window, IDCANCEL) != nullptr;
        boxes.push_back({text.value_or("(a box that does not tell its text)"), isDialog});
    } else if (now - answered.last < kAgain) {
        return;
    }
    answered.last = now;
    Press(window, message != nullptr ? ButtonToPress(window) : GetDlgItem(window, IDCANCEL));
}

}  // namespace launcher::mediatool
