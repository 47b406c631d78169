// What the machine says of itself.

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/file_type.h"
#include "fs/path.h"
#include "launcher/uuid_text.h"
#include "media/volume_files.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"
#include "mediatool/dry_run/rehearsal/this_machine.h"
#include "platform/administrator.h"
#include "platform/architecture.h"
#include "platform/module_path.h"
#include "platform/web_library.h"
#include "platform/windows_version.h"

namespace launcher {
namespace {

const mediatool::PretendedMachine& Machine() {
    static const mediatool::PretendedMachine own;
    const mediatool::Rehearsal* const rehearsal = mediatool::CurrentRehearsal();
    return rehearsal == nullptr ? own : rehearsal->machine;
}

void WriteDownLookup(const std::string& path, bool found) {
    if (mediatool::Rehearsal* const rehearsal = mediatool::CurrentRehearsal())
        rehearsal->journal.lookups.push_back({path, found});
}

}  // namespace

bool IsAdministrator() {
    const std::optional<bool>& pretended = Machine().isAdministrator;
    if (!pretended) return ThisMachineIsAdministrator();
    // The variable counts for every administrator, of this machine or not; asked once, as there.
    static const bool answer = *pretended && GetEnvVar("ZEPProcessNotAdmin").empty();
    return answer;
}

bool Is64BitWindows() {
    return Machine().is64Bit.value_or(ThisMachineIs64BitWindows());
}

bool HasRequiredWebLibrary() {
    return !Machine().hasOldWebLibrary && ThisMachineHasRequiredWebLibrary();
}

bool IsWindows8OrNewer() {
    return Machine().isWindows8OrNewer.value_or(ThisMachineIsWindows8OrNewer());
}

std::string GetModuleFileNameText() {
    constexpr std::size_t kBufferLength = 259;  // characters that Windows puts into MAX_PATH
    return ToNarrow(ToWide(Machine().launcherPath).substr(0, kBufferLength).c_str());
}

std::string GetModuleDirectory() {
    return Parent(Path(GetModuleFileNameText())).Text();
}

std::string NewUuidText(bool) {
    return mediatool::kPretendedUuid;
}

bool PathExists(const std::string& path) {
    const bool found = ThisMachinePathExists(path);
    WriteDownLookup(path, found);
    return found;
}

// A volume's marker, which the launcher opens without a question whether it is there.
std::string ReadMtbDir(const std::string& path) {
    WriteDownLookup(path, ThisMachinePathExists(path));
    return ThisMachineReadMtbDir(path);
}

std::optional<VolumeCount> ReadVolumeCount(const std::string& path) {
    return ThisMachineReadVolumeCount(path);
}

}  // namespace launcher
