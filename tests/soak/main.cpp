// Whole runs of the launcher, in mixed situations, four at a time: some are killed while they copy
// their media, from others the media disappears meanwhile. Each run that ends must be right: exit
// code, messages, what the installer saw, its temporary folder. None may leave a process.
//
//   soak [RUNS] [SEED]

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shlobj.h>

#include <cstdio>
#include <cwchar>
#include <exception>
#include <thread>
#include <vector>

#include "tests/soak/processes.h"
#include "tests/soak/worker.h"
#include "tests/support/temporary_folder.h"

namespace launcher::soak {
namespace {

constexpr int kWorkers = 4;
constexpr int kUsualRuns = 1000;

void WorkTogether(Soak& soak, const std::filesystem::path& folder) {
    std::vector<Worker> workers;
    workers.reserve(kWorkers);
    for (int i = 0; i < kWorkers; ++i)
        workers.emplace_back(soak, folder / std::to_string(i));
    std::vector<std::jthread> threads;
    for (Worker& worker : workers)
        threads.emplace_back([&worker] { worker.Work(); });
}

// Whether all runs were right.
bool ShowTable(const Soak& soak) {
    Tally sum;
    const auto show = [](const char* name, const Tally& tally) {
        std::printf("%-24s %6d %6d %12d %10d %9d\n", name, tally.runs, tally.right,
                    tally.interrupted, tally.completeCopies, tally.partialCopies);
    };
    std::printf("\n%-24s %6s %6s %12s %10s %9s\n", "", "runs", "right", "interrupted", "complete",
                "partial");
    for (const auto& [name, tally] : soak.Tallies()) {
        show(name.c_str(), tally);
        sum.runs += tally.runs;
        sum.right += tally.right;
        sum.interrupted += tally.interrupted;
        sum.completeCopies += tally.completeCopies;
        sum.partialCopies += tally.partialCopies;
    }
    show("all", sum);
    return sum.runs == sum.right;
}

int Run(int runs, unsigned seed) {
    const test::TemporaryFolder folder;
    const ULONGLONG start = GetTickCount64();
    Soak soak(seed, runs);
    std::printf("%d runs, seed %u\n", runs, seed);
    WorkTogether(soak, folder.Dir());
    bool isRight = ShowTable(soak);
    for (const std::string& program : RunningBelow(folder.Dir())) {
        std::printf("still running: %s\n", program.c_str());
        isRight = false;
    }
    std::printf("%s in %llu s; repeated because Wine could not create a process: %d\n",
                isRight ? "All right" : "NOT all right", (GetTickCount64() - start) / 1000,
                soak.Repeats());
    return isRight ? 0 : 1;
}

}  // namespace
}  // namespace launcher::soak

int wmain(int argc, wchar_t** argv) {
    using namespace launcher::soak;
    SetConsoleOutputCP(CP_UTF8);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    if (!IsUserAnAdmin()) {
        std::fputs("Needs a console that runs as administrator.\n", stderr);
        return 2;
    }
    try {
        const int runs =
            argc > 1 ? static_cast<int>(std::wcstol(argv[1], nullptr, 10)) : kUsualRuns;
        return Run(runs, argc > 2 ? std::wcstoul(argv[2], nullptr, 10) : GetTickCount());
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
