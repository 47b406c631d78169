#include "mediatool/dry_run/rehearsal/pretended_copy.h"

#include <windows.h>

#include "fs/encoding.h"
#include "mediatool/base/files.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"

namespace launcher::mediatool {
namespace {

std::optional<std::uint64_t> RoomAt(const Path& path) {
    for (Path folder = path; !IsEmpty(folder); folder = Parent(folder)) {
        ULARGE_INTEGER room{};
        const std::wstring name = ToWide(folder.Text()) + L"\\";
        if (GetDiskFreeSpaceExW(name.c_str(), &room, nullptr, nullptr)) return room.QuadPart;
    }
    return std::nullopt;
}

}  // namespace

PretendedCopy& CopyBelow(const Path& path) {
    PretendedCopy& copy = CurrentRehearsal()->journal.copy;
    if (!copy.room) copy.room = RoomAt(path);
    return copy;
}

std::string CopyKey(const Path& path) {
    return InLowerCase(FullPath(path.Text()).Text());
}

}  // namespace launcher::mediatool
