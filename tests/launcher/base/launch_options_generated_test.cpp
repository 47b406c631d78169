// Generated command lines, compared with a slow model that answers one question at a time: which
// is the last of these words?

#include <map>
#include <optional>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "fs/environment.h"
#include "platform/module_path.h"
#include "tests/launcher/base/options_fields.h"
#include "tests/launcher/fake_messages.h"
#include "tests/launcher/isolated_test.h"
#include "tests/launcher/journal.h"

namespace launcher {
namespace {

using test::Fields;

// What a command line comes to: the record and the variables, or the message that refuses it.
struct Outcome {
    Fields fields;
    std::map<std::string, std::string> variables;
    std::vector<std::string> messages;

    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out) {
    *out << testing::PrintToString(outcome.fields) << testing::PrintToString(outcome.variables)
         << testing::PrintToString(outcome.messages);
}

const std::vector<std::string> kVariables = {"LAUNCHER_A", "LAUNCHER_B", "CurrentMediaDir"};

const std::set<std::string> kActions = {"-List", "-Check", "-Commit", "-Rollback"};

// An argument, with its value when it is an option that takes one.
struct Word {
    std::string text;
    std::string value;
};

class Model {
  public:
    explicit Model(const std::vector<std::string>& arguments) {
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            Word word{arguments[i], ""};
            if (word.text == "-env" || word.text == "-installerPath") {
                if (++i == arguments.size()) {
                    error_ = "Bad " + word.text + " argument";
                    break;
                }
                word.value = arguments[i];
            }
            words_.push_back(word);
        }
    }

    Outcome Result() const {
        Outcome outcome{{}, VariablesAfter(words_.size()), {}};
        const std::string error = Error();
        if (error.empty())
            outcome.fields = RecordFields();
        else
            outcome.messages = {"error: " + error};
        return outcome;
    }

  private:
    // The index of the last of `words`.
    std::optional<std::size_t> Last(const std::set<std::string>& words) const {
        for (std::size_t i = words_.size(); i-- > 0;)
            if (words.contains(words_[i].text)) return i;
        return {};
    }
    bool Has(const std::set<std::string>& words) const { return Last(words).has_value(); }
    std::string LastText(const std::set<std::string>& words) const {
        const auto last = Last(words);
        return last ? words_[*last].text : "";
    }

    std::string Error() const {
        if (!error_.empty()) return error_;
        const std::string action = LastText(kActions);
        if (Has({"-SoftMgt"}) && action.empty())
            return "-SoftMgt must be used with another flag (either -List, -Check, -Commit or "
                   "-Rollback).";
        if (!Has({"-SoftMgt"}) && !action.empty())
            return action + " must be used with the -SoftMgt flag.";
        return "";
    }

    // The variables once the first `count` words have been read.
    std::map<std::string, std::string> VariablesAfter(std::size_t count) const {
        std::map<std::string, std::string> variables;
        for (const std::string& name : kVariables)
            variables[name] = "";
        for (std::size_t i = 0; i < count; ++i) {
            if (words_[i].text != "-env") continue;
            const std::string& text = words_[i].value;
            for (const std::string& name : kVariables) {
                if (text == name) variables[name] = "1";
                if (text.starts_with(name + "=")) variables[name] = text.substr(name.size() + 1);
            }
        }
        return variables;
    }

    std::string MediaDir() const {
        const auto odt = Last({"--odt"});
        return odt ? Path(VariablesAfter(*odt).at("CurrentMediaDir")).Text() : GetModuleDirectory();
    }

    std::string InstallerExeName() const {
        const std::string word = LastText({"--pipeserver", "--odt"});
        if (word.empty()) return "ZEPInsAppliGUI.exe";
        return word == "--odt" ? "ZEPInsAppliODT.exe" : "ZEPInsPipeServer.exe";
    }

