#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <vector>

namespace launcher::mediatool {

// A box that would have waited for somebody.
struct SeenBox {
    std::string text;     // in full, UTF-8; the title of a dialog
    bool dialog = false;  // the folder dialog
};

// Answers the boxes of one process as a person would, as soon as their text is taken down: presses
// the button of a message box, cancels the folder dialog; and again, until they are gone.
class BoxWatcher {
  public:
    explicit BoxWatcher(DWORD processId) : processId_(processId) {}

    // Looks once at all windows of this desktop; the boxes that are new. Windows of other processes
    // are left alone, but those of `reporters` are reports about this one, and are closed.
    std::vector<SeenBox> Look(const std::vector<DWORD>& reporters);

  private:
    void See(HWND window, std::vector<SeenBox>& boxes);

    DWORD processId_;
    struct Answered {
        ULONGLONG first = 0;  // seen, in milliseconds
        ULONGLONG last = 0;   // answered; 0: not yet
    };
    std::map<HWND, Answered> answered_;
};

}  // namespace launcher::mediatool
