#include <windows.h>

#include <algorithm>

#include "fs/path.h"
#include "launcher/base/launch_options.h"
#include "media/folder_names.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/dry_run/dry_run.h"
#include "mediatool/media/program_file.h"
#include "platform/owners.h"

namespace launcher::mediatool {
namespace {

// An option in other letters is none, and goes to the installer.
void AddMistakenOptions(std::vector<std::string>& hints,
                        const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments)
        for (const Option& option : AllOptions())
            if (argument != option.name && SameName(argument, option.name))
                hints.emplace_back(Quoted(argument) +
                                   " goes to the installer; the launcher's option is " +
                                   option.name + ".");
}

// "C:\a b\" takes what follows into the argument. Other quotes are meant.
void AddSwallowedArguments(std::vector<std::string>& hints,
                           const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        const std::size_t quote = argument.find('"');
        if (quote != std::string::npos && argument.find('\\') < quote)
            hints.emplace_back("The argument " + ExplainQuoteIn(argument, quote));
    }
}

// As Copy would count it.
std::uint64_t BytesOf(const Path& path) {
    const std::optional<Entry> entry = Look(path);
    if (!entry) return 0;
    if (!entry->isFolder) return entry->size;
    std::uint64_t bytes = 0;
    for (const Entry& child : EntriesOf(path))
        bytes += child.isFolder ? BytesOf(Join(path, child.name)) : child.size;
    return bytes;
}

// Also of what a full disk keeps out of the copy.
std::uint64_t BytesToCopy(const Path& media) {
    std::uint64_t bytes = 0;
    for (const char* entry : kMediaEntries)
        bytes += BytesOf(Join(media, entry));
    return bytes;
}

void AddRoom(std::vector<std::string>& hints, const DryRun& run, const Path& media) {
    const PretendedCopy& copy = run.journal.copy;
    if (!copy.room || copy.bytes <= *copy.room) return;
    const std::uint64_t needed = std::max(copy.bytes, BytesToCopy(media));
    hints.emplace_back("The copy needs at least " + Grouped(needed - *copy.room) +
                       " bytes more than are free in " + run.temp + ": " + Grouped(needed) +
                       " instead of " + Grouped(*copy.room) + ".");
}

void AddTemp(std::vector<std::string>& hints, const DryRun& run, const Path& media) {
    if (run.journal.copy.contents.empty()) return;
    // Only letters outside ASCII take more bytes than Windows counts characters.
    if (WideLength(run.temp) != run.temp.size())
        hints.emplace_back(
            "remove.bat cannot name the temporary folder, whose path holds letters outside ASCII: "
            "the copy stays. Set TEMP to a folder with a plain name.");
    if (IsWithin(FullPath(run.temp), Join(media, kInstFolder)))
        hints.emplace_back(
            "TEMP lies in the folder that is copied: the copy holds parts of itself. Which ones "
            "depends on Windows and is not foreseen.");
}

// Of an administrator without elevation. Any other user has no higher rights than these.
bool CanBeElevated() {
    TokenHandle token;
    TOKEN_ELEVATION_TYPE type{};
    DWORD length{};
    return OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.Put()) &&
           GetTokenInformation(token.Get(), TokenElevationType, &type, sizeof type, &length) &&
           type == TokenElevationTypeLimited;
}

// What a pretended user could have, nobody knows.
bool NeedsElevation(const DryRun& run) {
    if (!run.installer || run.isAdministrator) return false;
    const AskedRights rights = RightsAskedBy(Path(run.installer->foundAt));
    return rights == AskedRights::Administrators ||
           (rights == AskedRights::Highest && !run.machine.isAdministrator && CanBeElevated());
}

}  // namespace

std::vector<std::string> HintsOf(const DryRun& run, const LaunchOptions* options) {
    std::vector<std::string> hints;
    const Path media = Parent(Path(run.launcher));
    if (options != nullptr) AddMistakenOptions(hints, options->installerArgs);
    AddSwallowedArguments(hints, run.arguments);
    AddRoom(hints, run, media);
    AddTemp(hints, run, media);
    if (NeedsElevation(run))
        hints.emplace_back(
            "The installer's manifest asks for elevation: Windows does not start it for a user "
            "without (code 740).");
    return hints;
}

}  // namespace launcher::mediatool
