#pragma once

#include <string>

#include "mediatool/base/console.h"
#include "mediatool/run/outbox.h"

namespace launcher::mediatool {

// The standard streams, written to by a thread: a caller that does not read its pipe, or a terminal
// that somebody holds, must not stop the watching. Texts are UTF-8, and come out in their order.
class Screen {
  public:
    Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    // Waits until all is written; gives up when nothing more is taken for ten seconds.
    ~Screen() { outbox_.Finish(); }

    // Neither waits.
    void Out(const std::string& text) { outbox_.Add(&PrintOut, text); }
    void Error(const std::string& text) { outbox_.Add(&PrintError, text); }

    // Whether as much waits to be written as is to be kept: what can be left out, should be.
    bool IsFull() const { return outbox_.Waiting() > kMostWaiting; }

  private:
    Outbox outbox_;
};

}  // namespace launcher::mediatool
