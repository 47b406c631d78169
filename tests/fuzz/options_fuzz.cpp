// The launcher's own command line: every field of the record, the variables set on the way and the
// text of a refusal.

#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "launcher/base/launch_options.h"
#include "tests/fuzz/fakes/fake_environment.h"
#include "tests/fuzz/fakes/fake_process.h"
#include "tests/fuzz/models/options_model.h"
#include "tests/fuzz/models/path_model.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/input.h"

namespace launcher::fuzz {
namespace {

// Options, what is nearly one, and values.
constexpr const char* kWords[] = {"-wait",
                                  "-UI",
                                  "-env",
                                  "-installerPath",
                                  "-SoftMgt",
                                  "-List",
                                  "-Check",
                                  "-Commit",
                                  "-Rollback",
                                  "--pipeserver",
                                  "--odt",
                                  "--mgt",
                                  "--uninst",
                                  "-WAIT",
                                  "-ui",
                                  "-Env",
                                  "-installerpath",
                                  "-softmgt",
                                  "-Check1",
                                  "--wait",
                                  "-wait ",
                                  "--odt=1",
                                  "-pipeserver",
                                  "--MGT",
                                  "",
                                  "CurrentMediaDir=C:/a//b/",
                                  "CurrentMediaDir='D:\\m'",
                                  "CurrentMediaDir=",
                                  "CurrentMediaDir",
                                  "A=B=C",
                                  "A=",
                                  "A",
                                  "=X",
                                  "==",
                                  "="};

// Characters, not bytes: one of each length in UTF-8 is among them.
using Characters = std::u32string;

Characters FreeWord(Input& input) {
    constexpr char32_t kAlphabet[] = U"-=AaC:\\ '\"\u00E9\u4E2D\U0001F600";
    Characters word;
    for (const char c : input.Text("0123456789:;<"))
        word += kAlphabet[static_cast<unsigned char>(c) % (std::size(kAlphabet) - 1)];
    return word;
}

Characters TakeWord(Input& input) {
    const unsigned number = input.Byte();
    if (number >= 0xF0) return FreeWord(input);
    const std::string_view word = kWords[number % std::size(kWords)];
    return {word.begin(), word.end()};
}

std::string Utf8(const Characters& characters) {
    std::string text;
    for (const char32_t character : characters)
        AppendUtf8(text, character);
    return text;
}

// A vector of arguments as the entry point gets it, the null at its end included.
struct Arguments {
    std::vector<std::wstring> texts;
    std::vector<const wchar_t*> pointers;
};

struct Case {
    Question question;
    Arguments arguments;
    int count = 0;
    bool isNull = false;
    bool countsNull = false;  // an option without its value may find a null there
};

Case TakeCase(Input& input) {
    constexpr const char* kMediaDirs[] = {"", "E:\\current", "\"E:\\cur\\\"", "1:\\x"};
    Case result;
    const unsigned shape = input.Byte();
    result.question.useGui = (shape & 1) != 0;
    result.question.wait = (shape & 2) != 0;
    result.question.installerExeName = "ZEPInsAppliGUI.exe";
    result.question.currentMediaDir = kMediaDirs[input.Below(std::size(kMediaDirs))];
    result.isNull = shape >= 0xF8;
    result.countsNull = (shape & 4) != 0;
    std::vector<std::wstring>& texts = result.arguments.texts;
    if (shape < 0xF0) texts.push_back(L"-wait");  // the program's name is no option
    while (!input.AtEnd() && shape < 0xF0) {
        const Characters word = TakeWord(input);
        texts.emplace_back(word.begin(), word.end());
        result.question.arguments.push_back(Utf8(word));
    }
    for (const std::wstring& text : texts)
        result.arguments.pointers.push_back(text.c_str());
    result.count = static_cast<int>(texts.size());
    result.arguments.pointers.push_back(nullptr);
    return result;
}

void CheckFields(const std::string& given, const LaunchOptions& actual,
                 const OptionsModel& expected) {
    const auto check = [&given](const char* what, auto value, decltype(value) wanted) {
        CheckEqual<std::int64_t>(what, given, value, wanted);
    };
    check("wait", actual.wait, expected.wait);
    check("useGui", actual.useGui, expected.useGui);
    check("interactiveSession", actual.interactiveSession, expected.interactiveSession);
    check("lastMessageWasProblem", actual.lastMessageWasProblem, false);
    check("softMgt", actual.softMgt, expected.softMgt);
    check("softMgtReadOnly", actual.softMgtReadOnly, expected.softMgtReadOnly);
    check("skipTemporaryCopy", actual.skipTemporaryCopy, expected.skipTemporaryCopy);
    check("temporaryCopyMade", actual.temporaryCopyMade, false);
    check("uninstall", actual.uninstall, expected.uninstall);
    const PathModel mediaDir = MakePath(expected.odtMediaDir.value_or(kModuleFolder));
    CheckEqual("mediaDir", given, actual.mediaDir.Text(), mediaDir.Text());
    CheckEqual("installerArgs", given, actual.installerArgs, expected.installerArgs);
    CheckEqual("installerPath", given, actual.installerPath, expected.installerPath);
    CheckEqual("softMgtAction", given, actual.softMgtAction, expected.softMgtAction);
    CheckEqual("installerExeName", given, actual.installerExeName, expected.installerExeName);
    CheckEqual("what is found later", given,
               actual.mediaInstDir + actual.installerExePath + actual.osFolder, std::string());
}

void CheckError(const std::string& given, const ReportedError& actual,
                const OptionsModel& expected) {
    CheckEqual("the refusal", given, actual.text, expected.error.value_or("no refusal"));
    CheckEqual<std::int64_t>("useGui of the refusal", given, actual.useGui, expected.useGui);
}

}  // namespace

void TestOneInput(Input input) {
    Case given = TakeCase(input);
    const OptionsModel expected = ReadOptions(given.question);
    const bool valueIsMissing = expected.error && expected.error->starts_with("Bad ");
    if (valueIsMissing && given.countsNull) ++given.count;
    const std::string shown = Show(given.question.arguments);
    FakeEnvironment& environment = FakeEnvironment::Instance();
    environment.Clear();
    environment.Start("CurrentMediaDir", given.question.currentMediaDir);
    try {
        const LaunchOptions options(
            given.count, given.isNull ? nullptr : given.arguments.pointers.data(),
            given.question.installerExeName, given.question.useGui, given.question.wait);
        if (expected.error) Fail("The refusal", shown, "nothing", *expected.error);
        CheckFields(shown, options, expected);
    } catch (const ReportedError& error) {
        CheckError(shown, error, expected);
    }
    CheckEqual("SetEnvVar", shown, Flatten(environment.Assignments()),
               Flatten(expected.assignments));
}

}  // namespace launcher::fuzz
