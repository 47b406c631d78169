#pragma once

#include <string>

#include "mediatool/base/json.h"
#include "mediatool/validate/validate.h"

namespace launcher::mediatool {

// What validate has found, for people and for programs.
std::string TextOf(const Validation& validation);
Json JsonOf(const Validation& validation);

}  // namespace launcher::mediatool
