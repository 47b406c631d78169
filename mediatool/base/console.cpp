#include "mediatool/base/console.h"

#include <windows.h>

#include <algorithm>
#include <cstdlib>

#include "fs/encoding.h"

namespace launcher::mediatool {
namespace {

constexpr unsigned long long kBetween = 200;  // milliseconds

bool IsTerminal(DWORD stream) {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(stream), &mode) != 0;
}

void Print(DWORD stream, const std::string& text) {
    const HANDLE handle = GetStdHandle(stream);
    DWORD written = 0;
    if (IsTerminal(stream)) {
        const std::wstring wide = ToWide(text);
        WriteConsoleW(handle, wide.data(), static_cast<DWORD>(wide.size()), &written, nullptr);
        return;
    }
    std::size_t done = 0;
    while (done < text.size()) {
        const auto rest = static_cast<DWORD>(text.size() - done);
        if (!WriteFile(handle, text.data() + done, rest, &written, nullptr) || written == 0) return;
        done += written;
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

const char* Code(Colour colour) {
    switch (colour) {
        case Colour::Bold:
            return "\x1b[1m";
        case Colour::Dim:
            return "\x1b[2m";
        case Colour::Red:
            return "\x1b[1;31m";
        case Colour::Yellow:
            return "\x1b[33m";
        case Colour::Green:
            return "\x1b[32m";
        case Colour::Cyan:
            return "\x1b[36m";
        case Colour::Plain:
            break;
    }
    return "";
}

}  // namespace

void PrintOut(const std::string& text) {
    Print(STD_OUTPUT_HANDLE, text);
}

void PrintError(const std::string& text) {
    Print(STD_ERROR_HANDLE, text);
}

std::string Painted(Colour colour, const std::string& text) {
    static const bool coloured = ShowsColours();
    return coloured && colour != Colour::Plain ? Code(colour) + text + "\x1b[0m" : text;
}

Progress::Progress() : isTerminal_(IsTerminal(STD_ERROR_HANDLE)) {}

Progress::~Progress() {
    if (visible_) PrintError("\r" + std::string(width_, ' ') + "\r");
}

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

}  // namespace launcher::mediatool
