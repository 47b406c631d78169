// The files of the copy: their room is counted, but nothing is written.

#include "fs/copied_file.h"

#include <utility>

#include "fs/encoding.h"
#include "mediatool/base/files.h"
#include "mediatool/dry_run/rehearsal/pretended_copy.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"

namespace launcher {
namespace {

// Nothing is written in the place of a folder. The folder that the file is to be in is part of the
// copy by now, and its name is one of the source's.
DWORD ErrorOfOpening(const std::wstring& name) {
    if (mediatool::IsTooLong(name.size(), mediatool::kLongestPath)) return ERROR_PATH_NOT_FOUND;
    const Path path(ToNarrow(name.c_str()));
    return mediatool::CopyBelow(path).HasFolder(path) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

}  // namespace

bool CopiedFile::Open(DWORD) {
    const DWORD error = ErrorOfOpening(path_);
    SetLastError(error);
    return error == ERROR_SUCCESS;
}

bool CopiedFile::Fill(const SourceFile& source) {
    const Path path(ToNarrow(path_.c_str()));
    mediatool::PretendedCopy& copy = mediatool::CopyBelow(path);
    LARGE_INTEGER size{};
    GetFileSizeEx(source.handle.Get(), &size);
    // A file that is copied over another takes the room of one.
    const auto bytes = static_cast<std::uint64_t>(size.QuadPart);
    mediatool::PretendedFile& copied = copy.contents[mediatool::CopyKey(path)];
    copied.path = path.Text();
    copied.source = ToNarrow(source.path.c_str());
    copy.bytes += bytes - std::exchange(copied.bytes, bytes);
    const bool fits = !copy.room || copy.bytes <= *copy.room;
    SetLastError(fits ? ERROR_SUCCESS : ERROR_DISK_FULL);
    return fits;
}

bool CopiedFile::SetTimes(const FILETIME&, const FILETIME&) {
    return true;
}

}  // namespace launcher
