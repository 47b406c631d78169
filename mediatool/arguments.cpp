#include "mediatool/arguments.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {
namespace {

constexpr char kHelp[] = "--help";

bool AsksForHelp(const std::string& word) {
    return word == kHelp || word == "-h" || word == "/?" || word == "-?";
}

// In the place of a command, which is no path: there a slash is harmless.
bool IsHelpCommand(const std::string& word) {
    return word == "help" || word == "/help";
}

// How many characters have to be put in, left out or replaced, or to change places with their
// neighbours, to come from one to the other.
std::size_t Distance(const std::string& from, const std::string& to) {
    // Between the first i characters of one and the first j of the other.
    std::vector<std::vector<std::size_t>> least(from.size() + 1,
                                                std::vector<std::size_t>(to.size() + 1));
    for (std::size_t i = 0; i <= from.size(); ++i)
        for (std::size_t j = 0; j <= to.size(); ++j) {
            least[i][j] = i + j;
            if (i == 0 || j == 0) continue;
            const std::size_t replaced = from[i - 1] == to[j - 1] ? 0 : 1;
            least[i][j] = std::min(
                {least[i - 1][j] + 1, least[i][j - 1] + 1, least[i - 1][j - 1] + replaced});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                least[i][j] = std::min(least[i][j], least[i - 2][j - 2] + 1);
        }
    return least[from.size()][to.size()];
}

// Which of the names, one at least, may have been meant; one that only begins so as well.
std::optional<std::string> Meant(const std::string& word, const std::vector<std::string>& names) {
    const std::string lower = InLowerCase(word);
    const auto mistakes = [&lower](const std::string& name) {
        const bool isBeginning = lower.size() > 2 && name.starts_with(lower);
        return isBeginning ? 0 : Distance(lower, name);
    };
    const auto nearest = std::ranges::min_element(names, {}, mistakes);
    if (mistakes(*nearest) > std::max<std::size_t>(1, word.size() / 3)) return std::nullopt;
    return *nearest;
}

std::vector<std::string> CommandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* const command : app.get_subcommands([](const CLI::App*) { return true; }))
        names.push_back(command->get_name());
    return names;
}

std::vector<std::string> OptionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* const option : command.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    return names;
}

bool TakesPath(const CLI::Option& option) {
    return option.get_type_name() == "FOLDER" || option.get_type_name() == "FILE";
}

// In "C:\a b\" the last backslash makes the quote a part of the text, which goes on behind it. One
// in front is meant: TEMP may stand in quotes.
void CheckQuotes(const std::string& path) {
    const std::size_t quote = path.find('"');
    if (quote == 0 || quote == std::string::npos) return;
    throw BadInput("The path " + ExplainQuoteIn(path, quote));
}

class Check {
  public:
    Check(const CLI::App& command, const std::string& hint) : command_(command), hint_(hint) {}

    std::vector<std::string> Of(const std::vector<std::string>& words) {
        for (std::size_t i = 0; i < words.size(); ++i)
            if (words[i].size() > 1 && words[i].front() == '-')
                i += TakeOption(words[i], i + 1 < words.size() ? &words[i + 1] : nullptr);
            else
                TakePath(words[i]);
        for (const CLI::Option* const option : command_.get_options())
            if (option->get_required() && !IsGiven(*option))
                throw BadInput(option->get_name() + " is required; mediatool help " +
                               command_.get_name() + " tells more.");
        return checked_;
    }

  private:
    // How many of the words after it belong to it.
    std::size_t TakeOption(const std::string& word, const std::string* next) {
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const CLI::Option& option = Known(name);
        const bool takesValue = option.get_items_expected_max() > 0;
        if (!takesValue && equals != std::string::npos) throw BadInput(name + " takes no value.");
        const bool isAgain = IsGiven(option);
        given_.push_back(&option);
        if (!takesValue) {
            checked_.push_back(name);
            return 0;
        }
        if (isAgain && option.get_multi_option_policy() != CLI::MultiOptionPolicy::TakeAll)
            throw BadInput(name + " is given twice.");
        const bool hasNext = next != nullptr && Find(*next) == nullptr;
        if (equals == std::string::npos && !hasNext)
            throw BadInput(name + " is there without its value.");
        const std::string value = equals == std::string::npos ? *next : word.substr(equals + 1);
        if (TakesPath(option)) CheckQuotes(value);
        checked_.insert(checked_.end(), {name, value});
        return equals == std::string::npos ? 1 : 0;
    }

