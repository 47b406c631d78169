#include "launcher/uuid_text.h"

#include <chrono>
#include <cstdint>
#include <random>
#include <ratio>

namespace launcher {
namespace {

// The wall clock in units of 100 ns since 1970, truncated to 32 bits.
std::mt19937::result_type ClockSeed() {
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<Ticks>(sinceEpoch).count());
}

unsigned Draw() {
    static std::mt19937 generator(ClockSeed());
    std::uniform_int_distribution<unsigned> distribution(0, 0xFFFF);
    return distribution(generator);
}

// Four hexadecimal digits.
std::string Group(unsigned value, bool upperCase) {
    const char* digits = upperCase ? "0123456789ABCDEF" : "0123456789abcdef";
    std::string text(4, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, value /= 16)
        *digit = digits[value % 16];
    return text;
}

}  // namespace

std::string NewUuidText(bool upperCase) {
    const auto random = [upperCase] { return Group(Draw(), upperCase); };
    std::string text = random();
    text += random() + "-";
    text += random() + "-";
    text += Group((Draw() & 0x0FFF) + 0x4000, upperCase) + "-";  // version 4
    text += Group((Draw() & 0x3FFF) + 0x8000, upperCase) + "-";  // the variant of RFC 4122
    text += random();
    text += random();
    text += random();
    return text;
}

}  // namespace launcher
