// Hostile libraries beside the launcher, under all names that are usual for this.

#include <algorithm>
#include <cstdio>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "tests/security/support/attacked.h"
#include "tests/security/support/hostile_libraries.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::IsSubsetOf;

// What happens in a run, how the control program does the same, and how to bring the launcher to
// it.
struct Occasion {
    const char* name;
    std::vector<std::string> control;
    std::vector<std::string> launcher;
    void (*prepare)(Media&);
    bool (*happened)(const LauncherRun&);
};

void PrintTo(const Occasion& occasion, std::ostream* out) {
    *out << occasion.name;
}

const Occasion kLaunch{"Launch",
                       {},
                       {"-wait"},
                       [](Media& media) { media.AddInstaller("win_b64"); },
                       [](const LauncherRun& run) { return run.report.has_value(); }};
const Occasion kBox{"Box",
                    {"box"},
                    {"-env"},
                    [](Media&) {},
                    [](const LauncherRun& run) { return run.boxes.size() == 1; }};
const Occasion kDialog{"Dialog",
                       {"dialog"},
                       {},
                       [](Media& media) { media.AddMarker("win_b64"); },
                       [](const LauncherRun& run) { return run.dialogs.size() == 1; }};

// Hostile libraries of these names beside both programs.
class Attack {
  public:
    Attack(const std::filesystem::path& launcher, const std::filesystem::path& control,
           const std::vector<std::string>& names, const std::string& order = "native,builtin")
        : launcherSettings_(ToUtf8(launcher.filename()), names, order),
          controlSettings_(ToUtf8(control.filename()), names, order) {
        PlantHostileLibraries(launcher.parent_path(), names);
    }

  private:
    NativeFirst launcherSettings_;
    NativeFirst controlSettings_;
};

std::vector<std::string> Restricted(std::vector<std::string> actions) {
    actions.insert(actions.begin(), "restrict");
    return actions;
}

class LibrarySearch : public AttackedTest, public testing::WithParamInterface<Occasion> {
  protected:
    Attack attack{media.Launcher(), control, UsualNames()};
};

TEST_P(LibrarySearch, FindsNoneBesideTheLauncher) {
    GetParam().prepare(media);
    const AttackedRun attacked = RunAttackedLauncher(GetParam().launcher);
    EXPECT_TRUE(GetParam().happened(attacked.run)) << testing::PrintToString(attacked.run);
    EXPECT_THAT(attacked.loaded, IsEmpty());
}

// The attack itself works: without the restriction these boxes and dialogs load what they find.
class UnrestrictedSearch : public LibrarySearch {};

TEST_P(UnrestrictedSearch, FindsThemBesideTheProgram) {
    if (!IsWine()) GTEST_SKIP() << "newer versions of Windows name the folder of most libraries";
    EXPECT_THAT(RunControl(GetParam().control).loaded, Contains("uxtheme"));
    EXPECT_THAT(RunControl(Restricted(GetParam().control)).loaded, IsEmpty());
}

std::string NameOf(const testing::TestParamInfo<Occasion>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(At, LibrarySearch, testing::Values(kLaunch, kBox), NameOf);
INSTANTIATE_TEST_SUITE_P(AtTheDialog, LibrarySearch, testing::Values(kDialog), NameOf);
INSTANTIATE_TEST_SUITE_P(At, UnrestrictedSearch, testing::Values(kBox, kDialog), NameOf);

// Libraries that Windows has open for every process before it starts, or that none of its own needs
// when it starts. Wine's own do, and look for them beside the program before any of its code runs:
// there the launcher must not load more than a program that does nothing but restrict its search.
using EarlyRow = std::tuple<Occasion, const char*>;

class EarlyLibrary : public AttackedTest, public testing::WithParamInterface<EarlyRow> {
  protected:
    Occasion occasion = std::get<0>(GetParam());
    Attack attack{media.Launcher(), control, {std::get<1>(GetParam())}};
};

TEST_P(EarlyLibrary, IsTakenByTheLauncherAsByAnyProgram) {
    occasion.prepare(media);
    const AttackedRun attacked = RunAttackedLauncher(occasion.launcher);
    EXPECT_TRUE(occasion.happened(attacked.run)) << testing::PrintToString(attacked.run);
    // Wine loads some while it draws, and a dialog may be closed before that: one run is not
    // enough.
    std::set<std::string> unavoidable;
    int runs = 0;
    for (; IsWine() && runs < 30 && !std::ranges::includes(unavoidable, attacked.loaded); ++runs)
        unavoidable.merge(RunControl(Restricted(occasion.control)).loaded);
    if (runs > 1) std::printf("[ REPEATED ] the control program, until %d runs of it\n", runs);
    EXPECT_THAT(attacked.loaded, IsSubsetOf(unavoidable));
}

const auto kEarlyNames =
    testing::Values("combase", "imm32", "msimg32", "ole32", "rpcrt4", "sechost", "version");

std::string NameOfRow(const testing::TestParamInfo<EarlyRow>& info) {
    return std::string(std::get<0>(info.param).name) + "_" + std::get<1>(info.param);
}

INSTANTIATE_TEST_SUITE_P(At, EarlyLibrary,
                         testing::Combine(testing::Values(kLaunch, kBox), kEarlyNames), NameOfRow);
INSTANTIATE_TEST_SUITE_P(AtTheDialog, EarlyLibrary,
                         testing::Combine(testing::Values(kDialog), kEarlyNames), NameOfRow);

// A web library beside the launcher lacks what the launcher looks for; that of the system counts.
class WebLibrarySearch : public AttackedTest {
  protected:
    // Wine's own library would be refused; without it, it is a system that has none.
    Attack attack{media.Launcher(), control, {"wininet"}, "native"};
};

TEST_F(WebLibrarySearch, TakesNoneBesideTheLauncher) {
    media.AddInstaller("win_b64");
    const AttackedRun attacked = RunAttackedLauncher({"-wait"});
    EXPECT_THAT(attacked.run, EndsQuietlyWith(0));
    EXPECT_THAT(attacked.loaded, IsEmpty());
}

TEST_F(WebLibrarySearch, WouldTakeItWithoutTheRestriction) {
    if (!IsWine()) GTEST_SKIP() << "needs Wine, which can be without a web library of its own";
    EXPECT_EQ(RunControl({"map"}).run.exitCode, 0u);
    EXPECT_EQ(RunControl({"restrict", "map"}).run.exitCode, 1u);
}

}  // namespace
}  // namespace launcher::test
