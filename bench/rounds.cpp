#include "bench/rounds.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <numeric>
#include <random>

namespace launcher::bench {
namespace {

double SecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

}  // namespace

std::vector<Result> Compare(const std::vector<Contender>& contenders, int rounds) {
    std::vector<std::vector<double>> times(contenders.size());
    std::vector<std::size_t> order(contenders.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::mt19937 random(1);
    for (int round = 0; round <= rounds; ++round) {
        std::shuffle(order.begin(), order.end(), random);
        for (const std::size_t i : order) {
            contenders[i].before();
            const double seconds = SecondsOf(contenders[i].run);
            contenders[i].after();
            if (round > 0) times[i].push_back(seconds);
        }
    }
    std::vector<Result> results;
    for (std::size_t i = 0; i < contenders.size(); ++i)
        results.push_back({contenders[i].name, Median(times[i])});
    return results;
}

void PrintTable(const std::vector<Result>& results, double megabytes) {
    for (const Result& result : results) {
        std::printf("  %-28s %9.1f ms %7.2f", result.name.c_str(), result.seconds * 1000,
                    result.seconds / results.front().seconds);
        if (megabytes > 0) std::printf(" %8.0f MB/s", megabytes / result.seconds);
        std::printf("\n");
    }
}

}  // namespace launcher::bench
