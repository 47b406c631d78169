#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace launcher::test {

// A message box as a person sees it, in UTF-8.
struct Box {
    std::string caption;
    std::string text;
    std::uintmax_t written = 0;  // bytes on the standard output before it
};

// Watches one process for message boxes and folder dialogs, and answers them as a person would:
// presses a box's button, cancels a dialog.
class BoxWatcher {
  public:
    // `output` is the file of the process's standard output; empty when nobody asks what was
    // written before a box.
    BoxWatcher(DWORD processId, std::filesystem::path output)
        : processId_(processId), output_(std::move(output)) {}

    // Looks once at all windows. To be called again and again.
    void Poll();

    const std::vector<Box>& Boxes() const { return boxes_; }
    // The titles of the folder dialogs.
    const std::vector<std::string>& Dialogs() const { return dialogs_; }

  private:
    struct Seen {
        ULONGLONG first;           // when
        ULONGLONG answered = 0;    // when last
        bool isTakenDown = false;  // with its text, or without when that took too long
    };

    static BOOL CALLBACK OnWindow(HWND window, LPARAM self);
    void See(HWND window);
    bool TakeDown(HWND window, HWND text, bool isLast);

    DWORD processId_;
    std::filesystem::path output_;
    std::map<HWND, Seen> seen_;
    std::vector<Box> boxes_;
    std::vector<std::string> dialogs_;
};

}  // namespace launcher::test
