#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "tests/e2e/support/launcher_run.h"
#include "tests/mediatool/agreement/case.h"

namespace launcher::test {

// Whether `mediatool run` can be given the case as it is: it starts "setup.exe" on this machine,
// and cancels every dialog.
bool CanBeWatched(const Case& made);

// Runs the case once more under `mediatool run`, and expects of it what the real run came to: the
// exit code, the boxes and the lines of both streams.
void CompareWatched(const Case& made, const std::map<std::string, std::string>& variables,
                    const std::filesystem::path& folder, const LauncherRun& real);

}  // namespace launcher::test
