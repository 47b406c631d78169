// The launcher's command line, as Windows splits it.

#include "mediatool/run/command_line.h"

#include <gtest/gtest.h>
#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/owners.h"
#include "tests/support/isolated_test.h"

namespace launcher::mediatool {
namespace {

using Arguments = std::vector<std::string>;

class CommandLineOfTheLauncher : public testing::TestWithParam<Arguments> {};

TEST_P(CommandLineOfTheLauncher, IsSplitIntoWhatWasGiven) {
    const std::string program = "C:\\a b\\setup.exe";
    const std::wstring line = ToWide(CommandLineOf(program, GetParam()));
    int count = 0;
    const LocalMemory<wchar_t*> split(CommandLineToArgvW(line.c_str(), &count));
    ASSERT_GE(count, 1);
    EXPECT_EQ(ToNarrow(split.Get()[0]), program);
    Arguments arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(ToNarrow(split.Get()[i]));
    EXPECT_EQ(arguments, GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, CommandLineOfTheLauncher,
                         testing::Values(Arguments{}, Arguments{""}, Arguments{"", "", "-wait", ""},
                                         Arguments{"-env", "NAME=a b"},
                                         Arguments{"a\"b", "\"", "\"\"", "\"a b\""},
                                         Arguments{"D:\\", "D:\\a b\\", "\\\\server\\share\\"},
                                         Arguments{"\\\"", "\\\\\"", "a\\\\\\\"b c", "\\\\"},
                                         Arguments{"Größe 漢字", "ελληνικά", "\xF0\x9F\x92\xBF"},
                                         Arguments{"\t", "a\tb", " ", "a\nb"},
                                         Arguments{"*", "?", "%PATH%", "^&|<>"}));

struct WaitRow {
    const char* name;
    Arguments arguments;
    bool waits;
};
void PrintTo(const WaitRow& row, std::ostream* stream) {
    *stream << row.name;
}

class Waiting : public testing::TestWithParam<WaitRow> {};

TEST_P(Waiting, IsAskedForByTheLaunchersOptions) {
    EXPECT_EQ(WaitsForInstaller(GetParam().arguments), GetParam().waits);
}

INSTANTIATE_TEST_SUITE_P(Table, Waiting,
                         testing::Values(WaitRow{"Nothing", {}, false},
                                         WaitRow{"Option", {"-UI", "-wait"}, true},
                                         WaitRow{"OtherCase", {"-Wait"}, false},
                                         WaitRow{"ValueOfEnv", {"-env", "-wait"}, false},
                                         WaitRow{"ValueOfPath", {"-installerPath", "-wait"}, false},
                                         WaitRow{"BehindAValue", {"-env", "A=1", "-wait"}, true},
                                         WaitRow{"PipeServer", {"--pipeserver"}, true},
                                         WaitRow{"Odt", {"--odt"}, true},
                                         WaitRow{"Mgt", {"--mgt"}, false}),
                         [](const auto& row) { return std::string(row.param.name); });

class VolumeQuery : public test::IsolatedTest {};

TEST_F(VolumeQuery, IsMadeByTheEnvironment) {
    SetEnvVar("ZEPAdmODTMultiVolumes", "");
    EXPECT_FALSE(AsksForVolumes({}));
    EXPECT_FALSE(AsksForVolumes({"-env", "ZEPAdmODTMultiVolume"}));
    SetEnvVar("ZEPAdmODTMultiVolumes", "no");
    EXPECT_TRUE(AsksForVolumes({}));
    EXPECT_FALSE(AsksForVolumes({"-env", "ZEPAdmODTMultiVolumes="}));
}

// What is asked of the arguments of another program has no effect here.
TEST_F(VolumeQuery, SetsNoVariable) {
    EXPECT_TRUE(AsksForVolumes({"-env", "ZEPAdmODTMultiVolumes=1"}));
    EXPECT_FALSE(WaitsForInstaller({"-env", "ZEPAdmODTMultiVolumes=1"}));
    EXPECT_EQ(GetEnvVar("ZEPAdmODTMultiVolumes"), "");
}

TEST_F(VolumeQuery, IsMadeByTheArguments) {
    SetEnvVar("ZEPAdmODTMultiVolumes", "");
    EXPECT_TRUE(AsksForVolumes({"-wait", "-env", "ZEPAdmODTMultiVolumes"}));
    EXPECT_TRUE(AsksForVolumes({"-env", "A=1", "-env", "zepadmodtmultivolumes=x=y"}));
    EXPECT_FALSE(
        AsksForVolumes({"-env", "ZEPAdmODTMultiVolumes=1", "-env", "ZEPAdmODTMultiVolumes="}));
    EXPECT_FALSE(AsksForVolumes({"-installerPath", "-env", "ZEPAdmODTMultiVolumes"}));
    EXPECT_FALSE(AsksForVolumes({"ZEPAdmODTMultiVolumes", "-env"}));
}

}  // namespace
}  // namespace launcher::mediatool
