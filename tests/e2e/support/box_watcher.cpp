#include "tests/e2e/support/box_watcher.h"

#include <optional>

#include "fs/encoding.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

constexpr int kBoxTextId = 0xFFFF;
// Milliseconds.
constexpr UINT kPatience = 5000;        // for a window to tell its text
constexpr ULONGLONG kTextTime = 30000;  // for one that does not, before it is taken for empty
constexpr ULONGLONG kBetween = 1000;    // between two answers to a window

// Nothing for a window that does not answer, as on a machine that is busy.
std::optional<std::string> TextOf(HWND window) {
    std::wstring text(32768, L'\0');
    DWORD_PTR length = 0;
    if (!SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                             SMTO_ABORTIFHUNG, kPatience, &length))
        return std::nullopt;
    return ToNarrow(text.c_str());
}

std::wstring ClassOf(HWND window) {
    wchar_t name[64] = {};
    GetClassNameW(window, name, 64);
    return name;
}

// As a click on the button does.
void Press(HWND box, HWND button) {
    const auto id = static_cast<WORD>(GetDlgCtrlID(button));
    PostMessageW(box, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
}

// The one button that a box of this launcher shows.
HWND ShownButton(HWND box) {
    HWND button = nullptr;
    do {
        button = FindWindowExW(box, button, L"Button", nullptr);
    } while (button != nullptr && !IsWindowVisible(button));
    return button;
}

bool IsDialog(HWND window, DWORD processId) {
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    return owner == processId && IsWindowVisible(window) && ClassOf(window) == L"#32770";
}

}  // namespace

void BoxWatcher::Poll() {
    EnumWindows(&BoxWatcher::OnWindow, reinterpret_cast<LPARAM>(this));
}

BOOL CALLBACK BoxWatcher::OnWindow(HWND window, LPARAM self) {
    auto& watcher = *reinterpret_cast<BoxWatcher*>(self);
    if (IsDialog(window, watcher.processId_)) watcher.See(window);
    return TRUE;
}

void BoxWatcher::See(HWND window) {
    const ULONGLONG now = GetTickCount64();
    Seen& seen = seen_.try_emplace(window, Seen{now}).first->second;
    const HWND text = GetDlgItem(window, kBoxTextId);
    if (!seen.isTakenDown) {
        seen.isTakenDown = TakeDown(window, text, now - seen.first > kTextTime);
        if (!seen.isTakenDown) return;
    }
    if (now - seen.answered < kBetween) return;
    seen.answered = now;
    Press(window, text != nullptr ? ShownButton(window) : GetDlgItem(window, IDCANCEL));
}

// Whether it told its texts; at the last attempt what it does not tell is empty.
bool BoxWatcher::TakeDown(HWND window, HWND text, bool isLast) {
    const auto caption = TextOf(window);
    const auto message = text != nullptr ? TextOf(text) : std::optional(std::string());
    if (!isLast && (!caption || !message)) return false;
    if (text != nullptr)
        boxes_.push_back({caption.value_or(""), message.value_or(""),
                          output_.empty() ? 0 : ReadFile(output_).size()});
    else
        dialogs_.push_back(caption.value_or(""));
    return true;
}

}  // namespace launcher::test
