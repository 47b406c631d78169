#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>

namespace launcher::mediatool {

// Of what waits to be handed on: as much as is to be kept, in bytes.
inline constexpr std::size_t kMostWaiting = 8 << 20;

// Texts that a thread hands on, in their order: a screen, a disk or a caller that takes them
// slowly, or not at all, does not stop whoever has them.
class Outbox {
  public:
    // Hands a text on, for as long as that may last.
    using Take = std::function<void(const std::string&)>;

    Outbox();
    Outbox(const Outbox&) = delete;
    Outbox& operator=(const Outbox&) = delete;
    // Waits for nothing: what has not been taken is left to the thread, which may outlive this.
    ~Outbox();

    // Does not wait; but where Windows has no more threads it is done here and now. Whole lines
    // together, in pieces of 64 KB at most.
    void Add(const Take& take, const std::string& text);
    // What has been added and not been taken, in bytes.
    std::size_t Waiting() const;
    // Waits until all is taken; gives up when nothing was for `patience` milliseconds. The number
    // of lines that were not taken.
    std::size_t Finish(DWORD patience = 10000);

  private:
    class Queue;
    std::shared_ptr<Queue> queue_;  // the thread's as well
    bool hasThread_;
};

}  // namespace launcher::mediatool
