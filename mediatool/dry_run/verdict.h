#pragma once

#include <string>

namespace launcher::mediatool {

struct DryRun;

// What a run comes to that nobody watches.
enum class Verdict {
    Starts,   // the installer, without waiting for anybody
    Waits,    // in a box, the folder dialog or a console, and would start it then
    Refused,  // does not start it; mostly after a box
};

Verdict VerdictOf(const DryRun& run);

// As it is written in outputs: "starts", "waits", "refused".
std::string VerdictName(Verdict verdict);

// In one line, with the cause and what to do about it. The causes and remedies of messages are
// those of docs/messages.md.
std::string SummaryOf(const DryRun& run);

}  // namespace launcher::mediatool
