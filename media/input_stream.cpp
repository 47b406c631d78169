#include "media/input_stream.h"

#include <exception>

namespace launcher {

std::string_view InputStream::NextBlock() {
    return {};
}

InputStream& InputStream::ReadLine(std::string& line) {
    if (failed_ || atEnd_) {
        failed_ = true;
        return *this;
    }
    try {
        ReadUpToLf(line);
    } catch (const std::exception&) {  // of the memory: a damaged file must not end the run
        failed_ = true;
    }
    return *this;
}

void InputStream::ReadUpToLf(std::string& line) {
    line.clear();
    for (;;) {
        if (block_.empty()) block_ = NextBlock();
        if (block_.empty()) break;
        const std::size_t end = block_.find('\n');
        line.append(block_, 0, end);
        if (end != std::string_view::npos) {
            block_.remove_prefix(end + 1);
            return;
        }
        block_ = {};
    }
    atEnd_ = true;
    failed_ = line.empty();
}

}  // namespace launcher
