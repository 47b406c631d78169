#include "launcher/installer_command_line.h"

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include <random>
#include <utility>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "tests/support/isolated_test.h"
#include "tests/support/options.h"

namespace launcher {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

class CommandLineTest : public test::IsolatedTest {
  protected:
    CommandLineTest() { SetEnvVar("DEBUGCMD_INSTALLK7", ""); }

    static LaunchOptions MakeOptions(const std::vector<std::string>& arguments) {
        LaunchOptions options = test::ParseOptions(arguments);
        options.mediaDir = Path("M:\\sets\\media");
        options.installerExePath = "P:\\a b\\installer.exe";
        return options;
    }

    static std::string Build(const std::vector<std::string>& arguments) {
        LaunchOptions options = MakeOptions(arguments);
        return BuildInstallerCommandLine(options);
    }
};

// The arguments as the child's runtime splits them, without the program.
std::vector<std::string> Split(const std::string& commandLine) {
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(ToWide(commandLine).c_str(), &count);
    std::vector<std::string> result;
    for (int i = 1; i < count; ++i)
        result.push_back(ToNarrow(arguments[i]));
    LocalFree(arguments);
    return result;
}

TEST_F(CommandLineTest, GivesTheMediaFolderInFrontOfTheArguments) {
    EXPECT_EQ(Build({}), "\"P:\\a b\\installer.exe\" \"-CDpath\" \"M:\\sets\\media\"");
    EXPECT_EQ(Build({"x", "y z"}),
              "\"P:\\a b\\installer.exe\" \"-CDpath\" \"M:\\sets\\media\" \"x\" \"y z\"");
}

// Each action's word after the question mark.
TEST_F(CommandLineTest, AsksForSoftwareManagementAfterTheArguments) {
    for (const auto& [option, word] : {std::pair<std::string, std::string>{"-List", "List"},
                                       std::pair<std::string, std::string>{"-Check", "Check1"}})
        EXPECT_EQ(Build({"-SoftMgt", option, "x"}),
                  "\"P:\\a b\\installer.exe\" \"x\" \"--mgt\" \"M:\" \"--var\" "
                  "\"Radio_ZEPSoftwareMgtCheck?" +
                      word + "=true\"");
}

TEST_F(CommandLineTest, SetsVariablesForSoftwareManagementOnly) {
    Build({"x"});
    EXPECT_EQ(GetEnvVar("ZEPSoftwareMgtSingleExec"), "");
    EXPECT_EQ(GetEnvVar("ZEPAdmTUIValue_SoftwareMgt_Resume"), "");
    Build({"-SoftMgt", "-List"});
    EXPECT_EQ(GetEnvVar("ZEPSoftwareMgtSingleExec"), "1");
    EXPECT_EQ(GetEnvVar("ZEPAdmTUIValue_SoftwareMgt_Resume"), "!r");
}

TEST_F(CommandLineTest, AsksForNoActionWhereThereIsNone) {
    LaunchOptions options = MakeOptions({});
    options.softMgt = true;
    EXPECT_EQ(BuildInstallerCommandLine(options), "\"P:\\a b\\installer.exe\" \"--mgt\" \"M:\"");
    EXPECT_EQ(GetEnvVar("ZEPSoftwareMgtSingleExec"), "");
    EXPECT_EQ(GetEnvVar("ZEPAdmTUIValue_SoftwareMgt_Resume"), "");
}

// A media folder and its grandparent, as software management gets it.
TEST_F(CommandLineTest, GivesTheGrandparentOfTheMediaToSoftwareManagement) {
    for (const auto& [media, grandparent] : std::vector<std::pair<std::string, std::string>>{
             {"D:\\a\\b\\c", "D:\\a"},
             {"D:\\a", ""},
             {"D:", ""},
             {"\\\\server\\share\\a\\b", "\\\\server\\share"},
             {"\\\\server\\share\\a", ""}}) {
        LaunchOptions options = MakeOptions({"-SoftMgt", "-List"});
        options.mediaDir = Path(media);
        BuildInstallerCommandLine(options);
        EXPECT_THAT(options.installerArgs, ElementsAre("--mgt", grandparent, "--var",
                                                       "Radio_ZEPSoftwareMgtCheck?List=true"));
    }
}

TEST_F(CommandLineTest, DoublesABackslashAtTheEndOfAnArgumentAndKeepsItSo) {
    LaunchOptions options = MakeOptions({"C:\\dir\\", "C:\\dir", "\\", "two\\\\"});
    EXPECT_EQ(BuildInstallerCommandLine(options),
              "\"P:\\a b\\installer.exe\" \"-CDpath\" \"M:\\sets\\media\" \"C:\\dir\\\\\" "
              "\"C:\\dir\" \"\\\\\" \"two\\\\\\\"");
    EXPECT_THAT(options.installerArgs, ElementsAre("-CDpath", "M:\\sets\\media", "C:\\dir\\\\",
                                                   "C:\\dir", "\\\\", "two\\\\\\"));
}

TEST_F(CommandLineTest, EscapesNothingElse) {
    EXPECT_EQ(Build({"a\"b", "%PATH%", "", "\\\"", "&|<>^"}),
              "\"P:\\a b\\installer.exe\" \"-CDpath\" \"M:\\sets\\media\" \"a\"b\" \"%PATH%\" "
              "\"\" \"\\\"\" \"&|<>^\"");
}

// How an installer's path begins the line.
TEST_F(CommandLineTest, QuotesThePathOnce) {
    for (const auto& [path, start] : std::vector<std::pair<std::string, std::string>>{
             {"C:\\i.exe", "\"C:\\i.exe\""},
             {"\"C:\\i.exe\"", "\"C:\\i.exe\""},
             {"\"C:\\a b\\i.exe\" first", "\"C:\\a b\\i.exe\" first"},
             {"", "\"\""}}) {
        LaunchOptions options = MakeOptions({});
        options.installerExePath = path;
        EXPECT_EQ(BuildInstallerCommandLine(options), start + " \"-CDpath\" \"M:\\sets\\media\"");
    }
}

// What the debug variable puts in front of the line.
TEST_F(CommandLineTest, PutsTheDebugCommandInFront) {
    for (const auto& [value, prefix] : std::vector<std::pair<std::string, std::string>>{
             {"", ""},
             {"1", "cmd.exe /k echo "},
             {"0", "0 "},
             {"11", "11 "},
             {"debugger.exe /x", "debugger.exe /x "}}) {
        SetEnvVar("DEBUGCMD_INSTALLK7", value);
        EXPECT_EQ(Build({}), prefix + "\"P:\\a b\\installer.exe\" \"-CDpath\" \"M:\\sets\\media\"");
    }
}

bool HasQuoteOrTwoBackslashesAtItsEnd(const std::string& argument) {
    return argument.find('"') != std::string::npos || argument.ends_with("\\\\");
}

// Built from pieces that are dangerous for a command line.
std::string RandomArgument(std::mt19937& random) {
    static const std::string pieces[] = {"\\", "\\", "\"", " ", "a", "\t", "/", "\xC3\xA4", "'"};
    std::string argument;
    for (auto length = random() % 6; length > 0; --length)
        argument += pieces[random() % std::size(pieces)];
    return argument;
}

// The child gets back what has no quote and no run of backslashes at its end.
TEST_F(CommandLineTest, CarriesGeneratedArgumentsToTheChild) {
    std::mt19937 random(1);
    for (int round = 0; round < 1000; ++round) {
        std::vector<std::string> arguments(random() % 4);
        for (std::string& argument : arguments)
            argument = RandomArgument(random);
        std::erase_if(arguments, HasQuoteOrTwoBackslashesAtItsEnd);
        const std::string commandLine = Build(arguments);
        arguments.insert(arguments.begin(), {"-CDpath", "M:\\sets\\media"});
        ASSERT_THAT(Split(commandLine), ElementsAreArray(arguments));
    }
}

// An argument that the rule does not protect.
TEST_F(CommandLineTest, LetsAQuoteInsideAnArgumentEndIt) {
    EXPECT_THAT(Split(Build({"a\" b", "c"})),
                ElementsAre("-CDpath", "M:\\sets\\media", "a", "b c"));
}

}  // namespace
}  // namespace launcher
