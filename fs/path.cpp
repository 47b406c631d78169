#include "fs/path.h"

#include <cstddef>
#include <string_view>
#include <utility>

#include "fs/text.h"

namespace launcher {
namespace {

constexpr char kSeparator = '\\';

bool IsAsciiLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

// Deliberately unequal: a lone double quote stays, a lone single quote is stripped to nothing.
void StripOuterQuotes(std::string& text) {
    const bool doubleQuoted = text.size() > 1 && text.front() == '"' && text.back() == '"';
    const bool singleQuoted = text.front() == '\'' && text.back() == '\'';
    if (!doubleQuoted && !singleQuoted) return;
    text.erase(0, 1);
    if (!text.empty()) text.pop_back();
}

// The index of the last character of a network path's share name, for a normalised text that begins
// with two backslashes; kNotAnalysed without a share.
std::int64_t ShareEnd(const std::string& text) {
    const std::size_t serverEnd = text.find(kSeparator, 2);
    if (serverEnd == std::string::npos) return Path::kNotAnalysed;
    const std::size_t shareEnd = text.find(kSeparator, serverEnd + 1);
    return static_cast<std::int64_t>(shareEnd == std::string::npos ? text.size() : shareEnd) - 1;
}

// The root of a normalised text, kNotAnalysed when it is invalid.
std::int64_t AnalyseRoot(const std::string& text) {
    if (text.size() <= 1) return Path::kRelative;
    if (text[1] == ':') return IsAsciiLetter(text[0]) ? 1 : Path::kNotAnalysed;
    if (text[0] != kSeparator || text[1] != kSeparator) return Path::kRelative;
    return ShareEnd(text);
}

// Cuts the first backslash-separated component off the front of `rest` and returns it.
std::string_view TakeComponent(std::string_view& rest) {
    const std::size_t end = rest.find(kSeparator);
    const std::string_view component = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return component;
}

// What follows the root and its separator; the whole text of a relative path.
std::string_view AfterRoot(const Path& path) {
    const std::string_view text = path.Text();
    if (path.RootEnd() < 0) return text;
    const std::size_t start = static_cast<std::size_t>(path.RootEnd()) + 2;
    return start < text.size() ? text.substr(start) : std::string_view();
}

}  // namespace

Path::Path(std::string text) : text_(std::move(text)), rootEnd_(kNotAnalysed) {
    NormalizePathText(text_);
    rootEnd_ = AnalyseRoot(text_);
    if (rootEnd_ == kNotAnalysed) {
        text_.clear();
        rootEnd_ = kRelative;
    }
}

Path::Path(Path&& other) noexcept
    : text_(std::exchange(other.text_, {})),
      rootEnd_(std::exchange(other.rootEnd_, kNotAnalysed)) {}

Path& Path::operator=(Path&& other) noexcept {
    if (this != &other) {
        text_ = std::exchange(other.text_, {});
        rootEnd_ = std::exchange(other.rootEnd_, kNotAnalysed);
    }
    return *this;
}

bool IsEmpty(const Path& path) {
    return path.Text().empty();
}

Path Join(const Path& left, const std::string& right) {
    return Path(left.Text() + kSeparator + right);
}

Path Join(Path path, std::initializer_list<std::string> components) {
    for (const std::string& component : components)
        path = Join(path, component);
    return path;
}

Path Parent(const Path& path) {
    const std::size_t last = path.Text().rfind(kSeparator);
    if (last == std::string::npos || static_cast<std::int64_t>(last) < path.RootEnd()) return {};
    return Path(path.Text().substr(0, last));
}

std::string FileName(const Path& path) {
    const std::string_view part = AfterRoot(path);
    return std::string(part.substr(part.rfind(kSeparator) + 1));  // npos + 1 is 0: the whole part
}

void NormalizePathText(std::string& text) {
    if (text.empty()) return;
    StripOuterQuotes(text);
    ReplaceAll(text, "/", kBackslash, 0);
    // From index 1: the two backslashes that begin a network path stay. One pass only halves a run.
    while (ReplaceAll(text, "\\\\", kBackslash, 1) > 0) {
    }
    while (!text.empty() && text.back() == kSeparator)
        text.pop_back();
}

Path RelativePath(const Path& target, const Path& base) {
    const auto root = [](const Path& path) {
        return std::string_view(path.Text())
            .substr(0, static_cast<std::size_t>(path.RootEnd() + 1));
    };
    if (root(target) != root(base)) return {};
    std::string_view down = AfterRoot(target);
    std::string_view up = AfterRoot(base);
    while (!down.empty() && !up.empty()) {
        std::string_view downRest = down;
        std::string_view upRest = up;
        if (TakeComponent(downRest) != TakeComponent(upRest)) break;
        down = downRest;
        up = upRest;
    }
    std::string relative;
    while (!up.empty()) {
        TakeComponent(up);
        relative += "..\\";
    }
    return Path(relative.append(down));
}

}  // namespace launcher
