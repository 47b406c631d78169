#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/mediatool/support/sample_media.h"

namespace launcher::test {

using mediatool::Finding;
using mediatool::Layout;
using mediatool::Level;
using mediatool::Validation;

// One kind of mistake: what is done to a media without mistakes, and the finding that names it.
struct Mistake {
    const char* id;
    Level level;
    Layout layout;
    void (*make)(SampleMedia& media);
    const char* variant = "";  // tells apart rows of one id
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

// What is found in a media of this layout before any mistake is made. Looked for once: every row
// asks.
inline const Validation& WithoutMistakes(Layout layout) {
    static std::map<Layout, Validation> validations;
    const auto known = validations.find(layout);
    if (known != validations.end()) return known->second;
    return validations.emplace(layout, SampleMedia(layout).Validate()).first->second;
}

class MistakeTest : public testing::TestWithParam<Mistake> {
  protected:
    // Makes the mistake in a media that did not have it. It is found by its name, and all is said
    // about it.
    static void ExpectToBeFound(const Mistake& mistake) {
        ASSERT_FALSE(Has(WithoutMistakes(mistake.layout), mistake.id))
            << "before the mistake was made";
        SampleMedia media(mistake.layout);
        mistake.make(media);
        const Validation validation = media.Validate();
        const std::vector<Finding> findings = validation.findings.Sorted();
        const auto found = std::ranges::find(findings, mistake.id, &Finding::id);
        ASSERT_NE(found, findings.end()) << "found only: " << Ids(validation);
        EXPECT_EQ(found->level, mistake.level);
        EXPECT_FALSE(found->file.empty());
        EXPECT_FALSE(found->what.empty());
        EXPECT_FALSE(found->why.empty());
        EXPECT_FALSE(found->action.empty());
    }
};

}  // namespace launcher::test
