#include "mediatool/base/json.h"

#include <nlohmann/json.hpp>

namespace launcher::mediatool {

std::string Printed(const Json& json) {
    // Texts that are no UTF-8 come from files; their bad bytes must not stop the output.
    return json.dump(2, ' ', true, Json::error_handler_t::replace) + "\n";
}

Json FailureJson(const std::string& command, int exitCode, const std::string& sentence) {
    return {{"schema", 1},
            {"command", command.empty() ? Json() : Json(command)},
            {"exitCode", exitCode},
            {"error", sentence}};
}

}  // namespace launcher::mediatool
