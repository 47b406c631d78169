#include "fs/path.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>

namespace launcher {
namespace {

struct Normalised {
    const char* text;
    const char* result;
    std::int64_t rootEnd;
};
class PathConstruction : public testing::TestWithParam<Normalised> {};

TEST_P(PathConstruction, NormalisesTheTextAndFindsTheRoot) {
    const Normalised& row = GetParam();
    const Path path(row.text);
    EXPECT_EQ(path.Text(), row.result) << "from " << row.text;
    EXPECT_EQ(path.RootEnd(), row.rootEnd) << "from " << row.text;
    EXPECT_EQ(IsEmpty(path), path.Text().empty());
}

// Slashes become backslashes; doubled ones and trailing ones go.
INSTANTIATE_TEST_SUITE_P(Separators, PathConstruction,
                         testing::Values(Normalised{"", "", -1}, Normalised{"a", "a", -1},
                                         Normalised{"c:/a//b/", R"(c:\a\b)", 1},
                                         Normalised{R"(C:\\\\a\\\b\\\\)", R"(C:\a\b)", 1},
                                         Normalised{R"(a\/b/\c)", R"(a\b\c)", -1},
                                         Normalised{R"(C:\)", "C:", 1}, Normalised{"///", "", -1},
                                         Normalised{R"(\\)", "", -1}, Normalised{R"(\)", "", -1},
                                         Normalised{"/", "", -1}));

// A drive's root ends at its colon, whatever follows; only a letter names a drive.
INSTANTIATE_TEST_SUITE_P(Drives, PathConstruction,
                         testing::Values(Normalised{R"(C:\dir)", R"(C:\dir)", 1},
                                         Normalised{"z:", "z:", 1}, Normalised{"A:x", "A:x", 1},
                                         Normalised{"a:", "a:", 1}, Normalised{"Z:", "Z:", 1},
                                         Normalised{R"(1:\x)", "", -1}, Normalised{"@:", "", -1},
                                         Normalised{"[:", "", -1}, Normalised{"`:", "", -1},
                                         Normalised{"{:", "", -1}, Normalised{R"(\:x)", "", -1},
                                         Normalised{R"(ab:\x)", R"(ab:\x)", -1}));

// A network path's root ends with the share's name; without a server and a share it is no path.
INSTANTIATE_TEST_SUITE_P(
    Shares, PathConstruction,
    testing::Values(Normalised{R"(\\srv\share\dir\)", R"(\\srv\share\dir)", 10},
                    Normalised{R"(\\srv\share)", R"(\\srv\share)", 10},
                    Normalised{"//srv/s/d", R"(\\srv\s\d)", 6},
                    Normalised{R"(\\\srv\share)", R"(\\srv\share)", 10},
                    Normalised{R"(\\srv\\share)", R"(\\srv\share)", 10},
                    Normalised{R"(\\?\C:\dir)", R"(\\?\C:\dir)", 5}, Normalised{R"(\\srv)", "", -1},
                    Normalised{R"(\\srv\)", "", -1}, Normalised{R"(\\\)", "", -1}));

// A single leading backslash is no root.
INSTANTIATE_TEST_SUITE_P(Relative, PathConstruction,
                         testing::Values(Normalised{R"(\dir)", R"(\dir)", -1},
                                         Normalised{R"(dir\sub)", R"(dir\sub)", -1},
                                         Normalised{R"(a\\b)", R"(a\b)", -1},
                                         Normalised{".", ".", -1},
                                         Normalised{R"(..\x)", R"(..\x)", -1}));

// One pair of outer quotes goes. A double quote alone is no pair; a single quote alone is one.
INSTANTIATE_TEST_SUITE_P(
    Quotes, PathConstruction,
    testing::Values(Normalised{R"("C:\x")", R"(C:\x)", 1}, Normalised{R"('C:\x')", R"(C:\x)", 1},
                    Normalised{R"(")", R"(")", -1}, Normalised{"'", "", -1},
                    Normalised{R"("")", "", -1}, Normalised{"''", "", -1},
                    Normalised{R"("a')", R"("a')", -1}, Normalised{R"("a)", R"("a)", -1},
                    Normalised{R"(a")", R"(a")", -1}, Normalised{"a'b", "a'b", -1},
                    Normalised{R"(""a"")", R"("a")", -1}, Normalised{R"("'a'")", "'a'", -1},
                    Normalised{R"("C:\x\")", R"(C:\x)", 1},
                    Normalised{R"("C:\x"\)", R"("C:\x")", -1}));

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

struct Joined {
    const char* left;
    const char* right;
    const char* result;
    std::int64_t rootEnd;
};
class JoinTable : public testing::TestWithParam<Joined> {};
// One backslash is put between the two, and the whole is normalised.
INSTANTIATE_TEST_SUITE_P(Path, JoinTable,
                         testing::Values(Joined{R"(C:\a)", "b", R"(C:\a\b)", 1},
                                         Joined{R"(C:\a)", R"(\b\)", R"(C:\a\b)", 1},
                                         Joined{R"(C:\a)", "b/c", R"(C:\a\b\c)", 1},
                                         Joined{"C:", "b", R"(C:\b)", 1},
                                         Joined{R"(C:\a)", "", R"(C:\a)", 1},
                                         Joined{"", "b", R"(\b)", -1}, Joined{"", "", "", -1},
                                         Joined{"", R"(\srv\share)", R"(\\srv\share)", 10},
                                         Joined{R"(\\srv\share)", "x", R"(\\srv\share\x)", 10},
                                         Joined{R"(C:\a)", R"("b")", R"(C:\a\"b")", 1},
                                         Joined{R"(C:\a)", "..", R"(C:\a\..)", 1}));

TEST_P(JoinTable, GivesANormalisedPath) {
    const Joined& row = GetParam();
    const Path path = Join(Path(row.left), row.right);
    EXPECT_EQ(path.Text(), row.result);
    EXPECT_EQ(path.RootEnd(), row.rootEnd);
}

struct Split {
    const char* path;
    const char* parent;
    const char* fileName;
};
class SplitTable : public testing::TestWithParam<Split> {};
// A drive and a share have neither a parent nor a name.
INSTANTIATE_TEST_SUITE_P(
    Path, SplitTable,
    testing::Values(Split{R"(C:\dir)", "C:", "dir"}, Split{R"(C:\dir\f.txt)", R"(C:\dir)", "f.txt"},
                    Split{R"(C:\a\b)", R"(C:\a)", "b"}, Split{"C:", "", ""},
                    Split{R"(C:\)", "", ""}, Split{"C:x", "", ""}, Split{"C:xy", "", "y"},
                    Split{R"(\\srv\share\x)", R"(\\srv\share)", "x"},
                    Split{R"(\\srv\share\x\y)", R"(\\srv\share\x)", "y"},
                    Split{R"(\\srv\share)", "", ""}, Split{"name", "", "name"}, Split{"", "", ""},
                    Split{R"(dir\sub)", "dir", "sub"}, Split{R"(\dir)", "", "dir"},
                    Split{R"(\dir\sub)", R"(\dir)", "sub"}, Split{R"(C:\a\.)", R"(C:\a)", "."}));

TEST_P(SplitTable, GivesParentAndFileName) {
    const Split& row = GetParam();
    EXPECT_EQ(Parent(Path(row.path)).Text(), row.parent);
    EXPECT_EQ(FileName(Path(row.path)), row.fileName);
}

struct Relation {
    const char* target;
    const char* base;
    const char* result;
};
class RelativePathTable : public testing::TestWithParam<Relation> {};
// Whole components are compared, exactly; a step up for each that is left of the base.
INSTANTIATE_TEST_SUITE_P(Path, RelativePathTable,
                         testing::Values(Relation{R"(C:\a\b\c)", R"(C:\a)", R"(b\c)"},
                                         Relation{R"(C:\a)", R"(C:\a\b\c)", R"(..\..)"},
                                         Relation{R"(C:\a\x\y)", R"(C:\a\b)", R"(..\x\y)"},
                                         Relation{R"(C:\a)", R"(C:\a)", ""},
                                         Relation{"C:", "C:", ""}, Relation{R"(C:\a)", "C:", "a"},
                                         Relation{"C:", R"(C:\a\b)", R"(..\..)"},
                                         Relation{R"(C:\ab)", R"(C:\a)", R"(..\ab)"},
                                         Relation{R"(C:\a\B)", R"(C:\a\b)", R"(..\B)"},
                                         Relation{R"(C:\a)", R"(D:\a)", ""},
                                         Relation{R"(C:\a)", R"(c:\a)", ""},
                                         Relation{R"(\\s\h\a\b)", R"(\\s\h\a)", "b"},
                                         Relation{R"(\\s\h\a)", R"(\\s\H\a)", ""},
                                         Relation{R"(\\s\h)", R"(\\s\h\a)", ".."}));

TEST_P(RelativePathTable, LeadsFromTheBaseToTheTarget) {
    const Relation& row = GetParam();
    EXPECT_EQ(RelativePath(Path(row.target), Path(row.base)).Text(), row.result);
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
