// What the machine says of itself.

#include "fs/encoding.h"
#include "fs/file_type.h"
#include "fs/path.h"
#include "launcher/uuid_text.h"
#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"
#include "mediatool/media/launcher_view.h"
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

}  // namespace

bool IsAdministrator() {
    const auto detect = [] {
        const std::optional<bool>& pretended = Machine().isAdministrator;
        return pretended ? *pretended && !IsAdministratorHidden() : DetectAdministrator();
    };
    mediatool::Rehearsal* const rehearsal = mediatool::CurrentRehearsal();
    return rehearsal == nullptr ? detect()
                                : mediatool::FirstAnswer(rehearsal->isAdministrator, detect);
}

bool Is64BitWindows() {
    return Machine().is64Bit.value_or(Detect64BitWindows());
}

bool HasRequiredWebLibrary() {
    return !Machine().hasOldWebLibrary && DetectRequiredWebLibrary();
}

bool IsWindows8OrNewer() {
    return Machine().isWindows8OrNewer.value_or(DetectWindows8());
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
    const bool found = IsThere(path);
    if (mediatool::Rehearsal* const rehearsal = mediatool::CurrentRehearsal())
        rehearsal->journal.lookups.push_back({mediatool::FullPath(path).Text(), found});
    return found;
}

// The launcher opens a volume's marker without asking whether it is there; the journal has the
// answer all the same.
std::string ReadMtbDir(const std::string& path) {
    if (mediatool::CurrentRehearsal() != nullptr) PathExists(path);
    std::string id = MtbDirInFile(path);
    mediatool::WriteDownMarker(path, id);
    return id;
}

}  // namespace launcher
