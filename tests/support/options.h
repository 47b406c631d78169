#pragma once

#include <map>
#include <string>
#include <vector>

#include "launcher/base/launch_options.h"

namespace launcher::test {

// The fields of a record by name, as text, so that a test can say which differ and how.
using Fields = std::map<std::string, std::string>;
Fields FieldsOf(const LaunchOptions& options);

// The record for the arguments (UTF-8) after the program's name. The last two are the defaults
// of `useGui` and `wait`; the process entry gives true and false.
LaunchOptions ParseOptions(const std::vector<std::string>& arguments, bool useGui = true,
                           bool wait = false);

}  // namespace launcher::test
