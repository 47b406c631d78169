#pragma once

#include <atomic>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
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

// What the workers share.
class Soak {
  public:
    Soak(unsigned seed, int runs) : seed_(seed), runs_(runs) {}

    // The number of the next run, from 1 on; nothing when there are no more.
    std::optional<int> NextRun();
    // The same for the same run of the same seed.
    Random RandomOf(int run) const;
    void Count(const std::string& situation, const Tally& tally);
    void Report(int run, const std::string& situation, const std::vector<std::string>& problems,
                const std::string& details);
    void CountRepeat() { ++repeats_; }

    unsigned Seed() const { return seed_; }
    int Repeats() const { return repeats_; }
    const std::map<std::string, Tally>& Tallies() const { return tallies_; }
    // Held while a process is made: another one made meanwhile would inherit its streams.
    std::mutex& Starting() { return starting_; }

  private:
    const unsigned seed_;
    const int runs_;
    std::atomic<int> next_ = 0;
    std::atomic<int> repeats_ = 0;
    std::mutex starting_;
    std::mutex counting_;
    std::map<std::string, Tally> tallies_;
};

// One of those that start launchers at the same time, with a folder of its own.
class Worker {
  public:
    Worker(Soak& soak, const std::filesystem::path& folder);
    // Until there are no more runs.
    void Work();

  private:
    struct Outcome {
        std::vector<std::string> problems;
        std::string details;
        Tally tally;
    };

    Outcome Play(const Scene& scene, Random& random);
    Outcome PlayOnce(const Scene& scene, Random& random);
    Outcome JudgeHidden(const Scene& scene, const test::LauncherRun& run, bool isHidden) const;
    Outcome JudgeKilled() const;
    Outcome JudgeRun(const test::LauncherRun& run, const Expectation& expected,
                     const test::Media& media) const;

    Soak& soak_;
    std::filesystem::path folder_;
    std::filesystem::path work_;
    MediaSet media_;
};

}  // namespace launcher::soak
