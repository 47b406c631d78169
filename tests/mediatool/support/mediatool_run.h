#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace launcher::test {

// One run of mediatool.exe, from outside. Texts are UTF-8.
struct MediatoolRun {
    unsigned long exitCode = 0;
    std::string output;
    std::string errors;
};

// Runs it in `folder`, where it may write nothing, with `variables` on top of this process's own,
// of which none that the launcher reads is handed on. Throws std::runtime_error when it cannot be
// started or does not end.
MediatoolRun RunMediatool(const std::vector<std::string>& arguments,
                          const std::filesystem::path& folder,
                          const std::map<std::string, std::string>& variables = {});

// The same for any console program, given with its command line.
MediatoolRun RunCommandLine(const std::string& commandLine, const std::filesystem::path& folder,
                            const std::map<std::string, std::string>& variables = {});

}  // namespace launcher::test
