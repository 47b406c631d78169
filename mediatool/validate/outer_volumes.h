#pragma once

#include <string>

#include "fs/path.h"
#include "mediatool/validate/findings.h"

namespace launcher::mediatool {

// A media that may be nested in numbered outer volumes.
struct NestedMedia {
    Path folder;     // of volume 1
    std::string id;  // of the media
    int count;       // of its volumes
};

// The launcher takes a file of this name for the marker of an outer volume.
bool IsOuterMarkerName(const std::string& name);

// The mistakes in the outer volumes of a media whose volumes the launcher does not find. False when
// nothing there was meant to be one.
bool CheckIncompleteOuterVolumes(const NestedMedia& media, Findings& out);

// What may be wrong with those of a media whose volumes it finds.
void CheckCompleteOuterVolumes(const NestedMedia& media, Findings& out);

}  // namespace launcher::mediatool
