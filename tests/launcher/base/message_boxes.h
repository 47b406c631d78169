#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/support/import_patch.h"

namespace launcher::test {

// A message box as it was asked for.
struct MessageBox {
    HWND owner;
    std::wstring text;
    bool hasCaption;
    UINT style;

    bool operator==(const MessageBox&) const = default;
};

// While it lives, message boxes are not shown but recorded, each as if closed at once. One at a
// time.
class MessageBoxRecorder {
  public:
    MessageBoxRecorder();
    ~MessageBoxRecorder();

    const std::vector<MessageBox>& Boxes() const { return boxes_; }
    // What MessageBoxW answers from now on; 0 is a failure.
    void Answer(int answer) { answer_ = answer; }

  private:
    static int WINAPI RecordMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption, UINT style);

    static MessageBoxRecorder* active_;
    std::vector<MessageBox> boxes_;
    int answer_ = IDOK;
    const ImportPatch patch_{"MessageBoxW", RecordMessageBox};
};

// While it lives, message boxes are not shown but written to the standard error stream: for tests
// of a process that ends. A box of the launcher's usual look is "box: TEXT" and a line end.
class MessageBoxPrinter {
  private:
    static int WINAPI PrintMessageBox(HWND owner, LPCWSTR text, LPCWSTR caption, UINT style);

    const ImportPatch patch_{"MessageBoxW", PrintMessageBox};
};

// The box of every message of the launcher: no owner, no caption of its own, the error icon.
inline MessageBox LauncherBox(const std::wstring& text) {
    return {nullptr, text, false, 0x10};
}

}  // namespace launcher::test
