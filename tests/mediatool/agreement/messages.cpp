#include "tests/mediatool/agreement/messages.h"

#include <windows.h>

#include <map>
#include <regex>
#include <sstream>

#include "fs/exceptions.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

std::string ConsoleText(const Json& message) {
    static const std::map<std::string, std::string> prefixes = {
        {"info", " INFO: "}, {"warning", " WARN: "}, {"error", "ERROR: "}, {"plain", "       "}};
    std::string line = prefixes.at(message["severity"]) + message["text"].get<std::string>();
    for (std::size_t at = line.find('\n'); at != std::string::npos; at = line.find('\n', at + 1))
        line.insert(at + 1, "       ");
    return line + "\n";
}

void AddLines(std::vector<std::string>& lines, const std::string& text) {
    std::istringstream input(text);
    for (std::string line; std::getline(input, line);)
        lines.push_back(line);
}

// The rest of a line after this, when the line has it.
bool TakeRest(const std::string& line, const std::string& start, std::string& rest) {
    const std::size_t at = line.find(start);
    if (at == std::string::npos) return false;
    rest = line.substr(at + start.size());
    return true;
}

// The same of a trace message, which may come in a box.
bool TakeRestOfTrace(const std::string& line, const std::string& start, std::string& rest) {
    return TakeRest(line, "       " + start, rest) || TakeRest(line, "box: " + start, rest);
}

}  // namespace

std::string WithoutUuid(const std::string& text) {
    static const std::regex uuid(
        "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}", std::regex::icase);
    return std::regex_replace(text, uuid, "{UUID}");
}

std::vector<std::string> WithoutUuid(std::vector<std::string> texts) {
    for (std::string& text : texts)
        text = WithoutUuid(text);
    return texts;
}

std::string WithoutCr(std::string text) {
    std::erase(text, '\r');
    return text;
}

std::string Stream(const Json& dry, const std::string& name) {
    std::string text;
    for (const Json& message : dry["messages"])
        if (message["stream"] == name) text += ConsoleText(message);
    return text;
}

std::size_t Dialogs(const Json& dry) {
    std::size_t count = 0;
    for (const Json& message : dry["messages"])
        count += message["dialog"].get<bool>();
    return count;
}

std::string WithWinesCode(const std::string& text) {
    const bool isStart = text.starts_with("Setup failed to create process\n");
    const std::size_t code = text.find("\nrc=3\n");
    if (!IsWine() || !isStart || code == std::string::npos) return text;
    return text.substr(0, code) + "\nrc=2\nmsg=" + SystemErrorText(ERROR_FILE_NOT_FOUND) + "\r\n";
}

std::vector<std::string> Told(const Json& dry, bool oneStream) {
    std::vector<std::string> told;
    for (const Json& message : dry["messages"]) {
        if (message["dialog"]) continue;
        if (message["box"])
            told.push_back("box: " + WithWinesCode(message["text"]));
        else if (oneStream || message["stream"] == "output")
            AddLines(told, ConsoleText(message));
    }
    return told;
}

std::vector<std::string> Said(const LauncherRun& real) {
    std::vector<std::string> said;
    std::size_t done = 0;
    const auto addUntil = [&](std::size_t end) {
        AddLines(said, WithoutUuid(WithoutCr(real.output.substr(done, end - done))));
        done = end;
    };
    for (const Box& box : real.boxes) {
        addUntil(box.written);
        said.push_back("box: " + WithoutUuid(box.text));
    }
    addUntil(real.output.size());
    return said;
}

bool AreAmong(const std::vector<std::string>& some, const std::vector<std::string>& all) {
    auto next = some.begin();
    for (const std::string& text : all)
        if (next != some.end() && *next == text) ++next;
    return next == some.end();
}

FoundInstaller FoundIn(const LauncherRun& real) {
    FoundInstaller found;
    std::string asked;
    std::string rest;
    for (const std::string& line : Said(real)) {
        if (TakeRest(line, "Argument \"-installerPath\" found", rest)) asked = "-installerPath";
        if (TakeRest(line, "Environment variable ZEP_TALVOR_Installer is defined", rest))
            asked = "ZEP_TALVOR_Installer";
        if (TakeRest(line, "Installer found in current media: \"", rest))
            found = {rest.substr(0, rest.rfind('"')), "current-media"};
        if (TakeRest(line, "Installer Media: \"", rest))
            found = {rest.substr(0, rest.rfind('"')), asked};
    }
    if (!real.dialogs.empty() && !found.at.empty()) found.by = "folder-dialog";
    return found;
}

FoundVolumes VolumesIn(const LauncherRun& real) {
    FoundVolumes found;
    std::string rest;
    for (const std::string& line : Said(real)) {
        if (TakeRest(line, "This media is composed of ", rest))
            found.isSplit = !rest.starts_with("m");
        if (TakeRestOfTrace(line, "All volumes found in: ", rest)) found.areInOneFolder = true;
        if (TakeRestOfTrace(line, "AM volume ", rest)) found.areInOuterVolumes = true;
        if (TakeRestOfTrace(line, "Volume ", rest) && TakeRest(rest, " found in: ", rest))
            found.folders.push_back(rest);
    }
    return found;
}

}  // namespace launcher::test
