#include "launcher/installer_command_line.h"

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>

#include <algorithm>
#include <random>
#include <utility>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "tests/launcher/base/options_fields.h"
#include "tests/launcher/isolated_test.h"

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

// Each action's word behind the question mark.
TEST_F(CommandLineTest, AsksForSoftwareManagementBehindTheArguments) {
    for (const auto& [option, word] :
         std::vector<std::pair<std::string, std::string>>{{"-List", "List"},
                                                          {"-Check", "Check1"},
                                                          {"-Commit", "Commit"},
                                                          {"-Rollback", "Rollback"}})
        EXPECT_EQ(Build({"-SoftMgt", option, "x"}),
                  "\"P:\\a b\\installer.exe\" \"x\" \"--mgt\" \"M:\" \"--var\" "
                  "\"Radio_ZEPSoftwareMgtCheck?" +
                      word + "=true\"");
}

TEST_F(CommandLineTest, SetsTheVariablesOfSoftwareManagement) {
    Build({"-SoftMgt", "-List"});
    EXPECT_EQ(GetEnvVar("ZEPSoftwareMgtSingleExec"), "1");
    EXPECT_EQ(GetEnvVar("ZEPAdmTUIValue_SoftwareMgt_Resume"), "!r");
}

TEST_F(CommandLineTest, LeavesTheVariablesAloneOtherwise) {
    Build({"x"});
    EXPECT_EQ(GetEnvVar("ZEPSoftwareMgtSingleExec"), "");
    EXPECT_EQ(GetEnvVar("ZEPAdmTUIValue_SoftwareMgt_Resume"), "");
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

// The rule for arguments, character by character.
std::string QuotedByTheRule(const std::string& argument) {
    std::string text = " \"";
    for (std::size_t i = 0; i < argument.size(); ++i) {
        text += argument[i];
        if (i + 1 == argument.size() && argument[i] == '\\') text += '\\';
    }
    return text + '"';
}

bool EndsInOneBackslashAtMost(const std::string& argument) {
    return !argument.ends_with("\\\\");
}

bool HasQuote(const std::string& argument) {
    return argument.find('"') != std::string::npos;
}

// Built from pieces that are dangerous for a command line.
std::string RandomArgument(std::mt19937& random) {
    static const std::string pieces[] = {"\\", "\\", "\"", " ", "a", "\t", "/", "\xC3\xA4", "'"};
    std::string argument;
    for (auto length = random() % 6; length > 0; --length)
        argument += pieces[random() % std::size(pieces)];
    return argument;
}

TEST_F(CommandLineTest, CarriesGeneratedArgumentsAsTheRuleSays) {
    std::mt19937 random(1);
    int intact = 0;
    for (int i = 0; i < 2000; ++i) {
        std::vector<std::string> arguments(random() % 4);
        for (std::string& argument : arguments)
            argument = RandomArgument(random);
        std::string expected = "\"P:\\a b\\installer.exe\" \"-CDpath\" \"M:\\sets\\media\"";
        for (const std::string& argument : arguments)
            expected += QuotedByTheRule(argument);
        const std::string commandLine = Build(arguments);
        ASSERT_EQ(commandLine, expected);
        // The child gets back what has no quote and no run of backslashes at its end.
        if (!std::ranges::all_of(arguments, EndsInOneBackslashAtMost) ||
            std::ranges::any_of(arguments, HasQuote))
            continue;
        arguments.insert(arguments.begin(), {"-CDpath", "M:\\sets\\media"});
        ASSERT_THAT(Split(commandLine), ElementsAreArray(arguments));
        ++intact;
    }
    EXPECT_GT(intact, 500);
}

// An argument that the rule does not protect.
TEST_F(CommandLineTest, LetsAQuoteInsideAnArgumentEndIt) {
    EXPECT_THAT(Split(Build({"a\" b", "c"})),
                ElementsAre("-CDpath", "M:\\sets\\media", "a", "b c"));
}

}  // namespace
}  // namespace launcher
