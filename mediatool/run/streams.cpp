#include "mediatool/run/streams.h"

#include <algorithm>
#include <utility>

#include "mediatool/run/launcher_line.h"

namespace launcher::mediatool {

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
