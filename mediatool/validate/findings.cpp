#include "mediatool/validate/findings.h"

#include <algorithm>

#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {
namespace {

std::string Filled(std::string_view text, const Values& values) {
    std::string filled;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%')
            filled += values.at(static_cast<std::size_t>(text[++i] - '1'));
        else
            filled += text[i];
    }
    return filled;
}

constexpr std::size_t kLongestShown = 200;  // of a value, in bytes
constexpr std::size_t kShownStart = 80;

// The start of a long text, and how long it is.
std::string Shortened(const std::string& text) {
    if (text.size() <= kLongestShown) return text;
    std::size_t end = kShownStart;
    while (end > kShownStart - 3 && (text[end] & 0xC0) == 0x80)  // not within a character
        --end;
    return text.substr(0, end) + "... (" + std::to_string(WideLength(text)) + " characters)";
}

}  // namespace

std::string IdentifierOf(const FindingText& text) {
    const std::string_view name = text.name;
    return std::string(name.substr(0, name.find('/')));
}

std::string LevelName(Level level) {
    if (level == Level::Error) return "error";
    return level == Level::Warning ? "warning" : "note";
}

void Findings::Add(FindingKind kind, const std::string& file, const Values& values) {
    all_.push_back({&kind.Text(), file, values});
}

void Findings::AddAll(Cases cases, const Path& file, const Values& values) {
    for (const Case& each : cases)
        if (each.holds) Add(each.kind, file, values);
}

bool Findings::AddFirst(Cases cases, const Path& file, const Values& values) {
    const auto first = std::ranges::find(cases, true, &Case::holds);
    if (first == cases.end()) return false;
    Add(first->kind, file, values);
    return true;
}

std::vector<Finding> Findings::Sorted(Shown shown) const {
    std::vector<Finding> sorted;
    for (auto [text, file, values] : all_) {
        if (shown == Shown::Readable) {
            file = Harmless(file, "");
            for (std::string& value : values)
                value = Shortened(Harmless(value, ""));
        }
        sorted.push_back({text->level, IdentifierOf(*text), file, Filled(text->what, values),
                          Filled(text->why, values), Filled(text->action, values)});
    }
    std::ranges::stable_sort(sorted, std::ranges::greater(), &Finding::level);
    return sorted;
}

std::size_t Findings::Count(Level level) const {
    return static_cast<std::size_t>(std::ranges::count(all_, level, &Found::level));
}

}  // namespace launcher::mediatool
