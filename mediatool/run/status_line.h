#pragma once

#include <cstdint>
#include <string>

#include "mediatool/run/screen.h"

namespace launcher::mediatool {

// How much time has passed, and the first line of a message, as far as `columns` cells of a
// terminal go.
std::wstring StatusText(std::uint64_t milliseconds, const std::string& message,
                        std::size_t columns);

// On a terminal, the last line: how much time has passed, and the last message. It stands on the
// standard error stream; nothing is shown anywhere else.
class StatusLine {
  public:
    explicit StatusLine(Screen& screen) : screen_(screen) {}
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;
    ~StatusLine() { Clear(); }

    // Writes it over the one before, once a second.
    void Show(std::uint64_t milliseconds, const std::string& message);
    // Takes it away, so that other lines can be printed.
    void Clear();

  private:
    Screen& screen_;
    std::size_t shown_ = 0;              // cells
    std::uint64_t second_ = UINT64_MAX;  // that is shown
};

}  // namespace launcher::mediatool
