#pragma once

#include <string>

#include "mediatool/base/json.h"
#include "mediatool/dry_run/dry_run.h"

namespace launcher::mediatool {

// The outputs of a dry run, for people and for programs. docs/mediatool.schema.json describes the
// latter.

// With `everything`, all that was looked for, every variable and every copied file.
std::string TextOf(const DryRun& run, bool everything);
Json JsonOf(const DryRun& run);

}  // namespace launcher::mediatool
