#pragma once

#include <functional>
#include <optional>
#include <string>

#include "mediatool/media/launcher_view.h"
#include "mediatool/media/media_set.h"
#include "mediatool/validate/findings.h"

namespace launcher::mediatool {

// The flavours that a media can have, the launcher's first choice first.
inline constexpr const char* kFlavours[] = {"win_b64", "win_csa64", "intel_a"};
inline constexpr char kFlavourMarkerExtension[] = ".installos";

// What the checks look at.
struct Subject {
    MediaSet set;
    LauncherView view;
    // The temporary folder of the users that the media is for; empty for the longest usual one.
    std::string temp;
    // Told of every entry that is looked at; may be empty.
    std::function<void(std::size_t entries)> progress;

    const Path& Media() const { return set.first; }
};

// One group of mistakes each, in a file of its own.
void CheckLauncher(const Subject& subject, Findings& out);
void CheckRootEntries(const Subject& subject, Findings& out);
void CheckInstallers(const Subject& subject, Findings& out);
void CheckInstallerPlaces(const Subject& subject, Findings& out);
void CheckFlavourMarkers(const Subject& subject, Findings& out);
void CheckCountFile(const Subject& subject, Findings& out);
void CheckVolumeNumbers(const Subject& subject, Findings& out);
void CheckVolumes(const Subject& subject, Findings& out);
void CheckUnfinished(const Subject& subject, Findings& out);
void CheckTree(const Subject& subject, Findings& out);

// An identifier, as it stands in `marker`.
void CheckIdentifier(const std::string& id, const Path& marker, Findings& out);

// The text of one volume marker that is there. Returns the identifier that the launcher reads from
// it, empty when it reads none.
std::string CheckMarkerText(const Path& marker, Findings& out);

}  // namespace launcher::mediatool
