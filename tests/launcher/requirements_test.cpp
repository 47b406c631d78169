#include "launcher/requirements.h"

#include "platform/web_library.h"
#include "platform/windows_version.h"
#include "tests/support/isolated_test.h"
#include "tests/support/options.h"

namespace launcher {
namespace {

bool meets = true;

}  // namespace

bool HasRequiredWebLibrary() {
    return meets;
}

bool IsWindows8OrNewer() {
    return meets;
}

namespace {

using testing::ElementsAre;

class RequirementsTest : public test::IsolatedTest {
  protected:
    const LaunchOptions options_ = test::ParseOptions({});
};

TEST_F(RequirementsTest, AreMetSilently) {
    meets = true;
    EXPECT_TRUE(CheckWebLibrary(options_));
    WarnOfOldWindows(options_);
    EXPECT_THAT(test::journal, ElementsAre());
}

TEST_F(RequirementsTest, RefuseAnOldWebLibrary) {
    meets = false;
    EXPECT_FALSE(CheckWebLibrary(options_));
    EXPECT_THAT(test::journal, ElementsAre("error: Internet Explorer 10 or later is required to "
                                           "run the installer. Please install it and try again."));
}

TEST_F(RequirementsTest, OnlyWarnOfAnOldWindows) {
    meets = false;
    WarnOfOldWindows(options_);
    EXPECT_THAT(test::journal,
                ElementsAre("warning: This version of Windows is not supported anymore.\n"
                            "Please check the certified platforms in the Program Directory."));
}

}  // namespace
}  // namespace launcher
