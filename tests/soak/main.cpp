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
#include <deque>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "installer/installer_process.h"
#include "tests/soak/processes.h"
#include "tests/soak/worker.h"
#include "tests/support/temporary_folder.h"

namespace launcher::soak {
namespace {

namespace stdfs = std::filesystem;

constexpr int kWorkers = 4;
constexpr int kUsualRuns = 1000;
constexpr char kWorkerOption[] = "--worker";
constexpr char kResults[] = "results";  // file in a worker's folder

struct Order {
    int runs = kUsualRuns;
    unsigned seed = 0;
};

// Every fourth run, each in its own process.
int WorkAs(int index, const stdfs::path& folder, const Order& order) {
    Worker worker(order.seed, folder);
    for (int run = index + 1; run <= order.runs; run += kWorkers) {
        worker.Work(run);
        if (run % 25 == 0) std::printf("run %d of %d\n", run, order.runs);
    }
    std::ofstream file(folder / kResults);
    file << worker.Repeats() << '\n';
    for (const auto& [name, tally] : worker.Results())
        file << tally.runs << ' ' << tally.right << ' ' << tally.interrupted << ' '
             << tally.completeCopies << ' ' << tally.partialCopies << ' ' << name << '\n';
    return 0;
}

// This program again; it writes where this one writes.
void StartWorker(int index, const stdfs::path& folder, const Order& order,
                 ProcessInformation& process) {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring line = ToWide(test::QuoteArguments({ToNarrow(program), std::to_string(order.runs),
                                                     std::to_string(order.seed), kWorkerOption,
                                                     std::to_string(index), test::ToUtf8(folder)}));
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                        &process))
        throw std::runtime_error("cannot start a worker");
}

// False when a worker did not come to its end.
bool Collect(const stdfs::path& folder, Tallies& sum, int& repeats) {
    std::ifstream file(folder / kResults);
    int count = 0;
    if (!(file >> count)) return false;
    repeats += count;
    Tally tally;
    while (file >> tally.runs >> tally.right >> tally.interrupted >> tally.completeCopies >>
           tally.partialCopies) {
        std::string name;
        std::getline(file >> std::ws, name);
        Add(sum, name, tally);
    }
    return true;
}

// Whether all runs were right.
bool ShowTable(Tallies tallies, int runs) {
    Tallies all;
    for (const auto& [name, tally] : tallies)
        Add(all, "all", tally);
    tallies.merge(all);
    const Tally sum = tallies["all"];
    std::printf("\n%-24s %6s %6s %12s %10s %9s\n", "", "runs", "right", "interrupted", "complete",
                "partial");
    for (const auto& [name, tally] : tallies)
        std::printf("%-24s %6d %6d %12d %10d %9d\n", name.c_str(), tally.runs, tally.right,
                    tally.interrupted, tally.completeCopies, tally.partialCopies);
    return sum.runs == runs && sum.right == runs;
}

int Run(const Order& order) {
    const test::TemporaryFolder folder;
    const ULONGLONG start = GetTickCount64();
    std::printf("%d runs, seed %u\n", order.runs, order.seed);
    std::deque<ProcessInformation> workers(kWorkers);
    for (int i = 0; i < kWorkers; ++i)
        StartWorker(i, folder.Dir() / std::to_string(i), order, workers[static_cast<unsigned>(i)]);
    for (const ProcessInformation& worker : workers)
        WaitForSingleObject(worker.hProcess, INFINITE);
    Tallies tallies;
    int repeats = 0;
    bool isRight = true;
    for (int i = 0; i < kWorkers; ++i)
        isRight = Collect(folder.Dir() / std::to_string(i), tallies, repeats) && isRight;
    isRight = ShowTable(tallies, order.runs) && isRight;
    for (const std::string& program : RunningBelow(folder.Dir())) {
        std::printf("still running: %s\n", program.c_str());
        isRight = false;
    }
    std::printf("%s in %u s; repeated runs, as the machine stumbled: %d\n",
                isRight ? "All right" : "NOT all right",
                static_cast<unsigned>((GetTickCount64() - start) / 1000), repeats);
    return isRight ? 0 : 1;
}

int Main(const std::vector<std::wstring>& arguments) {
    const auto number = [&arguments](std::size_t i) {
        return std::wcstoul(arguments[i].c_str(), nullptr, 10);
    };
    Order order;
    if (arguments.size() > 1) order.runs = static_cast<int>(number(1));
    order.seed = arguments.size() > 2 ? number(2) : GetTickCount();
    if (arguments.size() == 6 && arguments[3] == ToWide(kWorkerOption))
        return WorkAs(static_cast<int>(number(4)), arguments[5], order);
    if (IsUserAnAdmin()) return Run(order);
    std::fputs("Needs a console that runs as administrator.\n", stderr);
    return 2;
}

}  // namespace
}  // namespace launcher::soak

int wmain(int argc, wchar_t** argv) {
    SetConsoleOutputCP(CP_UTF8);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    try {
        return launcher::soak::Main({argv, argv + argc});
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
