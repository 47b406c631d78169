#pragma once

#include <utility>
#include <vector>

namespace launcher::test {

// While it lives, this program writes, starts, shows and deletes nothing: each of its imports that
// could (the list is in the source) ends the process instead, with the exit code kEffect and the
// function's name on the standard error stream. Functions that this code looks up by name are
// guarded as well. What opens files passes as long as it opens them for reading, and what loads
// libraries as long as nothing in them runs.
//
// Only one lives at a time, and a test says nothing before it is lifted.
class EffectGuard {
  public:
    EffectGuard();
    EffectGuard(const EffectGuard&) = delete;
    EffectGuard& operator=(const EffectGuard&) = delete;
    ~EffectGuard();

    void Lift();

    static constexpr int kEffect = 99;

  private:
    std::vector<std::pair<void**, void*>> originals_;
};

}  // namespace launcher::test
