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

}  // namespace launcher::mediatool
