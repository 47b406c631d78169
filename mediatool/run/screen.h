#pragma once

#include <memory>
#include <string>

namespace launcher::mediatool {

// The standard streams, written to by a thread: a caller that does not read its pipe, or a terminal
// that somebody holds, must not stop the watching. Texts are UTF-8, and come out in their order.
class Screen {
  public:
    Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    // Waits until all is written; gives up when nothing more is taken for ten seconds.
    ~Screen();

    // Neither waits.
    void Out(const std::string& text);
    void Error(const std::string& text);

  private:
    class Queue;
    std::shared_ptr<Queue> queue_;  // the thread's as well, which may outlive this object
};

}  // namespace launcher::mediatool
