#include "mediatool/run/time_limit.h"

#include <charconv>
#include <optional>
#include <string_view>

#include "mediatool/base/failures.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {
namespace {

constexpr std::uint64_t kYear = std::uint64_t{366} * 24 * 60 * 60;  // seconds

std::optional<std::uint64_t> SecondsIn(std::string_view unit) {
    if (unit.empty() || unit == "s") return 1;
    if (unit == "m") return 60;
    if (unit == "h") return 60 * 60;
    if (unit == "d") return 24 * 60 * 60;
    return std::nullopt;
}

}  // namespace

std::uint64_t TimeLimitOf(const std::string& text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    const auto unit = SecondsIn({rest, static_cast<std::size_t>(end - rest)});
    const bool isHuge = error == std::errc::result_out_of_range;
    if (!unit || (number == 0 && !isHuge))  // 0 too when there is no number
        throw BadInput("--time-limit takes a time such as 90m, 2h or 45s, not " + Quoted(text) +
                       ".");
    if (isHuge || number > kYear / *unit)
        throw BadInput("--time-limit takes a year at most, 366d, not " + Quoted(text) + ".");
    return number * *unit * 1000;
}

}  // namespace launcher::mediatool
