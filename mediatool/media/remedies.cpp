#include "mediatool/media/remedies.h"

#include <algorithm>

#include "mediatool/media/marker_bytes.h"

namespace launcher::mediatool {
namespace {

constexpr std::string_view kAnything = "...";

// The parts between two of `border`, without those before the first and after the last.
std::vector<std::string_view> Between(std::string_view text, char border) {
    std::vector<std::string_view> parts;
    std::size_t start = text.find(border);
    while (start != std::string_view::npos) {
        const std::size_t end = text.find(border, start + 1);
        if (end != std::string_view::npos) parts.push_back(text.substr(start + 1, end - start - 1));
        start = end;
    }
    return parts;
}

// The texts in `code`.
std::vector<std::string_view> CodeIn(std::string_view cell) {
    const std::vector<std::string_view> parts = Between(cell, '`');
    std::vector<std::string_view> code;
    for (std::size_t i = 0; i < parts.size(); i += 2)
        code.push_back(parts[i]);
    return code;
}

std::string Plain(std::string_view cell) {
    std::string text = Trimmed(std::string(cell));
    std::erase(text, '`');
    return text;
}

// All pieces of the known message, in order, the first at the start.
bool IsBeginningOf(std::string_view known, std::string_view message) {
    for (bool atStart = true;; atStart = false) {
        const std::size_t end = known.find(kAnything);
        const std::string_view piece = known.substr(0, end);
        const std::size_t found = message.find(piece);
        if (found == std::string_view::npos || (atStart && found != 0)) return false;
        if (end == std::string_view::npos) return true;
        message.remove_prefix(found + piece.size());
        known.remove_prefix(end + kAnything.size());
    }
}

}  // namespace

std::vector<Remedy> RemediesOn(std::string_view page) {
    std::vector<Remedy> remedies;
    for (const std::string& line : LinesOf(std::string(page))) {
        const std::vector<std::string_view> cells = Between(line, '|');
        if (cells.size() != 3) continue;
        for (const std::string_view message : CodeIn(cells[0]))
            remedies.push_back({std::string(message), Plain(cells[1]), Plain(cells[2])});
    }
    return remedies;
}

std::optional<Remedy> KnownMessage(const std::string& message) {
    static const std::vector<Remedy> remedies = RemediesOn(kMessagesPage);
    const auto known = std::ranges::find_if(remedies, [&message](const Remedy& remedy) {
        return IsBeginningOf(remedy.message, message);
    });
    if (known == remedies.end()) return std::nullopt;
    return *known;
}

std::optional<std::string> RemedyFor(const std::string& message) {
    const std::optional<Remedy> known = KnownMessage(message);
    if (!known) return std::nullopt;
    return known->remedy;
}

}  // namespace launcher::mediatool
