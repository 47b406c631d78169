#pragma once

#include <functional>
#include <string>
#include <vector>

namespace launcher::bench {

// One of several ways to do the same work.
struct Contender {
    std::string name;
    std::function<void()> before;  // not timed
    std::function<void()> run;
    std::function<void()> after;  // not timed
};

struct Result {
    std::string name;
    double seconds;  // the median
};

// Runs each contender `rounds` times, after one round that does not count. They take turns, in a
// new order each round, so that a busy machine slows all of them down and none profits from its
// predecessor.
std::vector<Result> Compare(const std::vector<Contender>& contenders, int rounds);

// A line for each result, in milliseconds, as a multiple of the first one's time and, for work that
// moves `megabytes` (0: none), as throughput.
void PrintTable(const std::vector<Result>& results, double megabytes);

}  // namespace launcher::bench
