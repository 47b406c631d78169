#pragma once

#include <cstddef>
#include <string>

#include "mediatool/base/amounts.h"

namespace launcher::mediatool {

// The standard streams, in UTF-8. On a terminal they show it whatever its code page.

void PrintOut(const std::string& text);
void PrintError(const std::string& text);

enum class Colour { Plain, Bold, Dim, Red, Yellow, Green, Cyan };

// `text` in a colour: on a terminal that understands it, unless NO_COLOR is set to anything.
std::string Painted(Colour colour, const std::string& text);

// A line on the standard error stream that is written over and over; on a terminal only.
class Progress {
  public:
    Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { Clear(); }

    void Show(const std::string& line);
    // Takes it away: what is printed next would go on behind it.
    void Clear();

  private:
    bool isTerminal_;
    std::size_t width_ = 0;         // of the longest line so far
    unsigned long long shown_ = 0;  // when last, in milliseconds
    bool visible_ = false;
};

// Shows amounts on `line`, with the rate since that work began.
TellAmounts ShownOn(Progress& line);

}  // namespace launcher::mediatool
