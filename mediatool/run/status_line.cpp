#include "mediatool/run/status_line.h"

#include <windows.h>

#include <algorithm>

#include "fs/encoding.h"
#include "mediatool/run/moment.h"

namespace launcher::mediatool {
namespace {

// Of the terminal, one less than it has: a full line would move on to the next. 0: no terminal.
std::size_t Columns() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info)) return 0;
    return static_cast<std::size_t>(std::max(0, info.srWindow.Right - info.srWindow.Left));
}

}  // namespace

void StatusLine::Show(std::uint64_t milliseconds, const std::string& message) {
    if (second_ == milliseconds / 1000) return;
    second_ = milliseconds / 1000;
    const std::size_t columns = Columns();
    if (columns == 0) return;
    std::wstring text = ToWide(LengthText(milliseconds) + "  " + message);
    text.resize(std::min({text.size(), columns, text.find_first_of(L"\r\n")}));
    const std::size_t blanks = shown_ > text.size() ? shown_ - text.size() : 0;
    screen_.Error("\r" + ToNarrow(text.c_str()) + std::string(blanks, ' '));
    shown_ = text.size();
}

void StatusLine::Clear() {
    if (shown_ > 0) screen_.Error("\r" + std::string(shown_, ' ') + "\r");
    shown_ = 0;
    second_ = UINT64_MAX;
}

}  // namespace launcher::mediatool
