#pragma once

// All that validate says in a test: findings.txt has it under the test's name.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "mediatool/validate/findings.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

// The findings of each test, by the name of the test.
inline const std::map<std::string, std::string>& FindingsList() {
    static const std::map<std::string, std::string> list = [] {
        std::istringstream lines(ReadFile(FromUtf8(SOURCE_FOLDER) / "tests" / "mediatool" /
                                          "validate" / "findings.txt"));
        std::map<std::string, std::string> sections;
        std::string name;
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with("== "))
                name = line.substr(3);
            else
                sections[name] += line + "\n";
        return sections;
    }();
    return list;
}

// With T: for the temporary folder, and in ASCII.
inline std::string Anonymous(std::string text) {
    const std::string folder =
        ToUtf8(UsersTemp() / std::wstring(kTemporaryFolderName));  // without the rest of its name
    for (std::size_t at = 0; (at = text.find(folder, at)) != std::string::npos;) {
        const std::size_t end = text.find_first_of("\\\"\n", at + folder.size());
        text.replace(at, end - at, "T:");
    }
    std::string shown;
    for (const char c : text) {
        char escaped[] = "\\xFF";
        if (static_cast<signed char>(c) < 0)
            std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned char>(c));
        shown += static_cast<signed char>(c) < 0 ? escaped : std::string(1, c);
    }
    return shown;
}

inline std::string Listed(const std::vector<mediatool::Finding>& findings) {
    std::string text;
    for (const mediatool::Finding& each : findings)
        text += LevelName(each.level) + " " + each.id + "\n  " + each.file + "\n  " + each.what +
                "\n  " + each.why + "\n  " + each.action + "\n";
    return Anonymous(text);
}

// Every word, file and value of them is the list's.
inline void ExpectListed(const std::vector<mediatool::Finding>& findings) {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string(test.test_suite_name()) + "." + test.name();
    const auto listed = FindingsList().find(name);
    EXPECT_EQ(Listed(findings), listed == FindingsList().end() ? "" : listed->second)
        << "findings.txt, == " << name;
}

// What the list has under the names of this program's suites without there being such a test.
inline std::vector<std::string> ListedWithoutATest() {
    std::map<std::string, std::set<std::string>> tests;  // by suite
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int k = 0; k < suite.total_test_count(); ++k)
            tests[suite.name()].insert(suite.GetTestInfo(k)->name());
    }
    std::vector<std::string> left;
    for (const auto& [name, findings] : FindingsList()) {
        const std::size_t dot = name.find('.');
        const auto suite = tests.find(name.substr(0, dot));
        if (suite != tests.end() && !suite->second.contains(name.substr(dot + 1)))
            left.push_back(name);
    }
    return left;
}

}  // namespace launcher::test
