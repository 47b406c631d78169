#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace launcher::test {

// What the stand-in installer saw, in UTF-8.
struct InstallerReport {
    std::string commandLine;
    std::vector<std::string> shellArguments;    // as CommandLineToArgvW splits the line
    std::vector<std::string> runtimeArguments;  // as the C runtime does
    std::string module;                         // its own path
    std::string folder;                         // its current folder
    std::vector<std::pair<std::string, std::string>> environment;
    std::vector<std::string> inheritedFiles;

    // The arguments without the program.
    std::vector<std::string> Arguments() const;
    // The value of a variable, whatever the case of its name; nothing when it is not there.
    std::optional<std::string> Variable(const std::string& name) const;
};

// Nothing when there is no such file.
std::optional<InstallerReport> ReadInstallerReport(const std::filesystem::path& path);

}  // namespace launcher::test