    void TakePath(const std::string& word) {
        CheckQuotes(word);
        const auto options = command_.get_options();
        const auto room = std::ranges::find_if(options, [this](const CLI::Option* option) {
            return option->get_positional() &&
                   std::ranges::count(given_, option) < option->get_items_expected_max();
        });
        if (room == options.end())
            throw BadInput(Quoted(word) +
                           " is one argument too many; a path with blanks needs quotes" + hint_ +
                           ".");
        given_.push_back(*room);
        // CLI11 takes one in brackets for a list, where there may be several.
        const bool isList = (*room)->get_allow_extra_args() && word.starts_with('[');
        checked_.push_back(isList ? ".\\" + word : word);
    }

    const CLI::Option* Find(const std::string& name) const {
        return name.starts_with('-') ? command_.get_option_no_throw(name) : nullptr;
    }

    const CLI::Option& Known(const std::string& name) const {
        if (const CLI::Option* const option = Find(name)) return *option;
        const auto meant = Meant(name, OptionNames(command_));
        throw BadInput("There is no option " + Quoted(name) +
                       (meant ? "; did you mean " + *meant : "") + hint_ + (meant ? "?" : "."));
    }

    bool IsGiven(const CLI::Option& option) const {
        return std::ranges::count(given_, &option) > 0;
    }

    const CLI::App& command_;
    const std::string& hint_;
    std::vector<const CLI::Option*> given_;  // once for each time
    std::vector<std::string> checked_;
};

}  // namespace

std::vector<std::string> WithHelpAsked(std::vector<std::string> arguments) {
    const bool isHelp = !arguments.empty() && IsHelpCommand(arguments.front());
    if (!isHelp && std::ranges::none_of(arguments, AsksForHelp)) return arguments;
    if (isHelp) {
        std::erase_if(arguments, [](const std::string& word) {
            return IsHelpCommand(word) || AsksForHelp(word);
        });
        if (arguments.size() > 1)
            throw BadInput(Quoted(arguments[1]) +
                           " is one argument too many; help takes the name of one command.");
    }
    const bool hasCommand = !arguments.empty() && !AsksForHelp(arguments.front());
    return hasCommand ? std::vector<std::string>{arguments.front(), kHelp}
                      : std::vector<std::string>{kHelp};
}

const CLI::App* CommandOf(const CLI::App& app, const std::vector<std::string>& arguments) {
    const std::vector<std::string> names = CommandNames(app);
    const std::string all = "; there are " + Listed(names, ", ", " and ") + ".";
    if (arguments.empty()) throw BadInput("The command is missing" + all);
    const std::string& name = arguments.front();
    if (name == kHelp || name == "--version") return nullptr;
    if (std::ranges::count(names, name) > 0) return app.get_subcommand(name);
    if (name.starts_with('-'))
        throw BadInput("The command has to stand before " + Quoted(name) + all);
    const auto meant = Meant(name, names);
    throw BadInput("There is no command " + Quoted(name) +
                   (meant ? "; did you mean " + *meant + "?" : all));
}

std::vector<std::string> Checked(const CLI::App& command, const std::vector<std::string>& arguments,
                                 const std::string& hint) {
    if (std::ranges::count(arguments, kHelp) > 0) return arguments;
    std::vector<std::string> checked =
        Check(command, hint).Of({arguments.begin() + 1, arguments.end()});
    checked.insert(checked.begin(), arguments.front());
    return checked;
}

void TakesLaunchersToo(CLI::App& command) {
    struct Formatter : CLI::Formatter {
        std::string make_usage(const CLI::App* app, std::string name) const override {
            std::string usage = CLI::Formatter::make_usage(app, std::move(name));
            return usage.insert(usage.find_last_not_of('\n') + 1, " [-- LAUNCHER ARGUMENTS]");
        }
    };
    command.formatter(std::make_shared<Formatter>());
}

CLI::Option* MayBeGivenAgain(CLI::Option* option) {
    return option->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->allow_extra_args(false);
}

CLI::Validator OneOf(const std::vector<std::string>& values) {
    return CLI::Validator(
        [values](const std::string& value) {
            if (std::ranges::count(values, value) > 0) return std::string();
            return Listed(values, ", ", " or ") + ", not " + Quoted(value) + ".";
        },
        "{" + Listed(values, ",", ",") + "}");
}

}  // namespace launcher::mediatool
