// The kinds of finding: docs/media.md lists those of the table, and each has a test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "mediatool/validate/findings.h"
#include "tests/mediatool/validate/findings_list.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;
using mediatool::FindingText;
using mediatool::Level;

// The severities of each kind: "warning or error" where it depends.
using Kinds = std::map<std::string, std::string>;

Kinds KindsOfTheTable() {
    std::map<std::string, std::set<Level>> levels;
    for (const FindingText& text : mediatool::findings::kTexts)
        levels[mediatool::IdentifierOf(text)].insert(text.level);
    Kinds kinds;
    for (const auto& [identifier, all] : levels)
        for (const Level level : all)
            kinds[identifier] += (kinds[identifier].empty() ? "" : " or ") + LevelName(level);
    return kinds;
}

// The rows "| `name` | severity | ..." of the page.
Kinds KindsOfThePage() {
    const std::string page = ReadFile(FromUtf8(SOURCE_FOLDER) / "docs" / "media.md");
    const std::string list = page.substr(page.find("## All findings"));
    static const std::regex row("\\| `([a-z0-9-]+)` \\| ([a-z ]+) \\| [^|]+ \\|");
    Kinds kinds;
    for (std::sregex_iterator i(list.begin(), list.end(), row), end; i != end; ++i)
        kinds.insert({i->str(1), i->str(2)});
    return kinds;
}

TEST(FindingKinds, AreListedWithTheirSeveritiesInTheDocumentation) {
    EXPECT_THAT(KindsOfThePage(), testing::ContainerEq(KindsOfTheTable()));
}

// All sentences, as people read them: a change of one is a decision.
TEST(FindingTexts, AreThoseOfTheList) {
    std::string texts;
    for (const FindingText& text : mediatool::findings::kTexts)
        texts += std::string(text.name) + ": " + LevelName(text.level) + "\n  " + text.what +
                 "\n  " + text.why + "\n  " + text.action + "\n";
    const stdfs::path list = FromUtf8(SOURCE_FOLDER) / "tests" / "mediatool" / "validate";
    EXPECT_EQ(texts, ReadFile(list / "finding_texts.txt"));
}

TEST(FindingKinds, HaveATestEach) {
    std::string tests;
    for (const auto& entry :
         stdfs::recursive_directory_iterator(FromUtf8(SOURCE_FOLDER) / "tests" / "mediatool"))
        if (entry.path().extension() == ".cpp") tests += ReadFile(entry.path());
    for (const auto& [identifier, severities] : KindsOfTheTable())
        EXPECT_NE(tests.find("\"" + identifier + "\""), std::string::npos) << identifier;
}

TEST(FindingsList, HasNothingWithoutATest) {
    EXPECT_THAT(ListedWithoutATest(), testing::IsEmpty());
}

}  // namespace
}  // namespace launcher::test
