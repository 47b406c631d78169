#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace launcher::test {

// Drives the folder dialog of a launcher that this process has started, from outside, as a person
// does: looks at its windows, presses its buttons and keys.
class DialogDriver {
  public:
    // Waits for the dialog, and closes the message boxes that come before it. Throws
    // std::runtime_error when none opens.
    DialogDriver();

    // The texts of those boxes, in UTF-8.
    const std::vector<std::string>& BoxesBefore() const { return boxesBefore_; }
    std::string Title() const;
    // Whether the OK button is, or soon becomes, one that can be seen, or one that cannot.
    bool ShowsOk() const { return OkBecomes(true); }
    bool HidesOk() const { return OkBecomes(false); }

    // Each of these three enters another folder before it returns. They are Wine's: see its
    // dialog's toolbar, and Backspace in its list of files.
    void GoUp();
    void GoBack();
    void GoForward();

    // Types the path of a folder and presses OK; the dialog is gone afterwards.
    void Confirm(const std::string& folder);
    void Cancel();

  private:
    bool OkBecomes(bool visible) const;
    void PressAndWait(int button);

    HWND dialog_ = nullptr;
    std::vector<std::string> boxesBefore_;
};

}  // namespace launcher::test
