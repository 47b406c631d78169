#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/mediatool/findings.h"
#include "tools/mediatool/media_set.h"

namespace launcher::mediatool {

// Where a volume's marker should be.
struct VolumePlace {
    Path folder;
    int number;
    std::string mediaId;  // empty when it is not known
};

// The markers "1.txt", "2.txt" ... of a folder, and the number in the name of one.
std::vector<Path> NumberedMarkers(const Path& folder);
long long NumberIn(const Path& marker);

// Something in the folder was meant to be the marker of this volume, readable or not.
bool HasTraceOfMarker(const Path& folder, int number);

// The folder below `parent` with a marker of this volume, when it has another name than it should.
std::optional<Path> FolderWithMarker(const Path& parent, int number, const std::string& mediaId);

// Finds out why the launcher reads no identifier there.
void ExplainMissingMarker(const VolumePlace& place, Findings& out);

void ReportMissingVolume(const Path& folder, int number, Findings& out);

// Reports a marker whose identifier is not the media's.
void CompareIdentifiers(const Path& marker, const std::string& mediaId, Findings& out);

}  // namespace launcher::mediatool
