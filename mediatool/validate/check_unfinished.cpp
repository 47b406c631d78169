// A set that create did not write to its end.

#include "mediatool/base/files.h"
#include "mediatool/media/unfinished.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {

void CheckUnfinished(const Subject& subject, Findings& out) {
    const Path mark = Join(subject.Media(), kUnfinishedMark);
    if (Look(mark)) out.Add("set-unfinished", mark);
}

}  // namespace launcher::mediatool
