#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "tests/support/wine.h"

namespace launcher::test {

// The names, without the extension, of the libraries that attackers put beside programs.
std::vector<std::string> UsualNames();

// Writes hostile libraries under these names into a folder, which is made.
void PlantHostileLibraries(const std::filesystem::path& folder,
                           const std::vector<std::string>& names);

// While it lives, Wine lets programs of one file name load other libraries of these names than its
// own, as Windows does anyway.
class NativeFirst {
  public:
    NativeFirst(const std::string& exeName, const std::vector<std::string>& names,
                const std::string& order = "native,builtin");

  private:
    WineSettings settings_;
};

// The names of the hostile libraries that a program loaded, from the file that they report to.
std::set<std::string> HostileLoads(const std::filesystem::path& report,
                                   const std::filesystem::path& program);

}  // namespace launcher::test
