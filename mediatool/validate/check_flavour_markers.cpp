// The markers that say which Windows a medium is for.

#include <algorithm>
#include <string>
#include <vector>

#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

void CheckName(const Subject& subject, const Entry& entry, Findings& out) {
    const std::string name = InLowerCase(entry.name);
    const std::size_t extension = name.find(kFlavourMarkerExtension);
    if (extension == std::string::npos) return;
    const Path file = Join(subject.Common(), entry.name);
    const std::string right = entry.name.substr(0, extension) + kFlavourMarkerExtension;
    const bool isKnown = subject.HasFlavour(&Flavour::marker, file.Text());
    // Markers of other systems may be beside those of Windows.
    const bool isForWindows = name.starts_with("win") || name.starts_with("intel");
    out.AddFirst({{isKnown && entry.isFolder, "flavour-marker-is-folder"},
                  {!isKnown && right.size() < name.size(), "flavour-marker-double-extension"},
                  {!isKnown && isForWindows, "flavour-marker-unknown"}},
                 file, {right});
}

void CheckForMarkersIn(const Subject& subject, const Path& folder, Findings& out) {
    for (const FlavourHere& flavour : subject.flavours)
        if (const Path file = Join(folder, FileName(flavour.Marker())); Look(file))
            out.Add("flavour-marker-misplaced", file);
}

// Without the installer at hand the launcher goes by the markers: on 64-bit Windows by the first.
void ReportMissing(const Subject& subject, const FlavourHere& flavour, Findings& out) {
    const auto other = std::ranges::find(subject.flavours, true, &FlavourHere::hasMarker);
    const bool hasOther = flavour.needs64BitWindows && other != subject.flavours.end();
    out.AddFirst(
        {{hasOther, "flavour-marker-missing/beside-another"}, {true, "flavour-marker-missing"}},
        flavour.Marker(), {flavour.osFolder, hasOther ? other->osFolder : ""});
}

}  // namespace

void CheckFlavourMarkers(const Subject& subject, Findings& out) {
    for (const Entry& entry : EntriesOf(subject.Common()))
        CheckName(subject, entry, out);
    CheckForMarkersIn(subject, subject.Media(), out);
    CheckForMarkersIn(subject, subject.Inst(), out);
    for (const FlavourHere& flavour : subject.flavours) {
        CheckForMarkersIn(subject, Join(subject.Inst(), flavour.osFolder), out);
        if (flavour.hasInstaller && !flavour.hasMarker) ReportMissing(subject, flavour, out);
    }
}

}  // namespace launcher::mediatool
