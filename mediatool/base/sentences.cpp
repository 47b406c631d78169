#include "mediatool/base/sentences.h"

namespace launcher::mediatool {

std::string Quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string Quoted(const Path& path) {
    return Quoted(path.Text());
}

std::string Counted(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

}  // namespace launcher::mediatool
