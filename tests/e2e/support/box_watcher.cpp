#include "tests/e2e/support/box_watcher.h"

#include <string_view>

#include "fs/encoding.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

constexpr int kBoxTextId = 0xFFFF;
constexpr UINT kPatience = 5000;  // milliseconds for a window to answer

std::string TextOf(HWND window) {
    std::wstring text(32768, L'\0');
    DWORD_PTR length = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()),
                        SMTO_ABORTIFHUNG, kPatience, &length);
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
    const HWND text = GetDlgItem(window, kBoxTextId);
    const auto [entry, isNew] = answered_.try_emplace(window, 0);
    if (isNew && text != nullptr)
        boxes_.push_back(
            {TextOf(window), TextOf(text), output_.empty() ? 0 : ReadFile(output_).size()});
    if (isNew && text == nullptr) dialogs_.push_back(TextOf(window));
    const ULONGLONG now = GetTickCount64();
    if (now - entry->second < kPatience / 5) return;
    entry->second = now;
    Press(window, text != nullptr ? ShownButton(window) : GetDlgItem(window, IDCANCEL));
}

}  // namespace launcher::test
