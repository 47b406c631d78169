#include "mediatool/base/console.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "fs/encoding.h"

namespace launcher::mediatool {
namespace {

constexpr unsigned long long kBetween = 200;  // milliseconds

bool IsTerminal(DWORD stream) {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(stream), &mode) != 0;
}

// The terminal of Windows 7 takes nothing at all of 64 KB or more.
constexpr std::size_t kAtOnce = 8192;  // characters

// The text in pieces, none of which ends between the two halves of a character. A write may take
// less than its piece.
void PrintOnTerminal(HANDLE terminal, std::wstring_view text) {
    while (!text.empty()) {
        std::size_t size = std::min(text.size(), kAtOnce);
        if (IS_HIGH_SURROGATE(text[size - 1])) --size;
        DWORD written = 0;
        if (!WriteConsoleW(terminal, text.data(), static_cast<DWORD>(size), &written, nullptr) ||
            written == 0)
            return;
        text.remove_prefix(written);
    }
}

void Print(DWORD stream, std::string_view text) {
    const HANDLE handle = GetStdHandle(stream);
    if (IsTerminal(stream)) return PrintOnTerminal(handle, ToWide(std::string(text)));
    while (!text.empty()) {
        DWORD written = 0;
        const auto rest = static_cast<DWORD>(text.size());
        if (!WriteFile(handle, text.data(), rest, &written, nullptr) || written == 0) return;
        text.remove_prefix(written);
    }
}

// Switches the terminal's colours on, and says whether there are any.
bool ShowsColours() {
    if (GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) > 1) return false;
    const HANDLE handle = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) &&
           SetConsoleMode(handle, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

// In the order of the enumeration: plain, bold, dim, red, yellow, green, cyan.
constexpr const char* kCodes[] = {"",         "\x1b[1m",  "\x1b[2m", "\x1b[1;31m",
                                  "\x1b[33m", "\x1b[32m", "\x1b[36m"};
static_assert(std::size(kCodes) == static_cast<std::size_t>(Colour::Cyan) + 1);

}  // namespace

void PrintOut(const std::string& text) {
    Print(STD_OUTPUT_HANDLE, text);
}

void PrintError(const std::string& text) {
    Print(STD_ERROR_HANDLE, text);
}

std::string Painted(Colour colour, const std::string& text) {
    static const bool coloured = ShowsColours();
    if (!coloured || colour == Colour::Plain) return text;
    return kCodes[static_cast<std::size_t>(colour)] + text + "\x1b[0m";
}

Progress::Progress() : isTerminal_(IsTerminal(STD_ERROR_HANDLE)) {}

void Progress::Show(const std::string& line) {
    if (!isTerminal_) return;
    const unsigned long long now = GetTickCount64();
    if (shown_ == 0) shown_ = now;
    if (now - shown_ < kBetween) return;
    shown_ = now;
    visible_ = true;
    width_ = std::max(width_, line.size());
    PrintError("\r" + line + std::string(width_ - line.size(), ' '));
}

void Progress::Clear() {
    if (visible_) PrintError("\r" + std::string(width_, ' ') + "\r");
    visible_ = false;
}

TellAmounts ShownOn(Progress& line) {
    return [&line, what = std::string(), begin = 0ULL](const Amounts& amounts) mutable {
        if (what != amounts.what) begin = GetTickCount64();
        what = amounts.what;
        line.Show(TextOf(amounts, GetTickCount64() - begin));
    };
}

}  // namespace launcher::mediatool
