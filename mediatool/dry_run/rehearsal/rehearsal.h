#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mediatool/dry_run/rehearsal/pretended_copy.h"

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
    std::optional<bool> longPaths;      // AreLongPathsEnabled() of it
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

struct Journal {
    std::vector<Message> messages;
    std::vector<Lookup> lookups;
    PretendedCopy copy;
    bool wroteRemoveScript = false;
    std::optional<std::string> commandLine;  // of the process that would have been started
    bool waited = false;                     // for its end
    bool crashed = false;
    bool metLongPaths = false;  // which are too long unless `longPaths` is true
};

struct Rehearsal {
    PretendedMachine machine;
    Journal journal;
    // What the launcher's process would remember of its first question.
    std::optional<bool> isAdministrator;
    std::optional<bool> tracesInBoxes;
};

// Makes a rehearsal the current one while it lives.
class RehearsalScope {
  public:
    explicit RehearsalScope(Rehearsal& rehearsal) { current = &rehearsal; }
    RehearsalScope(const RehearsalScope&) = delete;
    RehearsalScope& operator=(const RehearsalScope&) = delete;
    ~RehearsalScope() { current = nullptr; }

    static inline Rehearsal* current = nullptr;
};

// The one that is running; null outside of it, when the replacements change nothing either.
inline Rehearsal* CurrentRehearsal() {
    return RehearsalScope::current;
}

// Whether a path of this length is too long for the machine, which by itself has this limit.
inline bool IsTooLong(std::size_t length, std::size_t limit) {
    if (length <= limit) return false;
    Rehearsal& rehearsal = *CurrentRehearsal();
    rehearsal.journal.metLongPaths = true;
    return !rehearsal.machine.longPaths.value_or(false);
}

// The answer that is remembered, detected now when there is none yet.
template <class Detect>
bool FirstAnswer(std::optional<bool>& answer, const Detect& detect) {
    if (!answer) answer = detect();
    return *answer;
}

// What ends the launcher's process. No std::exception, so that nothing of the launcher catches it.
struct ProcessEnd {
    int exitCode;
};

}  // namespace launcher::mediatool
