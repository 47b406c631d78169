// A set that create did not write to its end.

#include "mediatool/base/files.h"
#include "mediatool/media/unfinished.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {

void CheckUnfinished(const Subject& subject, Findings& out) {
    const Path mark = Join(subject.Media(), kUnfinishedMark);
    if (!Look(mark)) return;
    out.Error("set-unfinished", mark.Text(), "The set was not written to its end.",
              "Files may be missing, and others may be those of an older set.",
              "Run the same mediatool create again: it goes on where it stopped.");
}

}  // namespace launcher::mediatool
