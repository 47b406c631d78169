#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace launcher::mediatool {

// The outputs for programs; docs/mediatool.schema.json describes them.
using Json = nlohmann::ordered_json;

// As it is printed: indented, with a line end.
std::string Printed(const Json& json);

}  // namespace launcher::mediatool
