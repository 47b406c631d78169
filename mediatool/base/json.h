#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace launcher::mediatool {

// The outputs for programs; docs/mediatool.schema.json describes them.
using Json = nlohmann::ordered_json;

// As it is printed: indented, with a line end. Characters outside ASCII stand as \u escapes, which
// no code page on the way to its reader can spoil.
std::string Printed(const Json& json);

// The output of a command that ends with one sentence instead of what was asked for. An empty
// `command` is one that there is not.
Json FailureJson(const std::string& command, int exitCode, const std::string& sentence);

}  // namespace launcher::mediatool
