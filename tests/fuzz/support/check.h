#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace launcher::fuzz {

// Ends the run, which keeps the input as a file, with a line that shows all texts escaped.
[[noreturn]] void Fail(std::string_view what, std::string_view given, const std::string& actual,
                       const std::string& expected);

// What failures show of a value.
std::string Show(std::string_view text);
std::string Show(std::int64_t number);
std::string Show(const std::vector<std::string>& texts);

// `what` names the operation; `given` is what it worked on.
template <class Value>
void CheckEqual(std::string_view what, std::string_view given, const Value& actual,
                const Value& expected) {
    if (!(actual == expected)) Fail(what, given, Show(actual), Show(expected));
}

}  // namespace launcher::fuzz
