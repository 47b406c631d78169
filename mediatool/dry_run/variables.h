#pragma once

#include <string>
#include <vector>

namespace launcher::mediatool {

// A variable that the launcher reads, and what it does while it is set.
struct ReadVariable {
    const char* name;
    const char* effect;
};
extern const std::vector<ReadVariable> kReadVariables;

struct SetVariable {
    std::string name;
    std::string value;
    std::string effect;
};

// Those of them that are set in this process.
std::vector<SetVariable> SetVariables();

}  // namespace launcher::mediatool
