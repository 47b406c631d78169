#include "mediatool/run/streams.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "launcher/base/message_output.h"

namespace launcher::mediatool {

bool LooksLikeLaunchers(const std::string& line) {
    return std::ranges::any_of(
        kLinePrefixes, [&line](const char* beginning) { return line.starts_with(beginning); });
}

std::string MessageOf(const std::string& line) {
    return LooksLikeLaunchers(line) ? line.substr(std::strlen(kLinePrefixes[0])) : line;
}

std::vector<SeenLine> WatchedStream::TakeLines(bool installerIsThere) {
    if (installerIsThere) isInstallers_ = true;
    std::vector<SeenLine> lines;
    for (std::string& text : file_.TakeLines())
        lines.push_back(Attributed(std::move(text)));
    return lines;
}

std::vector<SeenLine> WatchedStream::TakeRest() {
    std::string rest = file_.TakeRest();
    if (rest.empty()) return {};
    return {Attributed(std::move(rest))};
}

SeenLine WatchedStream::Attributed(std::string text) {
    if (!LooksLikeLaunchers(text)) isInstallers_ = true;
    return {std::move(text), isInstallers_ ? installer_ : launcher_, Now()};
}

}  // namespace launcher::mediatool
