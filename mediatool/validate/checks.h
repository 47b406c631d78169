#pragma once

#include <functional>
#include <string>
#include <vector>

#include "media/flavours.h"
#include "mediatool/base/amounts.h"
#include "mediatool/media/launcher_view.h"
#include "mediatool/media/media_set.h"
#include "mediatool/validate/findings.h"
#include "mediatool/validate/volume_markers.h"

namespace launcher::mediatool {

// One of the launcher's flavours, and what of it is there.
struct FlavourHere : Flavour {
    bool hasInstaller;
    bool hasMarker;

    Path Exe() const { return Path(installer); }
    Path Marker() const { return Path(marker); }
};

// What the checks look at.
struct Subject {
    MediaSet set;
    std::vector<FlavourHere> flavours;  // all, the launcher's first choice first
    LauncherView view;
    MarkerIds ids;
    // The temporary folder of the users that the medium is for; empty for the longest usual one.
    std::string temp;
    // Told of every entry that is looked at; may be empty.
    std::function<void(std::size_t entries)> progress;

    const Path& Media() const { return set.first; }
    // A single medium runs where it is: nothing in it has to bear a copy.
    bool IsNeverCopied() const { return view.layout == Layout::NotSplit; }
    // Whether a flavour for this kind of Windows has its installer, or its marker.
    bool Has(bool FlavourHere::*part, bool for64Bit) const;
    // Whether `name` is the folder, the installer or the marker of a flavour.
    bool HasFlavour(std::string Flavour::*part, const std::string& name) const;
    Path Inst() const { return Join(Media(), kInstFolder); }
    Path Common() const { return Join(Inst(), kCommonFolder); }
};

// One group of mistakes each, in a file of its own.
void CheckLauncher(const Subject& subject, Findings& out);
void CheckAutorun(const Subject& subject, Findings& out);
void CheckRootEntries(const Subject& subject, Findings& out);
void CheckInstallers(const Subject& subject, Findings& out);
void CheckInstallerPlaces(const Subject& subject, Findings& out);
void CheckFlavourMarkers(const Subject& subject, Findings& out);
void CheckCountFile(const Subject& subject, Findings& out);
void CheckVolumeNumbers(const Subject& subject, Findings& out);
void CheckVolumes(const Subject& subject, Findings& out);
void CheckTree(const Subject& subject, Findings& out);

// Whether the names of the medium were cut to 8.3; what is missing is not missing then, and the
// checks of its entries, installers and flavour markers have nothing to say.
bool CheckCutNames(const Subject& subject, Findings& out);

// What the lists of checksums say of the volumes that have one. Returns how much was read.
Amounts CheckChecksums(const Subject& subject, const TellAmounts& progress, Findings& out);

// An identifier, as it is in `marker`.
void CheckIdentifier(const std::string& id, const Path& marker, Findings& out);

// The text of one volume marker that is there, of which the launcher reads the identifier `id`, or
// none.
void CheckMarkerText(const Path& marker, const std::string& id, Findings& out);

}  // namespace launcher::mediatool
