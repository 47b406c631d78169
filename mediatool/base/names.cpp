#include "mediatool/base/names.h"

#include <algorithm>
#include <initializer_list>

namespace launcher::mediatool {
namespace {

// Of the letters of ASCII: all that the names here are made of.
std::string InLowerAscii(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

}  // namespace

bool IsReservedName(const std::string& name) {
    std::string base = InLowerAscii(name.substr(0, name.find('.')));
    while (base.ends_with(' '))
        base.pop_back();
    if (base == "con" || base == "prn" || base == "aux" || base == "nul") return true;
    if (!base.starts_with("com") && !base.starts_with("lpt")) return false;
    // Superscripts are digits here.
    const std::string port = base.substr(3);
    if (port == "\xC2\xB9" || port == "\xC2\xB2" || port == "\xC2\xB3") return true;
    return port.size() == 1 && port[0] >= '1' && port[0] <= '9';
}

bool EndsInDotOrBlank(const std::string& name) {
    return name.ends_with('.') || name.ends_with(' ');
}

bool IsProgramName(const std::string& name) {
    const std::string lower = InLowerAscii(name);
    return std::ranges::any_of(
        std::initializer_list<const char*>{".exe", ".dll", ".sys", ".msi", ".msp", ".cab"},
        [&lower](const char* extension) { return lower.ends_with(extension); });
}

bool IsLeftover(const std::string& name) {
    const std::string lower = InLowerAscii(name);
    return lower.ends_with(".tmp") || lower.starts_with("._") || lower == "thumbs.db" ||
           lower == ".ds_store";
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
