#include "launcher/uuid_text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <ratio>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace launcher {
namespace {

// The digits that occur at each place of many texts, "-" included.
using Places = std::array<std::set<char>, 36>;

Places PlacesOfMany(bool upperCase) {
    Places places;
    for (int i = 0; i < 4000; ++i) {
        const std::string text = NewUuidText(upperCase);
        EXPECT_EQ(text.size(), places.size()) << text;
        for (std::size_t place = 0; place < text.size() && place < places.size(); ++place)
            places[place].insert(text[place]);
    }
    return places;
}

std::set<char> Digits(std::string_view digits) {
    return {digits.begin(), digits.end()};
}

TEST(UuidText, HasEveryDigitAtEveryPlaceButTwo) {
    for (const bool upperCase : {true, false}) {
        const std::set<char> all = Digits(upperCase ? "0123456789ABCDEF" : "0123456789abcdef");
        const Places places = PlacesOfMany(upperCase);
        for (std::size_t place = 0; place < places.size(); ++place) {
            std::set<char> expected = all;
            if (place == 8 || place == 13 || place == 18 || place == 23) expected = {'-'};
            if (place == 14) expected = {'4'};                                // the version
            if (place == 19) expected = Digits(upperCase ? "89AB" : "89ab");  // the variant
            EXPECT_EQ(places[place], expected) << "place " << place;
        }
    }
}

TEST(UuidText, IsNewEveryTime) {
    std::set<std::string> texts;
    for (int i = 0; i < 4000; ++i)
        texts.insert(NewUuidText(true));
    EXPECT_EQ(texts.size(), 4000u);
}

// Six groups of a text are a whole draw each. That one of the two is missing from 300,000 texts
// happens less than once in 10^11 runs.
TEST(UuidText, WritesTheSmallestAndTheLargestDraw) {
    std::set<std::string> missing = {"0000", "ffff"};
    for (int i = 0; i < 300'000 && !missing.empty(); ++i) {
        const std::string text = NewUuidText(false);
        for (const std::size_t group : {0u, 4u, 9u, 24u, 28u, 32u})
            missing.erase(text.substr(group, 4));
    }
    EXPECT_THAT(missing, testing::IsEmpty());
}

using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;

// The wall clock, in units of 100 ns since 1970.
std::int64_t Now() {
    const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<Ticks>(sinceEpoch).count();
}

// Ends the process with its first two texts on the error stream, between the times before and after
// they were made.
void TellFirstTexts() {
    const std::int64_t before = Now();
    const std::string first = NewUuidText(true);
    const std::string second = NewUuidText(true);
    std::cerr << before << ' ' << first << ' ' << second << ' ' << Now();
    std::exit(0);
}

// The numbers that a text is made of, four digits each.
std::multiset<unsigned> Groups(std::string text) {
    std::erase(text, '-');
    std::multiset<unsigned> groups;
    for (std::size_t at = 0; at < text.size(); at += 4)
        groups.insert(static_cast<unsigned>(std::stoul(text.substr(at, 4), nullptr, 16)));
    return groups;
}

// Whether eight draws can make the text. Which draw goes where is left open.
bool CanMake(const std::vector<unsigned>& draws, const std::string& text) {
    for (std::size_t version = 0; version < draws.size(); ++version) {
        for (std::size_t variant = 0; variant < draws.size(); ++variant) {
            std::vector<unsigned> groups = draws;
            groups[version] = (groups[version] & 0x0FFF) + 0x4000;
            groups[variant] = (groups[variant] & 0x3FFF) + 0x8000;
            if (version != variant &&
                std::multiset<unsigned>(groups.begin(), groups.end()) == Groups(text))
                return true;
        }
    }
    return false;
}

// Whether a generator with this seed makes the two texts, one after the other.
bool SeedMakes(std::uint32_t seed, const std::string& first, const std::string& second) {
    std::mt19937 generator(seed);
    std::uniform_int_distribution<unsigned> distribution(0, 0xFFFF);
    for (const std::string& text : {first, second}) {
        std::vector<unsigned> draws(8);
        for (unsigned& draw : draws)
            draw = distribution(generator);
        // All but two draws are in the text as they are: a quick look first.
        const std::multiset<unsigned> groups = Groups(text);
        const auto found = std::count_if(
            draws.begin(), draws.end(), [&groups](unsigned draw) { return groups.contains(draw); });
        if (found < 6 || !CanMake(draws, text)) return false;
    }
    return true;
}

// The seed is the clock's low 32 bits, so one of the instants of the first call makes the texts.
TEST(UuidTextDeathTest, FollowsFromTheClockAlone) {
    std::string told;
    EXPECT_EXIT(TellFirstTexts(), testing::ExitedWithCode(0),
                testing::Truly([&told](const std::string& text) {
                    told = text;
                    return true;
                }));
    std::int64_t before = 0;
    std::int64_t after = 0;
    std::string first;
    std::string second;
    std::istringstream(told) >> before >> first >> second >> after;
    bool made = false;
    for (std::int64_t ticks = before; ticks <= after && !made; ++ticks)
        made = SeedMakes(static_cast<std::uint32_t>(ticks), first, second);
    EXPECT_TRUE(made) << told;
}

}  // namespace
}  // namespace launcher
