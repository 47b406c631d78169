// Makes file trees and copies them in several ways; see kUsage.

#include <windows.h>
// windows.h first: psapi.h needs it.
#include <psapi.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <exception>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "bench/copy_peers.h"
#include "bench/rounds.h"
#include "bench/tree.h"

namespace launcher::bench {
namespace {

constexpr char kUsage[] =
    "copy_bench make FOLDER FILES FOLDERS SMALLEST LARGEST\n"
    "    a tree of FILES files of SMALLEST to LARGEST bytes in FOLDERS folders\n"
    "copy_bench copy PEER SOURCE DESTINATION\n"
    "    one copy\n"
    "copy_bench memory SOURCE DESTINATION\n"
    "    the most memory that the process held in one copy by the launcher\n"
    "copy_bench compare SOURCE DESTINATION ROUNDS\n"
    "    the time of each peer: launcher runtime readfile copyfile filesystem xcopy\n";

using Arguments = std::vector<std::wstring>;

std::uint32_t Number(const std::wstring& text) {
    return static_cast<std::uint32_t>(std::stoul(text));
}

const CopyPeer& FindPeer(const std::wstring& key) {
    const auto& peers = CopyPeers();
    const auto found = std::find_if(peers.begin(), peers.end(),
                                    [&key](const CopyPeer& peer) { return peer.key == key; });
    if (found == peers.end()) throw std::invalid_argument(kUsage);
    return *found;
}

void RequireSameSize(const std::wstring& source, const std::wstring& destination) {
    if (MeasureTree(source) != MeasureTree(destination))
        throw std::runtime_error("a copy is incomplete");
}

void Make(const Arguments& arguments) {
    MakeTree(arguments[0], {Number(arguments[1]), Number(arguments[2]), Number(arguments[3]),
                            Number(arguments[4])});
}

void CopyOnce(const Arguments& arguments) {
    FindPeer(arguments[0]).copy(arguments[1], arguments[2]);
}

void ShowMemory(const Arguments& arguments) {
    CopyPeers().front().copy(arguments[0], arguments[1]);
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    const TreeSize size = MeasureTree(arguments[1]);
    std::printf("  %7.1f MB copied: at most %.1f MB held\n", static_cast<double>(size.bytes) / 1e6,
                static_cast<double>(counters.PeakWorkingSetSize) / 1e6);
}

void CompareAll(const Arguments& arguments) {
    const std::wstring& source = arguments[0];
    const std::wstring& destination = arguments[1];
    std::vector<Contender> contenders;
    for (const CopyPeer& peer : CopyPeers())
        contenders.push_back({peer.name, [&] { std::filesystem::remove_all(destination); },
                              [&] { peer.copy(source, destination); },
                              [&] { RequireSameSize(source, destination); }});
    const auto results = Compare(contenders, static_cast<int>(Number(arguments[2])));
    PrintTable(results, static_cast<double>(MeasureTree(source).bytes) / 1e6);
    std::filesystem::remove_all(destination);
}

struct Command {
    std::wstring_view name;
    std::size_t argumentCount;
    void (*run)(const Arguments& arguments);
};

constexpr Command kCommands[] = {{L"make", 5, Make},
                                 {L"copy", 3, CopyOnce},
                                 {L"memory", 2, ShowMemory},
                                 {L"compare", 3, CompareAll}};

void Run(const std::wstring& name, const Arguments& arguments) {
    for (const Command& command : kCommands) {
        if (command.name == name && command.argumentCount == arguments.size())
            return command.run(arguments);
    }
    throw std::invalid_argument(kUsage);
}

}  // namespace
}  // namespace launcher::bench

int wmain(int argc, wchar_t** argv) {
    try {
        launcher::bench::Run(argc > 1 ? argv[1] : L"", {argv + std::min(argc, 2), argv + argc});
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
