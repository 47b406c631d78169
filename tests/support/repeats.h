#pragma once

namespace launcher::test {

// Wine now and then cannot create a process, error 1359, whoever asks, where tools/wine-run.sh
// cannot prevent it; and Ctrl+C may break a process for good. What met either is worth another try:
// this is the only place that says how often, and whose lines are counted afterwards.
class Repeats {
  public:
    // Whether to try again what `stumbled`. Says so, and why, on the output of the test.
    bool AreWorthIt(bool stumbled, const char* why = "a process could not be created, error 1359");

  private:
    int count_ = 0;
};

}  // namespace launcher::test
