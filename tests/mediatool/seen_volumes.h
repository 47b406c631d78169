#pragma once

#include <string>

#include "mediatool/media/launcher_view.h"

namespace launcher::mediatool {

// What the launcher makes of a medium of so many volumes, M:\1, M:\2 and so on.
inline LauncherView SeenAs(Layout layout, int count) {
    LauncherView view;
    view.layout = layout;
    view.count = VolumeCount{std::to_string(count), count};
    view.id = "SET";
    for (int i = 1; i <= count; ++i)
        view.folders.push_back("M:\\" + std::to_string(i));
    return view;
}

}  // namespace launcher::mediatool
