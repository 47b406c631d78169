// Where the installer is looked for when the media has none: in the folder of the option, in that
// of the variable, and in the one that a person picks.

#include <string>
#include <tuple>
#include <vector>

#include "tests/dialog/support/dialog_launch.h"

namespace launcher::test {
namespace {

// Whether the folder of the option, of the variable and of the dialog holds the installer.
using Places = std::tuple<bool, bool, bool>;

class SearchOrder : public DialogTest, public testing::WithParamInterface<Places> {
  protected:
    void AddInstallers() const {
        const auto [inOption, inVariable, inDialog] = GetParam();
        if (inOption) AddInstallerIn("option");
        if (inVariable) AddInstallerIn("variable");
        if (inDialog) AddInstallerIn("far/near");
    }
    // The message about a folder without the installer.
    std::string Invalid(const std::string& folder) const {
        return "Invalid Installer media, \"" + InstallerOf(folder) + "\" does not exist";
    }
    LauncherRun RunAndConfirm(const LauncherStart& start, const std::string& folder) const {
        return RunWithDialog(start, [&](DialogDriver& dialog) {
            EXPECT_THAT(dialog.BoxesBefore(),
                        testing::ElementsAre(Invalid("option"), Invalid("variable")));
            dialog.Confirm(folder);
        });
    }
};

TEST_P(SearchOrder, TakesTheFirstThatHasIt) {
    AddInstallers();
    variables["ZEP_TALVOR_Installer"] = scratch.MakeDir("variable");
    const LauncherStart start =
        StartOf(MarkedMedia(), {"-wait", "-installerPath", scratch.MakeDir("option")});
    const auto [inOption, inVariable, inDialog] = GetParam();
    const bool asked = !inOption && !inVariable;
    const LauncherRun run =
        asked ? RunAndConfirm(start, scratch.Text("far\\near")) : RunToEnd(start);
    EXPECT_THAT(run.dialogs, testing::IsEmpty());  // no other one
    if (asked && !inDialog) {
        EXPECT_THAT(run, IsRefusedWith(kNotFound));
        return;
    }
    EXPECT_EQ(run.Installer().module, InstallerOf(inOption     ? "option"
                                                  : inVariable ? "variable"
                                                               : "far\\near"));
    EXPECT_EQ(run.exitCode, 0u);
    const std::vector<std::string> boxes =
        asked || inOption ? std::vector<std::string>{} : std::vector{Invalid("option")};
    EXPECT_EQ(run.BoxTexts(), boxes);
}

std::string CaseName(const testing::TestParamInfo<Places>& row) {
    const auto word = [](bool good) { return good ? "Good" : "Bad"; };
    const auto [inOption, inVariable, inDialog] = row.param;
    return std::string(word(inOption)) + word(inVariable) + word(inDialog);
}

// All eight cases; the first in a name is the option.
INSTANTIATE_TEST_SUITE_P(Cases, SearchOrder,
                         testing::Combine(testing::Bool(), testing::Bool(), testing::Bool()),
                         CaseName);

}  // namespace
}  // namespace launcher::test
