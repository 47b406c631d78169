// What may be asked of create.

#include <algorithm>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/names.h"
#include "mediatool/create/plan.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/media/media_set.h"
#include "mediatool/validate/checks.h"
#include "mediatool/validate/findings.h"

namespace launcher::mediatool {
namespace {

// What validate says of an identifier, create refuses.
void CheckId(const std::string& id, const std::string& option) {
    if (id.empty()) throw BadInput(option + " is empty.");
    if (HasControlCharacter(id) || Trimmed(id).find('\t') != std::string::npos)
        throw BadInput(option + " has a control character in it.");
    if (id != Trimmed(id)) throw BadInput(option + " begins or ends with a blank.");
    Findings findings;
    CheckIdentifier(id, Path(), findings);
    const std::vector<Finding> found = findings.Sorted();
    if (!found.empty()) throw BadInput(option + " cannot be used: " + found.front().what);
}

// A folder below another: names between backslashes. Empty for the other folder itself.
bool IsFolderBelow(const std::string& text) {
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\\', begin), text.size());
        if (!IsUsableName(text.substr(begin, end - begin))) return false;
        begin = end + 1;
    }
    return true;
}

}  // namespace

void CheckRequest(const CreateRequest& request) {
    CheckId(request.id, "--id");
    if (request.volumes < 1 || request.volumes > kMostVolumes)
        throw BadInput("--volumes takes a number from 1 to 99.");
    if (request.layout == Layout::Outer) {
        if (!request.outerId.empty()) CheckId(request.outerId, "--outer-id");
        if (request.outerId == request.id) throw BadInput("--outer-id has to differ from --id.");
        if (request.firstOuter < 1 || request.firstOuter > kMostVolumes)
            throw BadInput("--first-outer takes a number from 1 to 99.");
        if (!IsFolderBelow(Path(request.inner).Text()))
            throw BadInput("--inner takes the name of a folder in each outer volume, not \"" +
                           request.inner + "\".");
    }
    const auto given = static_cast<int>(request.from.size());
    if (request.layout == Layout::OneFolder ? given > request.volumes
                                            : given != 0 && given != request.volumes)
        throw BadInput("--from takes one folder for each of the " +
                       std::to_string(request.volumes) + " volumes.");
}

Path CheckedOut(const std::string& text) {
    Path out = FullPath(text);
    const std::string quoted = "\"" + (IsEmpty(out) ? text : out.Text()) + "\"";
    if (IsEmpty(out) || out.Text().starts_with("\\\\.\\"))
        throw BadInput(quoted + " is no folder.");
    Path there = out;
    for (; !IsEmpty(there) && !Look(there); there = Parent(there))
        if (!IsEmpty(Parent(there)) && !IsUsableName(FileName(there)))
            throw BadInput(quoted + " cannot be the name of a folder.");
    if (IsEmpty(there)) throw BadInput(quoted + " is on a drive that is not there.");
    if (IsFile(there))
        throw BadInput(IsEmpty(RelativePath(out, there))
                           ? quoted + " is a file, not a folder."
                           : quoted + " is below \"" + there.Text() + "\", which is a file.");
    return out;
}

}  // namespace launcher::mediatool
