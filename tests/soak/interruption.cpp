#include "tests/soak/interruption.h"

#include <windows.h>

#include <string>
#include <system_error>

namespace launcher::soak {

namespace stdfs = std::filesystem;

namespace {

// What the copy of the large media comes to one after the other, from its first file to its last.
stdfs::path PlaceInCopy(Random& random) {
    const unsigned place = random() % 10;
    if (place < 7) return stdfs::path("inst") / "many" / std::to_string(place);
    return place == 7 ? "inst" : place == 8 ? "media.xml" : "setup_noUAC.exe";
}

bool HasBeenReached(const stdfs::path& temp, const stdfs::path& place) {
    std::error_code error;
    for (const auto& copy : stdfs::directory_iterator(temp, error))
        if (stdfs::exists(copy.path() / place, error)) return true;
    return false;
}

}  // namespace

bool WaitIntoCopy(test::LauncherProcess& process, const stdfs::path& temp, Random& random) {
    const stdfs::path place = PlaceInCopy(random);
    const DWORD moment = random() % 40;  // milliseconds
    while (!HasBeenReached(temp, place))
        if (process.EndsWithin(0)) return false;
    return !process.EndsWithin(moment);
}

HiddenFolder::HiddenFolder(const stdfs::path& folder, test::LauncherProcess& process)
    : folder_(folder), hidden_(folder.native() + L".hidden") {
    do {
        isHidden_ = MoveFileExW(folder_.c_str(), hidden_.c_str(), 0) != 0;
    } while (!isHidden_ && !process.EndsWithin(0));
}

HiddenFolder::~HiddenFolder() {
    if (isHidden_) MoveFileExW(hidden_.c_str(), folder_.c_str(), 0);
}

}  // namespace launcher::soak
