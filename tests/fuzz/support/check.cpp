#include "tests/fuzz/support/check.h"

#include <cstdio>
#include <cstdlib>

namespace launcher::fuzz {

std::string Show(std::string_view text) {
    std::string shown = "\"";
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        char buffer[8];
        if (byte >= 0x20 && byte < 0x7F && c != '"' && c != '\\')
            shown += c;
        else if (std::snprintf(buffer, sizeof buffer, "\\x%02x", byte) > 0)
            shown += buffer;
    }
    return shown + "\"";
}

std::string Show(std::int64_t number) {
    return std::to_string(number);
}

std::string Show(const std::vector<std::string>& texts) {
    std::string shown = "[";
    for (const std::string& text : texts)
        shown += " " + Show(text);
    return shown + " ]";
}

void Fail(std::string_view what, std::string_view given, const std::string& actual,
          const std::string& expected) {
    std::fprintf(stderr, "%.*s of %s\n  gives  %s\n  not    %s\n", static_cast<int>(what.size()),
                 what.data(), Show(given).c_str(), actual.c_str(), expected.c_str());
    std::abort();
}

}  // namespace launcher::fuzz
