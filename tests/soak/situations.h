#pragma once

#include <functional>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "tests/e2e/support/launcher_run.h"
#include "tests/soak/expectation.h"
#include "tests/soak/media_set.h"

namespace launcher::soak {

using Random = std::mt19937;

// What happens to a run from outside.
enum class Interruption { None, Killed, MediaDisappears };

// One run: how it starts and what must come of it.
struct Scene {
    const test::Media* media = nullptr;  // the one that the installer is of
    test::LauncherStart start;           // without a work folder
    Expectation expected;
    Interruption interruption = Interruption::None;
    std::function<void()> before;  // what is done to the media for this run alone
    std::function<void()> after;   // and undone again
};

struct Situation {
    const char* name;
    int weight;  // how often, against the others
    Scene (*make)(const MediaSet&, Random&);
};

std::span<const Situation> Situations();

}  // namespace launcher::soak
