#include "mediatool/media/media_set.h"

#include <optional>
#include <tuple>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

Path CheckedFolder(const std::string& text) {
    Path folder = FullPath(text);
    if (IsEmpty(folder)) throw BadInput("\"" + text + "\" is no folder.");
    if (!Look(folder)) throw BadInput(WhyNot(folder, "opened"));
    CheckIsNoFile(folder);
    if (!List(folder)) throw BadInput(WhyNot(folder, "listed"));
    return folder;
}

bool HasLauncher(const Path& folder) {
    return Look(Join(folder, kLauncherName)).has_value();
}

// The given folder that looks most like volume 1; one that has to have a launcher, or may do
// without.
std::optional<Path> FirstVolume(const std::vector<Path>& given, bool needsLauncher) {
    std::optional<Path> best;
    std::tuple bestSigns(false, false, false);
    for (const Path& folder : given) {
        if (needsLauncher && !HasLauncher(folder)) continue;
        const std::tuple signs(HasLauncher(folder), Look(CountFileIn(folder)).has_value(),
                               Look(MarkerIn(folder, 1)) || Look(Join(folder, kUnfinishedMark)));
        if (signs <= bestSigns) continue;
        bestSigns = signs;
        best = folder;
    }
    return best;
}

std::string WithoutLauncher(const std::vector<Path>& given, bool needsLauncher) {
    if (given.size() > 1) return "None of the given folders has a launcher (setup.exe) in it.";
    const Path inside = Join(given.front(), "1");
    const std::string text = Quoted(given.front()) + " has no launcher (setup.exe) in it";
    if (HasLauncher(inside)) return text + "; " + Quoted(inside) + " has one: give that folder.";
    if (!needsLauncher && Look(CountFileIn(inside)))
        return text + "; " + Quoted(inside) + " is volume 1: give that folder.";
    return text + ".";
}

MediaSet Open(const std::vector<std::string>& folders, bool needsLauncher) {
    MediaSet set;
    for (const std::string& text : folders) {
        const Path folder = CheckedFolder(text);
        for (const Path& other : set.given)
            if (SameName(other.Text(), folder.Text()))
                throw BadInput(Quoted(folder) + " is given twice.");
        set.given.push_back(folder);
    }
    const std::optional<Path> first = FirstVolume(set.given, needsLauncher);
    if (!first) throw BadInput(WithoutLauncher(set.given, needsLauncher));
    set.first = *first;
    return set;
}

}  // namespace

void CheckIsNoFile(const Path& folder) {
    if (IsFile(folder)) throw BadInput(Quoted(folder) + " is a file, not the folder of a medium.");
}

MediaSet OpenMediaSet(const std::vector<std::string>& folders) {
    return Open(folders, true);
}

MediaSet OpenUnfinishedSet(const std::vector<std::string>& folders) {
    return Open(folders, false);
}

}  // namespace launcher::mediatool
