#include "tools/mediatool/validate.h"

#include "tools/mediatool/checks.h"

namespace launcher::mediatool {
namespace {

// So that no media that the launcher cannot put together ever passes as clean.
void CheckVerdict(const Subject& subject, Findings& out) {
    if (subject.view.layout != Layout::Incomplete || out.Count(Level::Error) > 0 ||
        out.Has("volumes-elsewhere") || out.Has("volumes-on-other-drives"))
        return;
    out.Error("volumes-not-found", subject.Media().Text(),
              "The launcher does not find all volumes of this media.",
              "It copies the installer to the temporary folder and leaves the rest to it.",
              "Compare the folders with one of the layouts.");
}

}  // namespace

Validation Validate(const ValidateRequest& request) {
    Subject subject;
    subject.set = OpenMediaSet(request.folders);
    subject.view = ViewOf(subject.Media());
    subject.temp = request.temp;
    subject.progress = request.progress;

    Validation result;
    for (const auto check : {CheckLauncher, CheckRootEntries, CheckInstallers, CheckFlavourMarkers,
                             CheckCountFile, CheckVolumes, CheckTree, CheckVerdict})
        check(subject, result.findings);
    for (const Path& folder : subject.set.given)
        result.media.push_back(folder.Text());
    result.view = subject.view;
    return result;
}

}  // namespace launcher::mediatool
