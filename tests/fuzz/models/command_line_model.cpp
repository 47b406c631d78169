#include "tests/fuzz/models/command_line_model.h"

#include "tests/fuzz/models/path_model.h"

namespace launcher::fuzz {
namespace {

void SkipBlanks(std::string_view& rest) {
    while (!rest.empty() && (rest[0] == ' ' || rest[0] == '\t'))
        rest.remove_prefix(1);
}

std::string_view Take(std::string_view& rest, std::size_t count) {
    const std::string_view taken = rest.substr(0, count);
    rest.remove_prefix(taken.size());
    return taken;
}

// The program: a quote goes up to the next one, and backslashes mean nothing.
std::string TakeProgram(std::string_view& rest) {
    if (!rest.starts_with('"')) return std::string(Take(rest, rest.find_first_of(" \t")));
    rest.remove_prefix(1);
    const std::string program(Take(rest, rest.find('"')));
    Take(rest, 1);
    return program;
}

// Backslashes in front of a quote are halved, and an odd one makes the quote a character.
std::string TakeArgument(std::string_view& rest) {
    std::string argument;
    bool quoted = false;
    while (!rest.empty() && (quoted || (rest[0] != ' ' && rest[0] != '\t'))) {
        const std::size_t backslashes = Take(rest, rest.find_first_not_of('\\')).size();
        if (!rest.starts_with('"')) {
            argument.append(backslashes, '\\');
            if (backslashes == 0) argument += Take(rest, 1);
            continue;
        }
        argument.append(backslashes / 2, '\\');
        rest.remove_prefix(1);
        if (backslashes % 2 != 0) {
            argument += '"';
            continue;
        }
        // Two of them inside quotes stand for one, and end the quotes as well.
        if (quoted && rest.starts_with('"')) argument += Take(rest, 1);
        quoted = !quoted;
    }
    return argument;
}

}  // namespace

std::string StartOfLine(const CommandLineParts& parts) {
    std::string start = parts.debugProgram == "1" ? "cmd.exe /k echo" : parts.debugProgram;
    if (!start.empty()) start += ' ';
    const bool isQuoted = parts.installer.starts_with('"');
    return start + (isQuoted ? parts.installer : '"' + parts.installer + '"');
}

std::vector<std::string> AllArguments(const CommandLineParts& parts) {
    std::vector<std::string> all;
    if (!parts.softMgt) all = {"-CDpath", parts.mediaDir};
    all.insert(all.end(), parts.arguments.begin(), parts.arguments.end());
    if (!parts.softMgt) return all;
    all.insert(all.end(), {"--mgt", ParentOf(ParentOf(MakePath(parts.mediaDir))).Text()});
    if (!parts.action.empty())
        all.insert(all.end(), {"--var", "Radio_ZEPSoftwareMgtCheck?" + parts.action + "=true"});
    return all;
}

std::vector<std::pair<std::string, std::string>> VariablesSet(const CommandLineParts& parts) {
    if (!parts.softMgt || parts.action.empty()) return {};
    return {{"ZEPSoftwareMgtSingleExec", "1"}, {"ZEPAdmTUIValue_SoftwareMgt_Resume", "!r"}};
}

std::optional<std::vector<std::string>> ReadQuotedRow(std::string_view row) {
    std::vector<std::string> arguments;
    while (!row.empty()) {
        if (Take(row, 2) != " \"") return std::nullopt;
        const std::size_t end = row.find('"');
        if (end == std::string_view::npos) return std::nullopt;
        std::string argument(Take(row, end));
        Take(row, 1);
        if (argument.ends_with('\\')) {
            argument.pop_back();
            if (!argument.ends_with('\\')) return std::nullopt;
        }
        arguments.push_back(argument);
    }
    return arguments;
}

std::vector<std::string> SplitAsWindowsDoes(std::string_view line) {
    std::vector<std::string> arguments = {TakeProgram(line)};
    SkipBlanks(line);
    while (!line.empty()) {
        arguments.push_back(TakeArgument(line));
        SkipBlanks(line);
    }
    return arguments;
}

}  // namespace launcher::fuzz
