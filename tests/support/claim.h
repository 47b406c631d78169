#pragma once

#include <string>

namespace launcher::test {

// What only one test program at a time may have of a thing that all share. A killed one gives it
// back. Ended by the thread that made it.
class Claim {
  public:
    // Waits until no other has `thing`; throws std::runtime_error when that takes a minute.
    explicit Claim(const std::wstring& thing);
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;
    ~Claim();

    // Whether a running program has, or waits for, `thing`. Without one, what is there of it was
    // left by a program that was killed.
    static bool Exists(const std::wstring& thing);

  private:
    void* mutex_;
};

}  // namespace launcher::test
