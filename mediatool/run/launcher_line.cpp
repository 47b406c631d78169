#include "mediatool/run/launcher_line.h"

#include <algorithm>
#include <string_view>

namespace launcher::mediatool {
namespace {

constexpr std::string_view kBeginnings[] = {" INFO: ", " WARN: ", "ERROR: ", "       "};

}  // namespace

bool LooksLikeLaunchers(const std::string& line) {
    return std::ranges::any_of(
        kBeginnings, [&line](std::string_view beginning) { return line.starts_with(beginning); });
}

std::string MessageOf(const std::string& line) {
    return LooksLikeLaunchers(line) ? line.substr(kBeginnings[0].size()) : line;
}

}  // namespace launcher::mediatool
