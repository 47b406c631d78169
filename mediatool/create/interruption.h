#pragma once

namespace launcher::mediatool {

// While it lives, Ctrl+C, Ctrl+Break, a closed terminal and the end of the session do not end the
// process at once: what is going on asks whether it is to stop. One at a time.
class Interruption {
  public:
    Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption();

    // Throws Refused once somebody wants the end.
    void ThrowIfAsked() const;
};

}  // namespace launcher::mediatool
