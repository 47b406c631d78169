#include "fs/text.h"

#include <gtest/gtest.h>

#include <string>

namespace launcher {
namespace {

// The search begins at the start index and goes on after what was put in: neither what lies before
// nor the replacement itself is searched.
TEST(ReplaceAll, ReplacesAndCounts) {
    struct {
        const char* text;
        const char* find;
        const char* replacement;
        std::size_t start;
        const char* result;
        std::size_t count;
    } const rows[] = {{"", "x", "y", 0, "", 0},          {"abc", "x", "y", 0, "abc", 0},
                      {"xax", "x", "yy", 0, "yyayy", 2}, {"xax", "x", "yy", 1, "xayy", 1},
                      {"xax", "x", "", 0, "a", 2},       {"aaaa", "aa", "a", 0, "aa", 2},
                      {"aaaa", "aa", "a", 1, "aaa", 1},  {"xx", "x", "xx", 0, "xxxx", 2},
                      {"x", "x", "y", 5, "x", 0}};
    for (const auto& row : rows) {
        std::string text = row.text;
        EXPECT_EQ(ReplaceAll(text, row.find, row.replacement, row.start), row.count) << row.text;
        EXPECT_EQ(text, row.result);
    }
}

}  // namespace
}  // namespace launcher
