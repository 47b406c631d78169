#include "mediatool/validate/validate.h"

#include <windows.h>

#include <algorithm>

#include "fs/encoding.h"
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

// The root of the drive as the current folder, while the object lives. The launcher looks for the
// volumes beside one that is a drive's root in the root of the current drive: what is said of the
// media must not depend on where mediatool was started.
class CurrentRoot {
  public:
    explicit CurrentRoot(const Path& media) : before_(32768, L'\0') {
        before_.resize(GetCurrentDirectoryW(static_cast<DWORD>(before_.size()), before_.data()));
        SetCurrentDirectoryW(ToWide(media.Text() + kBackslash).c_str());
    }
    CurrentRoot(const CurrentRoot&) = delete;
    CurrentRoot& operator=(const CurrentRoot&) = delete;
    ~CurrentRoot() { SetCurrentDirectoryW(before_.c_str()); }

  private:
    std::wstring before_;
};

LauncherView ViewFromEverywhere(const Path& media) {
    if (!IsEmpty(Parent(media))) return ViewOf(media);
    const CurrentRoot root(media);
    LauncherView view = ViewOf(media);
    for (std::string& folder : view.folders)
        folder = FullPath(folder).Text();
    return view;
}

}  // namespace

bool Subject::Has(bool FlavourHere::*part, bool for64Bit) const {
    return std::ranges::any_of(flavours, [&](const FlavourHere& flavour) {
        return flavour.needs64BitWindows == for64Bit && flavour.*part;
    });
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
    subject.progress = request.progress;

    Validation result;
    const auto check = [&](auto... checks) { (checks(subject, result.findings), ...); };
    check(CheckUnfinished, CheckLauncher, CheckAutorun);
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
