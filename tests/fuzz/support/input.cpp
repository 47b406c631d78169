#include "tests/fuzz/support/input.h"

namespace launcher::fuzz {

unsigned Input::Byte() {
    if (rest_.empty()) return 0;
    const auto byte = static_cast<unsigned char>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
}

std::string Input::Text(std::string_view alphabet) {
    constexpr unsigned kEnd = 0xFF;
    constexpr unsigned kAsItIs = 0xFE;
    std::string text;
    while (!rest_.empty()) {
        const unsigned byte = Byte();
        if (byte == kEnd) break;
        text += byte == kAsItIs ? static_cast<char>(Byte()) : alphabet[byte % alphabet.size()];
    }
    return text;
}

std::string Input::Rest() {
    const std::string text(rest_);
    rest_ = {};
    return text;
}

}  // namespace launcher::fuzz
