// The time that launchers take to start the same child, wait for it and end.
//
//   start_bench ROUNDS NAME COMMAND [NAME COMMAND...]
//
// The table's ratios are to the first command.

#include <cstddef>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/process.h"
#include "bench/rounds.h"
#include "bench/start_exit_code.h"
#include "fs/encoding.h"

namespace launcher::bench {
namespace {

// A launcher, too, can meet the error that RunProcess tries again for; the median does not show it.
void StartOnce(const std::wstring& command) {
    for (int attempts = 0; attempts < 3; ++attempts) {
        if (RunProcess(command) == kChildExitCode) return;
    }
    throw std::runtime_error("a launcher did not hand back the exit code of its child");
}

void Run(int rounds, const std::vector<std::wstring>& namesAndCommands) {
    std::vector<Contender> contenders;
    for (std::size_t i = 0; i + 1 < namesAndCommands.size(); i += 2) {
        const std::wstring& command = namesAndCommands[i + 1];
        contenders.push_back({ToNarrow(namesAndCommands[i].c_str()), [] {},
                              [&command] { StartOnce(command); }, [] {}});
    }
    PrintTable(Compare(contenders, rounds), 0);
}

}  // namespace
}  // namespace launcher::bench

int wmain(int argc, wchar_t** argv) {
    try {
        if (argc < 4) throw std::invalid_argument("start_bench ROUNDS NAME COMMAND...");
        launcher::bench::Run(std::stoi(argv[1]), {argv + 2, argv + argc});
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
