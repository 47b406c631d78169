#pragma once

#include <string>

#include "mediatool/base/json.h"
#include "mediatool/create/create.h"

namespace launcher::mediatool {

// What create has done, for people and for programs.
std::string TextOf(const Creation& creation);
Json JsonOf(const Creation& creation, const CreateRequest& request);

// What it would do.
std::string TextOfDry(const Creation& creation);
Json JsonOfDry(const Creation& creation, const CreateRequest& request);

// One line about a run that is under way; `milliseconds` since its writing began.
std::string ProgressText(const CreateProgress& progress, std::uint64_t milliseconds);

}  // namespace launcher::mediatool
