#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace launcher::mediatool {

// Names as Windows compares them: without regard to case.
struct LessName {
    bool operator()(const std::string& left, const std::string& right) const;
};
using Environment = std::map<std::string, std::string, LessName>;

// All variables of this process.
Environment CurrentEnvironment();

// Makes them those of this process again.
void RestoreEnvironment(const Environment& environment);

struct Change {
    std::string name;
    std::optional<std::string> before;  // nothing when unset
    std::optional<std::string> after;
};
std::vector<Change> Changes(const Environment& before, const Environment& after);

}  // namespace launcher::mediatool
