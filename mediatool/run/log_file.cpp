#include "mediatool/run/log_file.h"

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/names.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {
namespace {

bool IsSame(const Path& left, const Path& right) {
    const auto identity = IdentityOf(left.Text());
    return SameName(left, right) || (identity && identity == IdentityOf(right.Text()));
}

bool LiesIn(const Path& path, const Path& folder) {
    for (Path above = path; !IsEmpty(above); above = Parent(above))
        if (IsSame(above, folder)) return true;
    return false;
}

// Windows takes "CON", and before Windows 11 "C:\logs\con.txt" too, for "\\.\CON".
bool IsDevice(const Path& path) {
    return path.Text().starts_with("\\\\.\\") || IsReservedName(FileName(path));
}

}  // namespace

bool IsNoLog(const std::string& log) {
    return SameName(log, "NUL") || SameName(log, "NUL:");
}

void CheckLog(const Path& folder, const Path& launcher, const std::string& log) {
    if (log.empty()) throw BadInput("--log is empty.");
    if (IsNoLog(log)) return;
    const Path path = FullPath(log);
    if (IsDevice(path)) throw BadInput("The log " + Quoted(log) + " is a device, not a file.");
    if (IsSame(path, launcher) || LiesIn(path, folder) || LiesIn(FinalPath(path), folder))
        throw BadInput("The log " + Quoted(log) +
                       " lies in the media, which must stay as it is; give it another place.");
}

}  // namespace launcher::mediatool
