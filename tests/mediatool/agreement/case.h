#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace launcher::test {

// A media, a command line and an environment, made from a number: the same number makes the same.
struct Case {
    std::filesystem::path launcher;
    std::vector<std::string> arguments;
    std::map<std::string, std::string> variables;
    std::vector<std::string> features;  // what it has, for the messages of a failure
};

// Makes the case's files below `folder`, which is empty.
Case MakeCase(unsigned seed, const std::filesystem::path& folder);

}  // namespace launcher::test
