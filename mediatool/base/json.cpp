#include "mediatool/base/json.h"

#include <nlohmann/json.hpp>

namespace launcher::mediatool {

std::string Printed(const Json& json) {
    // Texts that are no UTF-8 come from files; their bad bytes must not stop the output.
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace launcher::mediatool
