#include "media/flavours.h"

#include "fs/environment.h"
#include "tests/support/isolated_test.h"
#include "tests/support/options.h"

namespace launcher {
namespace {

using testing::ElementsAre;

class FlavoursTest : public test::IsolatedTest {
  protected:
    FlavoursTest() {
        options_.mediaDir = Path("\\\\server\\share\\media");
        options_.installerExeName = "ZEPInsAppliODT.exe";
        SetEnvVar("ZEPAdmInstODTinstallOSpath", "");
    }

    // One member of each flavour, the preferred flavour's first.
    template <class Member>
    std::vector<Member> Each(Member Flavour::*member) const {
        std::vector<Member> values;
        for (const Flavour& flavour : MediaFlavours(options_))
            values.push_back(flavour.*member);
        return values;
    }

    LaunchOptions options_ = test::ParseOptions({});
};

TEST_F(FlavoursTest, HaveAnInstallerAndAMarkerEach) {
    const std::string inst = "\\\\server\\share\\media\\inst\\";
    EXPECT_THAT(Each(&Flavour::osFolder), ElementsAre("win_b64", "win_csa64", "intel_a"));
    EXPECT_THAT(Each(&Flavour::installer),
                ElementsAre(inst + "win_b64\\code\\bin\\ZEPInsAppliODT.exe",
                            inst + "win_csa64\\code\\bin\\ZEPInsAppliODT.exe",
                            inst + "intel_a\\code\\bin\\ZEPInsAppliODT.exe"));
    EXPECT_THAT(Each(&Flavour::marker), ElementsAre(inst + "common\\win_b64.installos",
                                                    inst + "common\\win_csa64.installos",
                                                    inst + "common\\intel_a.installos"));
}

TEST_F(FlavoursTest, SuitA32BitWindowsOnlyWhenMadeForIt) {
    std::vector<bool> suits;
    for (const Flavour& flavour : MediaFlavours(options_)) {
        EXPECT_TRUE(Suits(flavour, /*is64BitWindows=*/true));
        suits.push_back(Suits(flavour, /*is64BitWindows=*/false));
    }
    EXPECT_THAT(suits, ElementsAre(false, false, true));
}

TEST_F(FlavoursTest, ShareTheMarkerThatTheVariableNames) {
    SetEnvVar("ZEPAdmInstODTinstallOSpath", "given/as it is.txt");
    EXPECT_THAT(Each(&Flavour::marker), testing::Each("given/as it is.txt"));
}

}  // namespace
}  // namespace launcher
