#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "tools/mediatool/create.h"
#include "tools/mediatool/validate.h"

namespace launcher::mediatool {

// The outputs, for people and for programs. docs/mediatool.schema.json describes the latter.

using Json = nlohmann::ordered_json;

std::string TextOf(const Validation& validation);
Json JsonOf(const Validation& validation);

std::string TextOf(const Creation& creation);
Json JsonOf(const Creation& creation, const CreateRequest& request);

// As it is printed: indented, with a line end.
std::string Printed(const Json& json);

}  // namespace launcher::mediatool
