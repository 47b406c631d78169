// Identifiers, against a generator of their own with the same seed: the draws of each text, in
// whatever order, and its form. The first text of a process takes its seed from the clock, which
// says here what it is told; what follows is one long sequence.

#include <time.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "launcher/uuid_text.h"
#include "tests/fuzz/models/twister_model.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/input.h"

namespace launcher::fuzz {
namespace {

using Draws = std::array<unsigned, 8>;

std::int64_t ClockNow() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return now.tv_sec * 1'000'000'000 + now.tv_nsec;
}

// Nanoseconds since 1970, of which the seed keeps the hundreds; 0 lets the clock go on.
std::int64_t toldTime = 0;

// What the standard library's uniform distribution over 16 bits makes of a 32-bit number.
unsigned Draw(Twister& twister) {
    return twister.Next() >> 16;
}

// The four characters from `at` on, as a number; more than 16 bits when they are no such digits.
unsigned Digits(std::string_view text, std::size_t at, bool upperCase) {
    const std::string_view digits = upperCase ? "0123456789ABCDEF" : "0123456789abcdef";
    unsigned value = 0;
    for (const char c : text.substr(at, 4))
        value = value * 16 + static_cast<unsigned>(std::min(digits.find(c), std::size_t{1} << 20));
    return value;
}

// Takes the draws of the six free groups out; two must be left for the marked ones.
bool Matches(const std::string& text, bool upperCase, Draws draws) {
    if (text.size() != 36) return false;
    for (const std::size_t hyphen : {8u, 13u, 18u, 23u})
        if (text[hyphen] != '-') return false;
    auto end = draws.end();
    for (const std::size_t at : {0u, 4u, 9u, 24u, 28u, 32u}) {
        const auto found = std::find(draws.begin(), end, Digits(text, at, upperCase));
        if (found == end) return false;
        std::swap(*found, *--end);
    }
    const unsigned version = Digits(text, 14, upperCase);
    const unsigned variant = Digits(text, 19, upperCase);
    const auto marked = [&](unsigned first, unsigned second) {
        return version == (first & 0x0FFF) + 0x4000 && variant == (second & 0x3FFF) + 0x8000;
    };
    return marked(draws[0], draws[1]) || marked(draws[1], draws[0]);
}

void CheckNext(Twister& twister, bool upperCase) {
    static std::string before;
    Draws draws{};
    std::string shown;
    for (unsigned& draw : draws)
        draw = Draw(twister);
    const std::string text = NewUuidText(upperCase);
    if (!Matches(text, upperCase, draws)) {
        for (const unsigned draw : draws)
            shown += std::to_string(draw) + " ";
        Fail("NewUuidText", "the draws", Show(text), shown);
    }
    if (text == before) Fail("NewUuidText", "two calls", Show(text), "another text");
    before = text;
}

// A new seed for each process, beyond 32 bits of ticks.
Twister StartSequence() {
    toldTime = ClockNow();
    const auto ticks = static_cast<std::uint64_t>(toldTime / 100);
    std::printf("UUID seed: %llu ticks\n", static_cast<unsigned long long>(ticks));
    Twister twister(static_cast<std::uint32_t>(ticks));
    CheckNext(twister, true);
    toldTime = 0;
    return twister;
}

}  // namespace

void TestOneInput(Input input) {
    static Twister twister = StartSequence();
    do {
        CheckNext(twister, input.Below(2) == 0);
    } while (!input.AtEnd());
}

}  // namespace launcher::fuzz

// In the place of the library's own. The fuzzer times its runs with it too.
std::chrono::system_clock::time_point std::chrono::system_clock::now() noexcept {
    using namespace launcher::fuzz;
    return time_point(nanoseconds(toldTime != 0 ? toldTime : ClockNow()));
}
