#include "mediatool/base/names.h"

#include <algorithm>

#include "mediatool/base/files.h"

namespace launcher::mediatool {

bool IsReservedName(const std::string& name) {
    std::string base = InLowerCase(name.substr(0, name.find('.')));
    while (base.ends_with(' '))
        base.pop_back();
    if (base == "con" || base == "prn" || base == "aux" || base == "nul") return true;
    const bool port = base.size() == 4 && (base.starts_with("com") || base.starts_with("lpt"));
    return port && base[3] >= '1' && base[3] <= '9';
}

bool EndsInDotOrBlank(const std::string& name) {
    return name.ends_with('.') || name.ends_with(' ');
}

bool IsUsableName(const std::string& name) {
    const auto isForbidden = [](char c) {
        return static_cast<unsigned char>(c) < 0x20 ||
               std::string("<>:\"/\\|?*").find(c) != std::string::npos;
    };
    return !name.empty() && std::ranges::none_of(name, isForbidden) && !EndsInDotOrBlank(name) &&
           !IsReservedName(name);
}

}  // namespace launcher::mediatool
