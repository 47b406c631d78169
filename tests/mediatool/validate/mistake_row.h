#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "tests/mediatool/support/sample_media.h"
#include "tests/mediatool/validate/findings_list.h"

namespace launcher::test {

using mediatool::Finding;
using mediatool::Layout;
using mediatool::Level;
using mediatool::Validation;

// One kind of mistake: what is done to a medium without mistakes, and the finding that names it.
struct Mistake {
    const char* id;
    Level level;
    Layout layout;
    void (*make)(SampleMedia& media);
    const char* variant = "";  // tells apart rows of one id
    const char* others = "";   // what is found beside it, as Changes() tells it
};

inline void PrintTo(const Mistake& mistake, std::ostream* stream) {
    *stream << mistake.id;
}

// The name of a test: the words of the id and the variant, each with a capital.
inline std::string MistakeName(const testing::TestParamInfo<Mistake>& info) {
    std::string name;
    bool atStart = true;
    for (const char c : std::string(info.param.id) + "-" + info.param.variant) {
        if (c != '-') name += atStart ? static_cast<char>(std::toupper(c)) : c;
        atStart = c == '-';
    }
    return name;
}

inline bool Has(const Validation& validation, const std::string& id) {
    const std::vector<Finding> findings = validation.findings.Sorted();
    return std::ranges::find(findings, id, &Finding::id) != findings.end();
}

inline std::string Ids(const Validation& validation) {
    std::string ids;
    for (const Finding& finding : validation.findings.Sorted())
        ids += finding.id + " (" + finding.file + ") ";
    return ids;
}

// What is found in a medium of this layout before any mistake is made. Looked for once: every row
// asks.
inline const Validation& WithoutMistakes(Layout layout) {
    static std::map<Layout, Validation> validations;
    const auto known = validations.find(layout);
    if (known != validations.end()) return known->second;
    return validations.emplace(layout, SampleMedia(layout).Validate()).first->second;
}

// The kinds that a mistake added, and with a minus those that it took away, in the order of the
// alphabet: "installer-empty -not-for-32-bit-windows". All others are those of a medium without
// mistakes.
inline std::string Changes(const std::vector<Finding>& findings, Layout layout) {
    std::set<std::string> before;
    std::set<std::string> after;
    for (const Finding& finding : WithoutMistakes(layout).findings.Sorted())
        before.insert(finding.id);
    for (const Finding& finding : findings)
        after.insert(finding.id);
    std::string changes;
    const auto add = [&changes](const std::string& text) {
        changes += (changes.empty() ? "" : " ") + text;
    };
    for (const std::string& id : after)
        if (!before.contains(id)) add(id);
    for (const std::string& id : before)
        if (!after.contains(id)) add("-" + id);
    return changes;
}

inline std::string Changes(const Validation& validation, Layout layout = Layout::NotSplit) {
    return Changes(validation.findings.Sorted(), layout);
}

// The same without one kind.
inline std::string ChangesBut(const std::string& id, const Validation& validation, Layout layout) {
    std::vector<Finding> rest = validation.findings.Sorted();
    std::erase_if(rest, [&id](const Finding& finding) { return finding.id == id; });
    return Changes(rest, layout);
}

// All that is said of the kinds that a medium without mistakes does not have is in the list.
inline void ExpectListed(const Validation& validation, Layout layout) {
    std::vector<Finding> findings =
        validation.findings.Sorted(mediatool::Findings::Shown::Readable);
    std::erase_if(findings, [layout](const Finding& finding) {
        return Has(WithoutMistakes(layout), finding.id);
    });
    ExpectListed(findings);
}

class MistakeTest : public testing::TestWithParam<Mistake> {
  protected:
    // Makes the mistake in a medium that did not have it. It is found by its name, and all is said
    // about it; nothing else is found but what the row names.
    static void ExpectToBeFound(const Mistake& mistake) {
        ASSERT_FALSE(Has(WithoutMistakes(mistake.layout), mistake.id))
            << "before the mistake was made";
        SampleMedia media(mistake.layout);
        mistake.make(media);
        const Validation validation = media.Validate();
        const std::vector<Finding> findings = validation.findings.Sorted();
        const auto found = std::ranges::find(findings, mistake.id, &Finding::id);
        ASSERT_NE(found, findings.end()) << "found only: " << Ids(validation);
        EXPECT_EQ(ChangesBut(mistake.id, validation, mistake.layout), mistake.others);
        EXPECT_EQ(found->level, mistake.level);
        ExpectListed(validation, mistake.layout);
    }
};

}  // namespace launcher::test
