#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/soak/situations.h"

namespace launcher::soak {

// What came of the runs of one situation.
struct Tally {
    int runs = 0;
    int right = 0;
    int interrupted = 0;     // in the middle of the copy
    int completeCopies = 0;  // temporary folders
    int partialCopies = 0;   // of a killed run, or of one that said so
};

using Tallies = std::map<std::string, Tally>;  // by situation

void Add(Tallies& sum, const std::string& situation, const Tally& tally);

// One of those that start launchers at the same time: a process of its own, as what one of them
// has open would be inherited by what another one starts.
class Worker {
  public:
    // Works in `folder`, which it keeps to itself.
    Worker(unsigned seed, const std::filesystem::path& folder);

    // One run; its number and the seed say all about it.
    void Work(int run);
    const Tallies& Results() const { return results_; }
    int Repeats() const { return repeats_; }

  private:
    struct Outcome {
        std::vector<std::string> problems;
        std::string details;
        Tally tally;
    };

    Outcome Play(const Scene& scene, Random& random);
    Outcome PlayOnce(const Scene& scene, Random& random);
    Outcome JudgeHidden(const Scene& scene, const test::LauncherRun& run, bool isHidden) const;
    Outcome JudgeKilled(const test::Media& media) const;
    void Report(int run, const std::string& situation, const Outcome& outcome) const;
    Outcome JudgeRun(const test::LauncherRun& run, const Expectation& expected,
                     const test::Media& media) const;

    unsigned seed_;
    std::filesystem::path folder_;
    std::filesystem::path work_;
    MediaSet media_;
    Tallies results_;
    int repeats_ = 0;
};

}  // namespace launcher::soak
