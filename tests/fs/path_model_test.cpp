// Paths against a second, deliberately slow way to work them out: character by character and
// component by component, without index arithmetic.

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "fs/path.h"

namespace launcher {
namespace {

using Components = std::vector<std::string>;

Components SplitAtBackslashes(const std::string& text) {
    Components parts(1);
    for (const char c : text) {
        if (c == '\\')
            parts.emplace_back();
        else
            parts.back() += c;
    }
    return parts;
}

std::string JoinWithBackslashes(const Components& parts) {
    std::string text;
    for (std::size_t i = 0; i < parts.size(); ++i)
        text += (i == 0 ? "" : "\\") + parts[i];
    return text;
}

bool IsQuoted(const std::string& text) {
    if (text == "'") return true;
    return text.size() > 1 && text.front() == text.back() &&
           (text.front() == '"' || text.front() == '\'');
}

std::string ModelText(std::string text) {
    if (IsQuoted(text)) text = text.size() < 2 ? "" : text.substr(1, text.size() - 2);
    std::string result;
    for (char c : text) {
        if (c == '/') c = '\\';
        // Only the second character may repeat a backslash: it makes a network path.
        const bool repeats = result.size() > 1 && result.back() == '\\' && c == '\\';
        if (!repeats) result += c;
    }
    while (result.ends_with('\\'))
        result.erase(result.size() - 1);
    return result;
}

// The root that a normalised text begins with. `valid` is false for a text that only looks rooted.
struct ModelRoot {
    std::string text;
    bool valid = true;
};

ModelRoot RootOf(const std::string& text) {
    const Components parts = SplitAtBackslashes(text);
    if (text.starts_with("\\\\")) {
        // "", "", server, share
        if (parts.size() < 4) return {"", false};
        return {"\\\\" + parts[2] + "\\" + parts[3]};
    }
    if (text.size() < 2 || text[1] != ':') return {};
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    if (letters.find(text[0]) == std::string::npos) return {"", false};
    return {text.substr(0, 2)};
}

std::string ModelPath(const std::string& text) {
    const std::string normalised = ModelText(text);
    return RootOf(normalised).valid ? normalised : "";
}

// What comes after the root, as components; a drive's or share's own separator is not part of it.
Components AfterRoot(const std::string& path) {
    const std::string root = RootOf(path).text;
    std::string rest = path.substr(root.size());
    if (!root.empty() && !rest.empty()) rest.erase(0, 1);
    return rest.empty() ? Components() : SplitAtBackslashes(rest);
}

std::string ModelParent(const std::string& path) {
    Components parts = SplitAtBackslashes(path);
    parts.pop_back();
    const std::string parent = JoinWithBackslashes(parts);
    // Only what still holds the whole root is a parent.
    return parent.size() < RootOf(path).text.size() ? "" : ModelPath(parent);
}

std::string ModelFileName(const std::string& path) {
    const Components parts = AfterRoot(path);
    return parts.empty() ? "" : parts.back();
}

std::string ModelRelative(const std::string& target, const std::string& base) {
    if (RootOf(target).text != RootOf(base).text) return "";
    Components down = AfterRoot(target);
    Components up = AfterRoot(base);
    while (!down.empty() && !up.empty() && down.front() == up.front()) {
        down.erase(down.begin());
        up.erase(up.begin());
    }
    Components steps(up.size(), "..");
    std::move(down.begin(), down.end(), std::back_inserter(steps));
    return ModelPath(JoinWithBackslashes(steps));
}

// Texts of up to nine pieces, mostly of those that mean something in a path.
class Texts {
  public:
    explicit Texts(std::vector<std::string> pieces) : pieces_(std::move(pieces)) {}

    std::string Next() {
        std::string text;
        for (auto count = random_() % 10; count > 0; --count)
            text += pieces_[random_() % pieces_.size()];
        return text;
    }

  private:
    std::mt19937 random_{19951026};
    std::vector<std::string> pieces_;
};

const std::vector<std::string> kPieces = {
    "\\", "\\", "\\\\", "/", "/", "C:", "d:", "1:", ":", "a",        "b",
    "ab", "B",  "..",   ".", " ", "\"", "\"", "'",  "'", "\xC3\xA9", "\xF0\x9F\x92\xBF"};

constexpr int kRounds = 20000;

TEST(PathModel, AgreesOnTextAndRoot) {
    Texts texts(kPieces);
    for (int round = 0; round < kRounds; ++round) {
        const std::string text = texts.Next();
        const Path path(text);
        const std::string model = ModelPath(text);
        ASSERT_EQ(path.Text(), model) << "from " << text;
        const auto rootLength = static_cast<std::int64_t>(RootOf(model).text.size());
        ASSERT_EQ(path.RootEnd(), rootLength - 1) << "from " << text;
        std::string normalised = text;
        NormalizePathText(normalised);
        ASSERT_EQ(normalised, ModelText(text)) << "from " << text;
    }
}

TEST(PathModel, AgreesOnParentAndFileName) {
    Texts texts(kPieces);
    for (int round = 0; round < kRounds; ++round) {
        const Path path(texts.Next());
        ASSERT_EQ(Parent(path).Text(), ModelParent(path.Text())) << path.Text();
        ASSERT_EQ(FileName(path), ModelFileName(path.Text())) << path.Text();
    }
}

TEST(PathModel, AgreesOnJoin) {
    Texts texts(kPieces);
    for (int round = 0; round < kRounds; ++round) {
        const Path left(texts.Next());
        const std::string right = texts.Next();
        ASSERT_EQ(Join(left, right).Text(), ModelPath(left.Text() + "\\" + right))
            << left.Text() << " and " << right;
    }
}

TEST(PathModel, AgreesOnRelativePaths) {
    // Few names, so that many pairs begin alike.
    Texts texts({"\\a", "\\a", "\\b", "\\A", "\\ab"});
    for (int round = 0; round < kRounds; ++round) {
        const char* const roots[] = {"C:", "C:", "C:", "D:", "\\\\s\\h"};
        const Path target(roots[round % 5] + texts.Next());
        const Path base(roots[round / 5 % 5] + texts.Next());
        ASSERT_EQ(RelativePath(target, base).Text(), ModelRelative(target.Text(), base.Text()))
            << target.Text() << " from " << base.Text();
    }
}

}  // namespace
}  // namespace launcher
