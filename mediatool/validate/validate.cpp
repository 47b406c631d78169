#include "mediatool/validate/validate.h"

#include <algorithm>

#include "launcher/base/launch_options.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

std::vector<FlavourHere> FlavoursOf(const Path& media) {
    std::vector<FlavourHere> flavours;
    for (const Flavour& flavour : FlavoursIn(media, kInstallerName))
        flavours.push_back({flavour, Look(Path(flavour.installer)).has_value(),
                            Look(Path(flavour.marker)).has_value()});
    return flavours;
}

std::string CheckedTemp(const std::string& text) {
    const Path path(text);
    if (!IsFull(path))
        throw BadInput("--temp takes the full path of a folder, such as C:\\Temp, not \"" + text +
                       "\".");
    return path.Text();
}

}  // namespace

bool Subject::Has(bool FlavourHere::*part, bool for64Bit) const {
    return std::ranges::any_of(flavours, [&](const FlavourHere& flavour) {
        return flavour.needs64BitWindows == for64Bit && flavour.*part;
    });
}

bool Subject::HasFlavour(std::string Flavour::*part, const std::string& name) const {
    return std::ranges::any_of(
        flavours, [&](const FlavourHere& flavour) { return SameName(flavour.*part, name); });
}

bool Validation::IsClean() const {
    return findings.Count(Level::Error) == 0 && (!isStrict || findings.Count(Level::Warning) == 0);
}

Validation Validate(const ValidateRequest& request) {
    Subject subject;
    if (request.temp) subject.temp = CheckedTemp(*request.temp);
    subject.set = OpenUnfinishedSet(request.folders);
    subject.flavours = FlavoursOf(subject.Media());
    subject.view = ViewFromEverywhere(subject.Media());
    subject.ids = MarkerIds(subject.view.asked);
    subject.progress = request.progress;

    Validation result;
    const auto check = [&](auto... checks) { (checks(subject, result.findings), ...); };
    check(CheckLauncher, CheckAutorun);
    if (!CheckCutNames(subject, result.findings))
        check(CheckRootEntries, CheckInstallerPlaces, CheckInstallers, CheckFlavourMarkers);
    check(CheckCountFile, CheckVolumeNumbers, CheckVolumes, CheckTree);
    if (request.content)
        result.verified = CheckChecksums(subject, request.verifying, result.findings);
    for (const Path& folder : subject.set.given)
        result.media.push_back(folder.Text());
    result.view = subject.view;
    result.isStrict = request.isStrict;
    return result;
}

}  // namespace launcher::mediatool
