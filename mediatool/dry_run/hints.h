#pragma once

#include <string>
#include <vector>

namespace launcher {
class LaunchOptions;
}

namespace launcher::mediatool {

struct DryRun;

// What may be a slip although the run does as it is told, each as a sentence. `options` are those
// of the run, for its arguments; null after a bad command line.
std::vector<std::string> HintsOf(const DryRun& run, const LaunchOptions* options);

}  // namespace launcher::mediatool
