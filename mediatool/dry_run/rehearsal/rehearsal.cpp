#include "mediatool/dry_run/rehearsal/rehearsal.h"

#include "mediatool/base/files.h"

namespace launcher::mediatool {
namespace {

Rehearsal* current = nullptr;

}  // namespace

Rehearsal* CurrentRehearsal() {
    return current;
}

bool Rehearsal::HasFolder(const Path& folder) const {
    return pretendedFolders.contains(CopyKey(folder));
}

std::size_t LengthInRun(const std::string& path) {
    constexpr std::size_t kUuidLength = 36;
    const std::string uuid = kPretendedUuid;
    const std::size_t length = WideLength(path);
    const bool isInCopy = path.find(uuid) != std::string::npos;
    return isInCopy ? length - uuid.size() + kUuidLength : length;
}

std::string CopyKey(const Path& path) {
    return InLowerCase(FullPath(path.Text()).Text());
}

RehearsalScope::RehearsalScope(Rehearsal& rehearsal) {
    current = &rehearsal;
}

RehearsalScope::~RehearsalScope() {
    current = nullptr;
}

}  // namespace launcher::mediatool
