#include "mediatool/run/status_line.h"

#include <windows.h>

#include <algorithm>

#include "fs/encoding.h"
#include "mediatool/base/sentences.h"
#include "mediatool/run/moment.h"

namespace launcher::mediatool {
namespace {

// Of the terminal, one less than it has: a full line would move on to the next. 0: no terminal.
std::size_t Columns() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_ERROR_HANDLE), &info)) return 0;
    return static_cast<std::size_t>(std::max(0, info.srWindow.Right - info.srWindow.Left));
}

// At most: signs of East Asia are twice as wide as letters, and so are pairs of surrogates.
std::size_t CellsOf(const std::wstring& text) {
    const auto isWide = [](wchar_t unit) {
        return unit >= 0x1100 && !IS_HIGH_SURROGATE(unit) && !IS_LOW_SURROGATE(unit);
    };
    return text.size() + static_cast<std::size_t>(std::ranges::count_if(text, isWide));
}

}  // namespace

std::wstring StatusText(std::uint64_t milliseconds, const std::string& message,
                        std::size_t columns) {
    const std::string line = message.substr(0, message.find_first_of("\r\n"));
    std::string text = Harmless(LengthText(milliseconds) + "  " + line);
    std::ranges::replace(text, '\t', ' ');  // whose width nobody knows
    std::wstring wide = ToWide(text);
    wide.resize(std::min(wide.size(), columns));
    while (!wide.empty() && (CellsOf(wide) > columns || IS_HIGH_SURROGATE(wide.back())))
        wide.pop_back();
    return wide;
}

void StatusLine::Show(std::uint64_t milliseconds, const std::string& message) {
    if (second_ == milliseconds / 1000) return;
    second_ = milliseconds / 1000;
    const std::size_t columns = Columns();
    if (columns == 0) return;
    const std::wstring text = StatusText(milliseconds, message, columns);
    const std::size_t cells = CellsOf(text);
    const std::size_t blanks = shown_ - std::min(shown_, cells);
    screen_.Error("\r" + ToNarrow(text.c_str()) + std::string(blanks, ' '));
    shown_ = cells;
}

void StatusLine::Clear() {
    if (shown_ > 0) screen_.Error("\r" + std::string(shown_, ' ') + "\r");
    shown_ = 0;
    second_ = UINT64_MAX;
}

}  // namespace launcher::mediatool
