// What a dry run says was decided, read from what the launcher's own code recorded.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mediatool/dry_run/dry_run.h"
#include "tests/mediatool/support/sample_media.h"
#include "tests/support/isolated_test.h"

namespace launcher::test {
namespace {

using mediatool::DryRunRequest;
using mediatool::Layout;
using Variables = std::vector<std::pair<std::string, std::string>>;

class DecisionTest : public IsolatedTest {
  protected:
    mediatool::DryRun Dry(const SampleMedia& media, std::vector<std::string> arguments = {},
                          Variables variables = {}) const {
        DryRunRequest request;
        request.media = media.Text();
        request.arguments = std::move(arguments);
        request.machine.isAdministrator = true;
        request.machine.is64Bit = true;
        request.environment = std::move(variables);
        request.environment.insert(request.environment.begin(), {"TEMP", temp_.Text()});
        return RunDry(request);
    }

    // Why it is copied or not.
    std::string Reason(const SampleMedia& media, std::vector<std::string> arguments = {},
                       Variables variables = {}) const {
        return Dry(media, std::move(arguments), std::move(variables)).copy.reason;
    }

    TemporaryFolder temp_;
};

class CopyReasonTest : public DecisionTest {
  protected:
    CopyReasonTest() { incomplete_.Remove("../3"); }

    SampleMedia incomplete_{Layout::Siblings};
    SampleMedia ordinary_;
};

TEST_F(CopyReasonTest, OfACopyAndOfOneThatFails) {
    EXPECT_EQ(Reason(incomplete_), "Not all volumes of the medium can be put together.");
    incomplete_.Remove("media.db");
    EXPECT_EQ(Reason(incomplete_), "The copy fails.");
}

TEST_F(CopyReasonTest, IsTheLayout) {
    EXPECT_EQ(Reason(SampleMedia()), "The medium is not split.");
    for (const Layout layout : {Layout::OneFolder, Layout::Siblings, Layout::Outer})
        EXPECT_EQ(Reason(SampleMedia(layout)), "All volumes are there.");
}

TEST_F(CopyReasonTest, IsAnOption) {
    for (const char* option : {"--mgt", "--uninst", "--pipeserver"}) {
        incomplete_.Write("inst/win_b64/code/bin/ZEPInsPipeServer.exe", ProgramBytes(kX64));
        EXPECT_EQ(
            Reason(incomplete_, {option}),
            "The option --mgt, --uninst or --pipeserver runs the installer from where it is.");
    }
}

// Before the layout, which then nobody looks at.
TEST_F(CopyReasonTest, IsThatTheVolumesAreNotSearchedFor) {
    for (const SampleMedia* media : {&incomplete_, &ordinary_}) {
        EXPECT_EQ(Reason(*media, {"-SoftMgt", "-List"}),
                  "Software management runs the installer from where it is.");
        EXPECT_EQ(Reason(*media, {}, {{"ZEP_Online_Installation_Caf_Repositiory", "x"}}),
                  "ZEP_Online_Installation_Caf_Repositiory is set.");
        EXPECT_FALSE(Dry(*media, {"-SoftMgt", "-List"}).volumesChecked);
    }
    EXPECT_TRUE(Dry(incomplete_).volumesChecked);
}

TEST_F(CopyReasonTest, IsTheVariableBeforeAllElse) {
    EXPECT_EQ(Reason(incomplete_, {"-SoftMgt", "-List"}, {{"ZEPAdmInstDontCopyInstaller", "1"}}),
              "ZEPAdmInstDontCopyInstaller is set.");
}

TEST_F(CopyReasonTest, IsThatTheRunEndsBefore) {
    EXPECT_EQ(Reason(incomplete_, {}, {{"ZEPAdmODTMultiVolumes", "1"}}),
              "Only the number of volumes is asked for.");
    EXPECT_EQ(Reason(incomplete_, {"-env"}), "The run does not get that far.");
    incomplete_.Remove("inst/win_b64");
    EXPECT_EQ(Reason(incomplete_), "The run does not get that far.");
}

// Also of a run from a copy.
TEST_F(DecisionTest, NamesThePlaceOfTheInstallerThatWasFound) {
    const SampleMedia other;
    SampleMedia incomplete(Layout::Siblings);
    incomplete.Remove("../3");
    const std::string place = "inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe";
    EXPECT_EQ(Dry(incomplete).installer->foundAt, incomplete.Text(place));
    const mediatool::DryRun run =
        Dry(incomplete, {"-installerPath", other.Text()}, {{"ZEP_UseExternalInstaller", "1"}});
    ASSERT_TRUE(run.copy.made);
    EXPECT_EQ(run.installer->foundAt, other.Text(place));
    EXPECT_EQ(run.installer->foundBy, "-installerPath");
    EXPECT_EQ(run.installer->path, temp_.Text("{UUID}\\" + place));
    EXPECT_EQ(run.volumes->folders.front(), incomplete.Text());
}

}  // namespace
}  // namespace launcher::test
