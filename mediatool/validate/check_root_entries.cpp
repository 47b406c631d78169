// The entries of the root that are copied with the installer.

#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

// What makes a copy fail is an error where the launcher is going to make one, a warning where it
// would only on another day, and a note where it never does.
void CheckFile(const Subject& subject, const std::string& name, Findings& out) {
    const Path file = Join(subject.Media(), name);
    const auto entry = Look(file);
    const bool isMissing = !entry;
    const bool isFolder = entry && entry->isFolder;
    const bool isUnreadable = !ReadStart(file, 1);
    const bool copies = subject.view.Copies();
    out.AddFirst({{isMissing && copies, "root-entry-missing/copied"},
                  {isMissing && subject.IsNeverCopied(), "root-entry-missing/never-copied"},
                  {isMissing, "root-entry-missing"},
                  {isFolder, "root-entry-is-folder"},
                  {isUnreadable && copies, "root-entry-unreadable/copied"},
                  {isUnreadable && subject.IsNeverCopied(), "root-entry-unreadable/never-copied"},
                  {isUnreadable, "root-entry-unreadable"}},
                 file, {name});
}

}  // namespace

void CheckRootEntries(const Subject& subject, Findings& out) {
    for (const std::string name : kMediaEntries)
        if (name != kInstFolder && name != kLauncherName) CheckFile(subject, name, out);
    const auto inst = Look(subject.Inst());
    out.AddFirst({{!inst, "inst-missing"}, {inst && !inst->isFolder, "inst-is-file"}},
                 subject.Inst());
}

}  // namespace launcher::mediatool
