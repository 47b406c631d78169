#include "mediatool/base/sentences.h"

namespace launcher::mediatool {

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string Quoted(const Path& path) {
    return Quoted(path.Text());
}

std::string Grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3;) {
        i -= 3;
        digits.insert(i, 1, ',');
    }
    return digits;
}

std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace launcher::mediatool
