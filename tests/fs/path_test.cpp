#include "fs/path.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

namespace launcher {
namespace {

TEST(Path, NormalisesTheTextAndFindsTheRoot) {
    struct {
        const char* text;
        const char* result;
        std::int64_t rootEnd;
    } const rows[] = {
        // Slashes become backslashes; doubled ones and trailing ones go.
        {"", "", -1},
        {"a", "a", -1},
        {"c:/a//b/", R"(c:\a\b)", 1},
        {R"(C:\\\\a\\\b\\\\)", R"(C:\a\b)", 1},
        {R"(a\/b/\c)", R"(a\b\c)", -1},
        {R"(C:\)", "C:", 1},
        {"///", "", -1},
        {R"(\\)", "", -1},
        {R"(\)", "", -1},
        {"/", "", -1},
        // A drive's root ends at its colon, whatever follows; only a letter names a drive.
        {R"(C:\dir)", R"(C:\dir)", 1},
        {"z:", "z:", 1},
        {"A:x", "A:x", 1},
        {"a:", "a:", 1},
        {"Z:", "Z:", 1},
        {R"(1:\x)", "", -1},
        {"@:", "", -1},
        {"[:", "", -1},
        {"`:", "", -1},
        {"{:", "", -1},
        {R"(\:x)", "", -1},
        {R"(ab:\x)", R"(ab:\x)", -1},
        // A network path's root ends with the share's name; without a server and a share it is no
        // path.
        {R"(\\srv\share\dir\)", R"(\\srv\share\dir)", 10},
        {R"(\\srv\share)", R"(\\srv\share)", 10},
        {"//srv/s/d", R"(\\srv\s\d)", 6},
        {R"(\\\srv\share)", R"(\\srv\share)", 10},
        {R"(\\srv\\share)", R"(\\srv\share)", 10},
        {R"(\\?\C:\dir)", R"(\\?\C:\dir)", 5},
        {R"(\\srv)", "", -1},
        {R"(\\srv\)", "", -1},
        {R"(\\\)", "", -1},
        // A single leading backslash is no root.
        {R"(\dir)", R"(\dir)", -1},
        {R"(dir\sub)", R"(dir\sub)", -1},
        {R"(a\\b)", R"(a\b)", -1},
        {".", ".", -1},
        {R"(..\x)", R"(..\x)", -1},
        // One pair of outer quotes goes. A double quote alone is no pair; a single quote alone is
        // one.
        {R"("C:\x")", R"(C:\x)", 1},
        {R"('C:\x')", R"(C:\x)", 1},
        {R"(")", R"(")", -1},
        {"'", "", -1},
        {R"("")", "", -1},
        {"''", "", -1},
        {R"("a')", R"("a')", -1},
        {R"("a)", R"("a)", -1},
        {R"(a")", R"(a")", -1},
        {"a'b", "a'b", -1},
        {R"(""a"")", R"("a")", -1},
        {R"("'a'")", "'a'", -1},
        {R"("C:\x\")", R"(C:\x)", 1},
        {R"("C:\x"\)", R"("C:\x")", -1},
    };
    for (const auto& row : rows) {
        const Path path(row.text);
        EXPECT_EQ(path.Text(), row.result) << "from " << row.text;
        EXPECT_EQ(path.RootEnd(), row.rootEnd) << "from " << row.text;
        EXPECT_EQ(IsEmpty(path), path.Text().empty());
    }
}

TEST(Path, IsEmptyAndRelativeByDefault) {
    EXPECT_EQ(Path().Text(), "");
    EXPECT_EQ(Path().RootEnd(), -1);
    EXPECT_TRUE(IsEmpty(Path()));
}

TEST(Path, CopiesLikeAString) {
    const Path path(R"(C:\dir)");
    const Path copy = path;
    Path assigned;
    assigned = copy;
    EXPECT_EQ(path.Text(), R"(C:\dir)");
    EXPECT_EQ(assigned.Text(), R"(C:\dir)");
    EXPECT_EQ(assigned.RootEnd(), 1);
}

TEST(Path, LeavesAnUnanalysedEmptyPathWhenMovedFrom) {
    Path first(R"(\\srv\share\dir)");
    Path second(std::move(first));
    EXPECT_EQ(second.Text(), R"(\\srv\share\dir)");
    EXPECT_EQ(second.RootEnd(), 10);
    EXPECT_EQ(first.Text(), "");
    EXPECT_EQ(first.RootEnd(), -2);

    first = std::move(second);
    EXPECT_EQ(first.Text(), R"(\\srv\share\dir)");
    EXPECT_EQ(first.RootEnd(), 10);
    EXPECT_EQ(second.Text(), "");
    EXPECT_EQ(second.RootEnd(), -2);
    static_assert(std::is_nothrow_move_constructible_v<Path>);
    static_assert(std::is_nothrow_move_assignable_v<Path>);
}

TEST(Path, SurvivesAMoveOntoItself) {
    Path path(R"(C:\dir)");
    Path& same = path;
    path = std::move(same);
    EXPECT_EQ(path.Text(), R"(C:\dir)");
    EXPECT_EQ(path.RootEnd(), 1);
}

// One backslash is put between the two, and the whole is normalised.
TEST(Path, JoinsToANormalisedPath) {
    struct {
        const char* left;
        const char* right;
        const char* result;
        std::int64_t rootEnd;
    } const rows[] = {{R"(C:\a)", "b", R"(C:\a\b)", 1},
                      {R"(C:\a)", R"(\b\)", R"(C:\a\b)", 1},
                      {R"(C:\a)", "b/c", R"(C:\a\b\c)", 1},
                      {"C:", "b", R"(C:\b)", 1},
                      {R"(C:\a)", "", R"(C:\a)", 1},
                      {"", "b", R"(\b)", -1},
                      {"", "", "", -1},
                      {"", R"(\srv\share)", R"(\\srv\share)", 10},
                      {R"(\\srv\share)", "x", R"(\\srv\share\x)", 10},
                      {R"(C:\a)", R"("b")", R"(C:\a\"b")", 1},
                      {R"(C:\a)", "..", R"(C:\a\..)", 1}};
    for (const auto& row : rows) {
        const Path path = Join(Path(row.left), row.right);
        EXPECT_EQ(path.Text(), row.result);
        EXPECT_EQ(path.RootEnd(), row.rootEnd);
    }
    EXPECT_EQ(Join(Path("C:"), {"a", "b/", "c"}).Text(), R"(C:\a\b\c)");
}

// A drive and a share have neither a parent nor a name.
TEST(Path, SplitsIntoParentAndFileName) {
    struct {
        const char* path;
        const char* parent;
        const char* fileName;
    } const rows[] = {{R"(C:\dir)", "C:", "dir"},
                      {R"(C:\dir\f.txt)", R"(C:\dir)", "f.txt"},
                      {R"(C:\a\b)", R"(C:\a)", "b"},
                      {"C:", "", ""},
                      {R"(C:\)", "", ""},
                      {"C:x", "", ""},
                      {"C:xy", "", "y"},
                      {R"(\\srv\share\x)", R"(\\srv\share)", "x"},
                      {R"(\\srv\share\x\y)", R"(\\srv\share\x)", "y"},
                      {R"(\\srv\share)", "", ""},
                      {"name", "", "name"},
                      {"", "", ""},
                      {R"(dir\sub)", "dir", "sub"},
                      {R"(\dir)", "", "dir"},
                      {R"(\dir\sub)", R"(\dir)", "sub"},
                      {R"(C:\a\.)", R"(C:\a)", "."}};
    for (const auto& row : rows) {
        EXPECT_EQ(Parent(Path(row.path)).Text(), row.parent) << row.path;
        EXPECT_EQ(FileName(Path(row.path)), row.fileName) << row.path;
    }
}

// Whole components are compared, exactly; a step up for each that is left of the base.
TEST(RelativePath, LeadsFromTheBaseToTheTarget) {
    struct {
        const char* target;
        const char* base;
        const char* result;
    } const rows[] = {{R"(C:\a\b\c)", R"(C:\a)", R"(b\c)"},
                      {R"(C:\a)", R"(C:\a\b\c)", R"(..\..)"},
                      {R"(C:\a\x\y)", R"(C:\a\b)", R"(..\x\y)"},
                      {R"(C:\a)", R"(C:\a)", ""},
                      {"C:", "C:", ""},
                      {R"(C:\a)", "C:", "a"},
                      {"C:", R"(C:\a\b)", R"(..\..)"},
                      {R"(C:\ab)", R"(C:\a)", R"(..\ab)"},
                      {R"(C:\a\B)", R"(C:\a\b)", R"(..\B)"},
                      {R"(C:\a)", R"(D:\a)", ""},
                      {R"(C:\a)", R"(c:\a)", ""},
                      {R"(\\s\h\a\b)", R"(\\s\h\a)", "b"},
                      {R"(\\s\h\a)", R"(\\s\H\a)", ""},
                      {R"(\\s\h)", R"(\\s\h\a)", ".."}};
    for (const auto& row : rows)
        EXPECT_EQ(RelativePath(Path(row.target), Path(row.base)).Text(), row.result)
            << row.target << " from " << row.base;
}

TEST(NormalizePathText, DoesNotJudgeTheRoot) {
    for (const auto& [text, result] :
         {std::pair{"1:/x//", R"(1:\x)"}, std::pair{R"('\\srv\')", R"(\\srv)"}, std::pair{"", ""},
          std::pair{"//", ""}, std::pair{"c:/a//b/", R"(c:\a\b)"}}) {
        std::string changed = text;
        NormalizePathText(changed);
        EXPECT_EQ(changed, result) << "from " << text;
    }
}

}  // namespace
}  // namespace launcher
