#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/e2e/support/launcher_run.h"

namespace launcher::test {

using Json = nlohmann::json;

// The random name of the temporary folder stands as it does in the dry run.
std::string WithoutUuid(const std::string& text);
std::vector<std::string> WithoutUuid(std::vector<std::string> texts);
std::string WithoutCr(std::string text);

// What the messages of a dry run come to on one of the streams.
std::string Stream(const Json& dry, const std::string& name);
std::size_t Dialogs(const Json& dry);

// Wine has the code of a missing file (2) also for a program in a folder that is not there, where
// Windows has that of a missing path (3): there the two are one.
std::string WithWinesCode(const std::string& text);

// The lines and boxes that a dry run foretells for the user, in their order: of the standard output
// alone, or of both streams when they are one.
std::vector<std::string> Told(const Json& dry, bool oneStream);
// The same of a real run.
std::vector<std::string> Said(const LauncherRun& real);

// All of the first, in their order, with others between them.
bool AreAmong(const std::vector<std::string>& some, const std::vector<std::string>& all);

// What a real run says of its search for the installer, and of that for the volumes.
struct FoundInstaller {
    std::string at;
    std::string by;
};
FoundInstaller FoundIn(const LauncherRun& real);

struct FoundVolumes {
    bool isSplit = false;
    bool areInOneFolder = false;
    bool areInOuterVolumes = false;
    std::vector<std::string> folders;  // of volume 1 and those outside its folder
};
FoundVolumes VolumesIn(const LauncherRun& real);

}  // namespace launcher::test
