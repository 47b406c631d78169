// The dry run and the watched run against the launcher itself: all get the same media, command
// line, environment and Windows, made from a number, and have to come to the same end.
//
// AGREEMENT_CASES and AGREEMENT_SEED set how many cases each of the 15 tests has and where their
// numbers begin.
//
// The dry run and the launcher are the same object code but for the outermost effects. So a mistake
// in the launcher's own rules is in both and agrees with itself here, by design: this finds what
// the dry run foresees wrongly. That the rules are right is for the tests of the launcher.

#include <gtest/gtest.h>
#include <windows.h>
// windows.h first: the shell headers need it.
#include <shlobj.h>

#include <algorithm>

#include "fs/environment.h"
#include "tests/e2e/support/launcher_run.h"
#include "tests/mediatool/agreement/case.h"
#include "tests/mediatool/agreement/comparison.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

unsigned Setting(const char* name, unsigned usual) {
    const std::string value = GetEnvVar(name);
    return value.empty() ? usual : static_cast<unsigned>(std::stoul(value));
}

// Of each of the 15 tests.
unsigned CasesOfATest() {
    return Setting("AGREEMENT_CASES", 2);
}

constexpr unsigned kTests = 5;

// The first case's number.
unsigned FirstSeed() {
    return Setting("AGREEMENT_SEED", 1000);
}

// Of how many runs each kind of end came, all cases together.
struct Tally {
    const char* what;
    std::size_t oneIn;  // a generator that has it in fewer runs than one of so many went wrong
    std::size_t count = 0;
};

class Agreement : public testing::TestWithParam<unsigned> {
  protected:
    void SetUp() override {
        if (!IsUserAnAdmin()) GTEST_SKIP() << "needs a console that runs as administrator";
    }

    // Ten cases in a row have one of each purpose, and so each kind of end.
    static void TearDownTestSuite() {
        std::printf("%zu runs", compared);
        for (const Tally& tally : tallies)
            std::printf(", %zu %s", tally.count, tally.what);
        std::puts("");
        for (const Tally& tally : tallies) {
            if (areSomeLeftOut || compared % 10 != 0 || compared < tally.oneIn) continue;
            EXPECT_GE(tally.count * tally.oneIn, compared) << tally.what;
        }
    }

    static void Compare(unsigned seed) {
        const TemporaryFolder files;
        const TemporaryFolder work;
        const std::optional<Case> made = MakeCase(seed, files.Dir(), work.Dir());
        if (!made) {
            areSomeLeftOut = true;
            return;
        }
        ++compared;
        std::string trace = "seed " + std::to_string(seed) + ": " + ToUtf8(made->launcher) + " " +
                            QuoteArguments(made->arguments);
        for (const std::string& feature : made->features)
            trace += "; " + feature;
        for (const auto& [name, value] : made->variables)
            trace += "; " + name + "=" + value;
        SCOPED_TRACE(trace);
        for (const std::string& what :
             Comparison(*made, files.Dir(), work.Dir(), /*oneStream=*/seed % 2 == 0).Run()) {
            const auto tally = std::ranges::find(tallies, what, &Tally::what);
            if (tally != tallies.end()) ++tally->count;
        }
    }

    static inline std::size_t compared = 0;
    static inline bool areSomeLeftOut = false;
    static inline std::vector<Tally> tallies = {{"started", 5},
                                                {"refused", 5},
                                                {"copies", 10},
                                                {"failed copies", 10},
                                                {"failed starts", 10},
                                                {"dialogs", 10},
                                                {"picked folders", 30},
                                                {"whole sets", 10},
                                                {"watched runs", 10},
                                                {"pretended machines", 10},
                                                {"by -installerPath", 20},
                                                {"by ZEP_TALVOR_Installer", 20}};
};

TEST_P(Agreement, OfGeneratedRuns) {
    const unsigned cases = CasesOfATest();
    for (unsigned i = 0; i < cases && !HasFailure(); ++i)
        Compare(FirstSeed() + GetParam() * cases + i);
    if (areSomeLeftOut) GTEST_SKIP() << kNoNetwork;
}

// Three suites, which can run side by side.
INSTANTIATE_TEST_SUITE_P(First, Agreement, testing::Range(0u, kTests));
INSTANTIATE_TEST_SUITE_P(Second, Agreement, testing::Range(kTests, 2 * kTests));
INSTANTIATE_TEST_SUITE_P(Third, Agreement, testing::Range(2 * kTests, 3 * kTests));

}  // namespace
}  // namespace launcher::test
