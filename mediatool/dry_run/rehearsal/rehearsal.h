#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "fs/path.h"

namespace launcher {
enum class Severity : std::uint32_t;
}

namespace launcher::mediatool {

// A run of the launcher in which nothing happens. Everything is the launcher's own object code but
// for its outermost effects, whose replacements (in this folder) are linked in their place: they
// ask the machine of the rehearsal and write down in its journal what would have happened.

// What the launcher is to believe of the machine; what is not set is this machine's own.
struct PretendedMachine {
    std::string launcherPath;  // full path of setup.exe
    std::optional<bool> is64Bit;
    std::optional<bool> isAdministrator;
    std::optional<bool> isWindows8OrNewer;
    bool hasOldWebLibrary = false;
    std::optional<std::string> picked;  // in the folder dialog; cancelled without it
};

// A message that the user would get.
struct Message {
    std::string text;
    Severity severity;
    bool box;       // else on the console
    bool toErrors;  // on the standard error stream; consoles only
    bool dialog;    // no message but the folder dialog itself
};

// One question whether something exists.
struct Lookup {
    std::string path;
    bool found;
};

struct PretendedFile {
    std::string source;
    std::uint64_t bytes = 0;
};

struct PretendedCopy {
    std::map<std::string, PretendedFile> contents;  // by CopyKey of the copy's path
    std::size_t files = 0;
    std::uint64_t bytes = 0;
    std::optional<std::uint64_t> room;  // bytes free at the target; unknown without it
};

struct Journal {
    std::vector<Message> messages;
    std::vector<Lookup> lookups;
    PretendedCopy copy;
    bool wroteRemoveScript = false;
    std::optional<std::string> commandLine;  // of the process that would have been started
    bool waited = false;                     // for its end
};

struct Rehearsal {
    PretendedMachine machine;
    Journal journal;
    std::set<std::string> pretendedFolders;  // made by the copy, by CopyKey

    bool HasFolder(const Path& folder) const;
};

// The one that is running; null outside of it, when the replacements change nothing either.
Rehearsal* CurrentRehearsal();

// Makes a rehearsal the current one while it lives.
class RehearsalScope {
  public:
    explicit RehearsalScope(Rehearsal& rehearsal);
    RehearsalScope(const RehearsalScope&) = delete;
    RehearsalScope& operator=(const RehearsalScope&) = delete;
    ~RehearsalScope();
};

// What ends the launcher's process. No std::exception, so that nothing of the launcher catches it.
struct ProcessEnd {
    int exitCode;
};

// The name of the temporary folder, in place of a random one.
inline constexpr char kPretendedUuid[] = "{UUID}";

// The number of characters that a path has in a run, where the name of the temporary folder is
// longer than here.
std::size_t LengthInRun(const std::string& path);

// A path in the copy as it is listed here: the one that Windows makes of it, in lower case.
std::string CopyKey(const Path& path);

}  // namespace launcher::mediatool
