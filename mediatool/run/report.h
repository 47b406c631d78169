#pragma once

#include <string>

#include "mediatool/base/json.h"
#include "mediatool/run/run.h"

namespace launcher::mediatool {

// What to do about the folder dialog.
inline constexpr char kDialogRemedy[] =
    "It was cancelled. Give the folder of the installer media with -installerPath FOLDER.";

// A text in the middle of others: without line ends at its end, and with LF alone between lines.
std::string WithoutLineEnds(std::string text);

// What the exit code of a run means, as a sentence.
std::string MeaningOf(const WatchedRun& run, const RunRequest& request);

// The summary of a run, for people and for programs. docs/mediatool.schema.json describes the
// latter. `coloured`: on a terminal that shows colours.
std::string TextOf(const WatchedRun& run, const RunRequest& request, bool coloured);
Json JsonOf(const WatchedRun& run);

}  // namespace launcher::mediatool
