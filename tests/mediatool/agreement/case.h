#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace launcher::test {

// A media, a command line, an environment and a machine, made from a number: the same number makes
// the same.
struct Case {
    std::filesystem::path launcher;  // may have another name; "setup.exe" is beside it
    std::vector<std::string> arguments;
    std::map<std::string, std::string> variables;
    std::optional<std::filesystem::path> picked;  // in the folder dialog; cancelled without it
    std::vector<std::string> machine;             // the dry run's options for this machine
    bool pretendsNoAdministrator = false;         // which a variable does for the launcher itself
    std::vector<std::string> features;            // what it has, for the messages of a failure
    std::vector<std::shared_ptr<void>> places;    // drives, links, settings: there while it lives
};

// Makes the case's files below `folder`, which is empty, and below `work`, the folder that both
// programs run in. Ten numbers in a row have one of each purpose: see the floors of the test.
// Nothing for a case that needs a network path, where there is none: kNoNetwork says why.
std::optional<Case> MakeCase(unsigned seed, const std::filesystem::path& folder,
                             const std::filesystem::path& work);

inline constexpr char kNoNetwork[] =
    "of some cases: this machine does not share its disks with this user";

}  // namespace launcher::test
