#pragma once

#include <optional>
#include <string>
#include <vector>

#include "fs/path.h"
#include "media/volume_search.h"
#include "mediatool/base/json.h"

namespace launcher::mediatool {

using Layout = VolumeLayout;

// As it is written in outputs: "one-folder".
std::string LayoutName(Layout layout);

// A marker that the launcher's search asked for, and the identifier that it compared: empty when
// there was none.
struct AskedMarker {
    Path file;
    std::string id;
};

// What the launcher itself makes of the volumes of a medium: the record of its own search.
struct LauncherView {
    Layout layout = Layout::NotSplit;
    std::optional<VolumeCount> count;  // of the count file; nothing without one that it can read
    std::string id;                    // that all volumes have; empty while none was read
    std::vector<std::string> folders;  // of the volumes found, volume 1 first; only volume 1's
                                       // while the set is not whole
    std::vector<AskedMarker> asked;    // all that it asked for, in that order

    // The launcher copies the installer before it starts it.
    bool Copies() const { return layout == Layout::Incomplete; }
};

// As outputs for programs have it.
Json JsonOf(const LauncherView& view);

// A damaged count is not followed to its end in a folder that cannot be listed, where the launcher
// asks for every number.
LauncherView ViewOf(const Path& media);

// The same wherever it is asked: the launcher looks for the volumes beside one that is a drive's
// root in the root of the current drive, and what is said of a medium must not depend on that.
LauncherView ViewFromEverywhere(const Path& media);

// To be told by what reads markers for the launcher.
void WriteDownMarker(const std::string& path, const std::string& id);

}  // namespace launcher::mediatool
