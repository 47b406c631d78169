#include "tests/soak/worker.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>
#include <sstream>

#include "tests/soak/copied_folder.h"
#include "tests/soak/interruption.h"
#include "tests/soak/processes.h"
#include "tests/support/repeats.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::soak {

namespace stdfs = std::filesystem;
using test::LauncherProcess;
using test::LauncherRun;

namespace {

// A box whose window did not answer the one who reads it: this machine is too busy. The launcher
// shows no empty ones, or they would be seen in every repeat.
bool HasUnreadBox(const std::vector<std::string>& boxes) {
    return std::ranges::find(boxes, "") != boxes.end();
}

// Thrown by a run that says nothing about the launcher, and is to be repeated.
struct Stumble {
    const char* why;
};

// The media as a scene wants it, and again as it was.
class Staging {
  public:
    explicit Staging(const Scene& scene) : scene_(scene) {
        if (scene_.before) scene_.before();
    }
    Staging(const Staging&) = delete;
    Staging& operator=(const Staging&) = delete;
    ~Staging() {
        if (scene_.after) scene_.after();
    }

  private:
    const Scene& scene_;
};

const Situation& Choose(Random& random) {
    std::vector<int> weights;
    for (const Situation& situation : Situations())
        weights.push_back(situation.weight);
    return Situations()[std::discrete_distribution<std::size_t>(weights.begin(),
                                                                weights.end())(random)];
}

std::vector<stdfs::path> FoldersIn(const stdfs::path& folder) {
    std::vector<stdfs::path> folders;
    for (const auto& entry : stdfs::directory_iterator(folder))
        folders.push_back(entry.path());
    return folders;
}

// What was terminated may still be on its way out.
std::vector<std::string> LeftRunning(const stdfs::path& folder) {
    for (int i = 0; i < 500; ++i) {
        if (RunningBelow(folder).empty()) return {};
        Sleep(10);
    }
    return RunningBelow(folder);
}

}  // namespace

void Add(Tallies& sum, const std::string& situation, const Tally& tally) {
    Tally& all = sum[situation];
    all.runs += tally.runs;
    all.right += tally.right;
    all.interrupted += tally.interrupted;
    all.completeCopies += tally.completeCopies;
    all.partialCopies += tally.partialCopies;
}

Worker::Worker(unsigned seed, const stdfs::path& folder)
    : seed_(seed), folder_(folder), work_(folder / "work"), media_(folder) {
    stdfs::create_directories(work_);
}

void Worker::Work(int run) {
    std::seed_seq seed{seed_, static_cast<unsigned>(run)};
    Random random(seed);
    const Situation& situation = Choose(random);
    Outcome outcome;
    try {
        outcome = Play(situation.make(media_, random), random);
    } catch (const std::exception& failure) {
        outcome.problems.push_back(failure.what());
    }
    for (const std::string& program : LeftRunning(folder_))
        outcome.problems.push_back("still running: " + program);
    outcome.tally.runs = 1;
    outcome.tally.right = outcome.problems.empty();
    Add(results_, situation.name, outcome.tally);
    if (!outcome.problems.empty()) Report(run, situation.name, outcome);
}

void Worker::Report(int run, const std::string& situation, const Outcome& outcome) const {
    std::printf("WRONG: run %d of seed %u, %s\n", run, seed_, situation.c_str());
    for (const std::string& problem : outcome.problems)
        std::printf("  %s\n", problem.c_str());
    std::printf("  (%s)\n", outcome.details.c_str());
}

Worker::Outcome Worker::Play(const Scene& scene, Random& random) {
    const Staging staging(scene);
    for (test::Repeats repeats;;) {
        try {
            return PlayOnce(scene, random);
        } catch (const Stumble& stumble) {
            if (!repeats.AreWorthIt(true, stumble.why)) return {{"repeated too often"}, {}, {}};
            ++repeats_;
        }
    }
}

Worker::Outcome Worker::PlayOnce(const Scene& scene, Random& random) {
    test::LauncherStart start = scene.start;
    start.workFolder = work_;
    auto process = std::make_unique<LauncherProcess>(start);
    const bool isInCopy =
        scene.interruption != Interruption::None && WaitIntoCopy(*process, work_ / "temp", random);
    if (isInCopy && scene.interruption == Interruption::Killed) {
        process.reset();
        return JudgeKilled(*scene.media);
    }
    LauncherRun run;
    bool isHidden = false;
    if (isInCopy) {
        const HiddenFolder hidden(scene.media->Root(), *process);
        isHidden = hidden.IsHidden();
        run = process->Finish();
    } else {
        run = process->Finish();
    }
    process.reset();
    if (test::StumbledOverWine(run.BoxTexts()))
        throw Stumble{"a process could not be created, error 1359"};
    if (HasUnreadBox(run.BoxTexts())) throw Stumble{"a box was not read"};
    return JudgeHidden(scene, run, isHidden);
}

// With its script it has to be whole; without, it is what a killed run leaves.
Worker::Outcome Worker::JudgeKilled(const test::Media& media) const {
    Outcome outcome;
    if (const auto left = LeftRunning(folder_); !left.empty()) return {left, "after a kill", {}};
    const std::vector<stdfs::path> copies = FoldersIn(work_ / "temp");
    if (copies.size() != 1) outcome.problems.push_back("no temporary folder of its own");
    for (const stdfs::path& copy : copies) {
        const bool isWhole = stdfs::exists(copy / "remove.bat");
        ++(isWhole ? outcome.tally.completeCopies : outcome.tally.partialCopies);
        outcome.tally.interrupted += !isWhole;
        if (!isWhole) continue;
        for (const std::string& difference : CopyDifferences(media, copy, true))
            outcome.problems.push_back(difference);
    }
    return outcome;
}

// Either it had all it needs from the media, or it says what it could not read.
Worker::Outcome Worker::JudgeHidden(const Scene& scene, const LauncherRun& run,
                                    bool isHidden) const {
    const std::vector<std::string> boxes = run.BoxTexts();
    if (!isHidden || boxes.empty()) return JudgeRun(run, scene.expected, *scene.media);
    Expectation failed = scene.expected;
    failed.exitCode = 1;
    failed.startsInstaller = false;
    failed.copying = Copying::Failed;
    failed.errors.clear();
    const std::string place = scene.media->Text() + "\\";
    std::string text = "Cannot stat " + place;
    for (const char* const other : {"Cannot read ", "GetType - "})
        if (boxes.back().starts_with(other)) text = other + place;
    failed.boxes = {{text, false}};
    Outcome outcome = JudgeRun(run, failed, *scene.media);
    outcome.tally.interrupted = 1;
    return outcome;
}

Worker::Outcome Worker::JudgeRun(const LauncherRun& run, const Expectation& expected,
                                 const test::Media& media) const {
    Outcome outcome;
    outcome.problems = Problems(run, expected, media);
    outcome.tally.completeCopies = expected.copying == Copying::Complete;
    outcome.tally.partialCopies = expected.copying == Copying::Failed;
    std::ostringstream details;
    test::PrintTo(run, &details);
    outcome.details = details.str();
    return outcome;
}

}  // namespace launcher::soak
