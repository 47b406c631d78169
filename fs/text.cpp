#include "fs/text.h"

namespace launcher {

std::size_t ReplaceAll(std::string& text, const std::string& find, const std::string& replacement,
                       std::size_t start) {
    std::size_t count = 0;
    for (std::size_t at = text.find(find, start); at != std::string::npos;
         at = text.find(find, at + replacement.size())) {
        text.replace(at, find.size(), replacement);
        ++count;
    }
    return count;
}

}  // namespace launcher
