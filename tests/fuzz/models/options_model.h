#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace launcher::fuzz {

// What a command line asks for.
struct OptionsModel {
    bool wait = false;
    bool useGui = false;
    bool interactiveSession = true;
    std::vector<std::string> installerArgs;
    std::string installerPath;
    bool softMgt = false;
    bool softMgtReadOnly = false;
    bool skipTemporaryCopy = false;
    bool uninstall = false;
    std::string softMgtAction;
    std::optional<std::string> odtMediaDir;  // as the variable has it
    std::string installerExeName;
    std::vector<std::pair<std::string, std::string>> assignments;  // in order
    std::optional<std::string> error;                              // what ends the program
};

struct Question {
    std::vector<std::string> arguments;  // without the program
    std::string installerExeName;
    bool useGui = false;
    bool wait = false;
    std::string currentMediaDir;  // the variable at the start
};

// Cuts the arguments into options with their values first, and then asks of each field which of
// them have a say in it.
OptionsModel ReadOptions(const Question& question);

}  // namespace launcher::fuzz
