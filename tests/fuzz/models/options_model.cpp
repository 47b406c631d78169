#include "tests/fuzz/models/options_model.h"

#include <algorithm>
#include <initializer_list>
#include <span>
#include <string_view>

namespace launcher::fuzz {
namespace {

struct Word {
    std::string text;
    std::string value;  // of "-env" and "-installerPath"
};

struct Cut {
    std::vector<Word> words;
    std::string missingValueOf;
};

bool TakesValue(const std::string& text) {
    return text == "-env" || text == "-installerPath";
}

Cut CutUp(std::vector<std::string> arguments) {
    Cut cut;
    std::ranges::reverse(arguments);
    const auto take = [&arguments] {
        const std::string text = arguments.back();
        arguments.pop_back();
        return text;
    };
    while (!arguments.empty()) {
        Word word{take(), {}};
        if (TakesValue(word.text)) {
            if (arguments.empty()) {
                cut.missingValueOf = word.text;
                break;
            }
            word.value = take();
        }
        cut.words.push_back(word);
    }
    return cut;
}

using Texts = std::initializer_list<std::string_view>;

bool IsAmong(std::string_view text, Texts texts) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

class Words {
  public:
    explicit Words(std::vector<Word> words) : words_(std::move(words)) {}

    bool Any(Texts texts) const { return Last(texts) != nullptr; }
    const Word* Last(Texts texts) const {
        const Word* last = nullptr;
        for (const Word& word : words_)
            if (IsAmong(word.text, texts)) last = &word;
        return last;
    }
    // Empty when there is none.
    std::string_view LastText(Texts texts) const {
        const Word* const last = Last(texts);
        return last != nullptr ? std::string_view(last->text) : std::string_view();
    }
    std::span<const Word> All() const { return words_; }
    std::span<const Word> Before(const Word* end) const { return {words_.data(), end}; }

  private:
    std::vector<Word> words_;
};

// Whose say it is, and what it says.
struct Answer {
    std::string_view word;
    std::string_view answer;
};

constexpr Answer kActions[] = {
    {"-List", "List"}, {"-Check", "Check1"}, {"-Commit", "Commit"}, {"-Rollback", "Rollback"}};
constexpr Answer kInstallers[] = {{"--pipeserver", "ZEPInsPipeServer.exe"},
                                  {"--odt", "ZEPInsAppliODT.exe"}};

std::string LookUp(std::span<const Answer> answers, std::string_view word,
                   std::string_view otherwise) {
    for (const Answer& answer : answers)
        if (answer.word == word) return std::string(answer.answer);
    return std::string(otherwise);
}

std::string_view LastAction(const Words& words) {
    return words.LastText({"-List", "-Check", "-Commit", "-Rollback"});
}

std::pair<std::string, std::string> Assignment(const std::string& text) {
    // A sign at the very front belongs to the name, whatever follows it.
    if (text.starts_with('=')) return {text, "1"};
    const auto sign = std::ranges::find(text, '=');
    if (sign == text.end()) return {text, "1"};
    return {{text.begin(), sign}, {sign + 1, text.end()}};
}

std::vector<std::pair<std::string, std::string>> Assignments(std::span<const Word> words) {
    std::vector<std::pair<std::string, std::string>> assignments;
    for (const Word& word : words)
        if (word.text == "-env") assignments.push_back(Assignment(word.value));
    return assignments;
}

// As of the last "--odt".
std::optional<std::string> OdtMediaDir(const Words& words, std::string value) {
    const Word* const odt = words.Last({"--odt"});
    if (odt == nullptr) return std::nullopt;
    for (const auto& [name, assigned] : Assignments(words.Before(odt)))
        if (name == "CurrentMediaDir") value = assigned;
    return value;
}

std::vector<std::string> HandedOn(const Words& words) {
    std::vector<std::string> handedOn;
    for (const Word& word : words.All())
        if (!IsAmong(word.text, {"-wait", "-UI", "-env", "-installerPath", "-SoftMgt", "-List",
                                 "-Check", "-Commit", "-Rollback", "--pipeserver", "--odt"}))
            handedOn.push_back(word.text);
    return handedOn;
}

std::optional<std::string> Error(const Cut& cut, const Words& words) {
    if (!cut.missingValueOf.empty()) return "Bad " + cut.missingValueOf + " argument";
    const std::string action(LastAction(words));
    const bool softMgt = words.Any({"-SoftMgt"});
    if (softMgt && action.empty())
        return "-SoftMgt must be used with another flag (either -List, -Check, -Commit or "
               "-Rollback).";
    if (!softMgt && !action.empty()) return action + " must be used with the -SoftMgt flag.";
    return std::nullopt;
}

}  // namespace

OptionsModel ReadOptions(const Question& question) {
    const Cut cut = CutUp(question.arguments);
    const Words words(cut.words);
    const Word* const path = words.Last({"-installerPath"});
    OptionsModel model;
    model.wait = question.wait || words.Any({"-wait", "--pipeserver", "--odt"});
    model.useGui = question.useGui || words.Any({"-UI"});
    model.interactiveSession = !words.Any({"--pipeserver"});
    model.installerArgs = HandedOn(words);
    model.installerPath = path != nullptr ? path->value : "";
    model.softMgt = words.Any({"-SoftMgt"});
    model.softMgtReadOnly = words.Any({"-List", "-Check"});
    model.skipTemporaryCopy = words.Any({"--pipeserver", "--mgt", "--uninst"});
    model.uninstall = words.LastText({"--mgt", "--uninst"}) == "--uninst";
    model.softMgtAction = LookUp(kActions, LastAction(words), "");
    model.odtMediaDir = OdtMediaDir(words, question.currentMediaDir);
    model.installerExeName =
        LookUp(kInstallers, words.LastText({"--pipeserver", "--odt"}), question.installerExeName);
    model.assignments = Assignments(words.All());
    model.error = Error(cut, words);
    return model;
}

}  // namespace launcher::fuzz
