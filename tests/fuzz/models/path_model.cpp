#include "tests/fuzz/models/path_model.h"

#include <algorithm>

namespace launcher::fuzz {
namespace {

enum class Kind { Relative, Drive, Share, Invalid };

bool IsLetter(char c) {
    return std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz").find(c) !=
           std::string_view::npos;
}

// A single quote alone is a pair in itself; a double quote alone is none.
std::string_view Unquoted(std::string_view text) {
    if (text == "'") return {};
    const bool quoted = text.size() >= 2 && text.front() == text.back() &&
                        (text.front() == '\'' || text.front() == '"');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

Kind KindOf(const PathModel& path) {
    if (path.words.empty()) return Kind::Relative;
    const std::string& first = path.words.front();
    if (path.separatorsInFront == 2) return path.words.size() < 2 ? Kind::Invalid : Kind::Share;
    if (path.separatorsInFront == 1) return first[0] == ':' ? Kind::Invalid : Kind::Relative;
    if (first.size() < 2 || first[1] != ':') return Kind::Relative;
    return IsLetter(first[0]) ? Kind::Drive : Kind::Invalid;
}

// How many words belong to the root.
std::size_t RootWords(const PathModel& path) {
    switch (KindOf(path)) {
        case Kind::Drive:
            return 1;
        case Kind::Share:
            return 2;
        default:
            return 0;
    }
}

std::vector<std::string> BelowRoot(const PathModel& path) {
    return {path.words.begin() + static_cast<std::ptrdiff_t>(RootWords(path)), path.words.end()};
}

PathModel RootOf(const PathModel& path) {
    PathModel root = path;
    root.words.resize(RootWords(path));
    return root;
}

}  // namespace

std::string PathModel::Text() const {
    std::string text(separatorsInFront, '\\');
    for (const std::string& word : words)
        text += &word == &words.front() ? word : "\\" + word;
    return text;
}

std::int64_t PathModel::RootEnd() const {
    switch (KindOf(*this)) {
        case Kind::Drive:
            return 1;
        case Kind::Share:
            return static_cast<std::int64_t>(RootOf(*this).Text().size()) - 1;
        default:
            return -1;
    }
}

PathModel SplitPath(std::string_view text) {
    PathModel path;
    std::string word;
    for (const char c : Unquoted(text)) {
        if (c != '/' && c != '\\') {
            word += c;
            continue;
        }
        if (!word.empty())
            path.words.push_back(word);
        else if (path.words.empty())
            path.separatorsInFront = std::min<std::size_t>(path.separatorsInFront + 1, 2);
        word.clear();
    }
    if (!word.empty()) path.words.push_back(word);
    if (path.words.empty()) path.separatorsInFront = 0;
    return path;
}

PathModel MakePath(std::string_view text) {
    PathModel path = SplitPath(text);
    return KindOf(path) == Kind::Invalid ? PathModel{} : path;
}

PathModel JoinPaths(const PathModel& left, std::string_view right) {
    return MakePath(left.Text().append(1, '\\').append(right));
}

PathModel ParentOf(const PathModel& path) {
    if (path.words.size() <= std::max<std::size_t>(RootWords(path), 1)) return {};
    PathModel parent = path;
    parent.words.pop_back();
    return MakePath(parent.Text());  // what is left may be quoted now
}

std::string FileNameOf(const PathModel& path) {
    if (path.words.size() > RootWords(path)) return path.words.back();
    // The character after a drive is taken for a separator.
    if (KindOf(path) == Kind::Drive && path.words[0].size() > 3) return path.words[0].substr(3);
    return {};
}

PathModel RelativeTo(const PathModel& base, const PathModel& target) {
    if (RootOf(base).Text() != RootOf(target).Text()) return {};
    std::vector<std::string> away = BelowRoot(base);
    std::vector<std::string> towards = BelowRoot(target);
    while (!away.empty() && !towards.empty() && away.front() == towards.front()) {
        away.erase(away.begin());
        towards.erase(towards.begin());
    }
    std::ranges::fill(away, "..");
    away.insert(away.end(), towards.begin(), towards.end());
    return MakePath(PathModel{0, away}.Text());
}

}  // namespace launcher::fuzz
