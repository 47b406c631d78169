// Replacing, against a copy made character by character.

#include <string>
#include <string_view>

#include "fs/text.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/input.h"

namespace launcher::fuzz {
namespace {

struct Replaced {
    std::string text;
    std::size_t count = 0;
};

Replaced CopyWithReplacements(std::string_view text, std::string_view find,
                              std::string_view replacement, std::size_t start) {
    Replaced result{std::string(text.substr(0, start))};
    text.remove_prefix(result.text.size());
    while (!text.empty()) {
        const bool hit = text.starts_with(find);
        result.text += hit ? replacement : text.substr(0, 1);
        result.count += hit;
        text.remove_prefix(hit ? find.size() : 1);
    }
    return result;
}

}  // namespace

void TestOneInput(Input input) {
    constexpr std::string_view kAlphabet = "ab\\\n";
    const std::size_t start = input.Below(16);  // past the end of a short text too
    std::string find = input.Text(kAlphabet);
    if (find.empty()) find = "\\\\";
    const std::string replacement = input.Text(kAlphabet);
    const std::string text = input.Text(kAlphabet);

    std::string actual = text;
    const std::size_t count = ReplaceAll(actual, find, replacement, start);
    const Replaced expected = CopyWithReplacements(text, find, replacement, start);
    const std::string given = text + " | " + find + " | " + replacement;
    CheckEqual("ReplaceAll", given, actual, expected.text);
    CheckEqual("ReplaceAll", given, static_cast<std::int64_t>(count),
               static_cast<std::int64_t>(expected.count));
}

}  // namespace launcher::fuzz