    std::string SoftMgtAction() const {
        const std::string word = LastText(kActions);
        if (word == "-Check") return "Check1";
        return word.empty() ? "" : word.substr(1);
    }

    std::string InstallerArgs() const {
        const std::set<std::string> consumed = {
            "-wait",  "-UI",     "-env",      "-installerPath", "-SoftMgt", "-List",
            "-Check", "-Commit", "-Rollback", "--pipeserver",   "--odt"};
        std::string args;
        for (const Word& word : words_)
            if (!consumed.contains(word.text)) args += "[" + word.text + "]";
        return args;
    }

    Fields RecordFields() const {
        const auto yesNo = [](bool value) { return value ? "yes" : "no"; };
        const auto installerPath = Last({"-installerPath"});
        return {{"wait", yesNo(Has({"-wait", "--pipeserver", "--odt"}))},
                {"useGui", yesNo(Has({"-UI"}))},
                {"interactiveSession", yesNo(!Has({"--pipeserver"}))},
                {"lastMessageWasProblem", "no"},
                {"installerArgs", InstallerArgs()},
                {"installerPath", installerPath ? words_[*installerPath].value : ""},
                {"softMgt", yesNo(Has({"-SoftMgt"}))},
                {"softMgtReadOnly", yesNo(Has({"-List", "-Check"}))},
                {"skipTemporaryCopy", yesNo(Has({"--pipeserver", "--mgt", "--uninst"}))},
                {"temporaryCopyMade", "no"},
                {"uninstall", yesNo(LastText({"--mgt", "--uninst"}) == "--uninst")},
                {"softMgtAction", SoftMgtAction()},
                {"mediaDir", MediaDir()},
                {"mediaInstDir", ""},
                {"installerExeName", InstallerExeName()},
                {"installerExePath", ""},
                {"osFolder", ""}};
    }

    std::vector<Word> words_;
    std::string error_;
};

Outcome ParseForReal(const std::vector<std::string>& arguments) {
    for (const std::string& name : kVariables)
        SetEnvVar(name, "");
    test::ClearJournal();
    Outcome outcome;
    try {
        outcome.fields = test::FieldsOf(test::ParseOptions(arguments, false));
    } catch (const test::ProcessExit&) {
    }
    for (const std::string& name : kVariables)
        outcome.variables[name] = GetEnvVar(name);
    outcome.messages = test::Journal();
    return outcome;
}

// A few of the words that mean something, and of those that nearly do.
std::vector<std::string> RandomArguments(std::mt19937& random) {
    static const std::vector<std::string> words = {"-wait",
                                                   "-UI",
                                                   "-env",
                                                   "-installerPath",
                                                   "-SoftMgt",
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
                                                   "-Softmgt",
                                                   "-odt",
                                                   "",
                                                   "LAUNCHER_A",
                                                   "LAUNCHER_A=",
                                                   "LAUNCHER_A==x",
                                                   "LAUNCHER_B=a b\\",
                                                   "CurrentMediaDir=E:/m",
                                                   "CurrentMediaDir='F:\\n\\'",
                                                   "\xE2\x82\xAC",
                                                   "-env"};
    std::vector<std::string> arguments(random() % 9);
    for (std::string& argument : arguments)
        argument = words[random() % words.size()];
    return arguments;
}

class GeneratedCommandLines : public test::IsolatedTest {};

TEST_F(GeneratedCommandLines, ComeToWhatTheModelSays) {
    std::mt19937 random(20240229);
    std::size_t refused = 0;
    for (int i = 0; i < 3000; ++i) {
        const std::vector<std::string> arguments = RandomArguments(random);
        const Outcome expected = Model(arguments).Result();
        ASSERT_EQ(ParseForReal(arguments), expected) << testing::PrintToString(arguments);
        refused += expected.messages.size();
    }
    // Both kinds were well met.
    EXPECT_GT(refused, 500u);
    EXPECT_LT(refused, 2500u);
}

}  // namespace
}  // namespace launcher
