#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/e2e/support/launcher_run.h"
#include "tests/mediatool/agreement/case.h"
#include "tests/mediatool/agreement/messages.h"

namespace launcher::test {

// One case, rehearsed and run: everything that the dry run says of it is expected of the real run.
class Comparison {
  public:
    // The case's files are below `files` and `work`, the folder that both programs run in. With
    // `oneStream`, both streams of the launcher are one, so that the order of all lines shows.
    Comparison(const Case& made, const std::filesystem::path& files,
               const std::filesystem::path& work, bool oneStream);

    // What the runs came to, in words: "started", "copies".
    std::set<std::string> Run();

    // What the dry run said.
    const Json& Dry() const { return dry_; }

  private:
    Json RunDry() const;
    LauncherRun RunReal() const;
    void CompareEnd(const LauncherRun& real);
    void CompareMessages(const LauncherRun& real);
    void CompareCopy(const std::vector<std::string>& written);
    void CompareInstallersPlace(const LauncherRun& real);
    void CompareVolumes(const LauncherRun& real);
    void CompareInstaller(const InstallerReport& seen) const;
    void Note(const std::string& what, bool happened = true);

    const Case& made_;
    std::filesystem::path files_;
    std::filesystem::path work_;
    bool oneStream_;
    std::map<std::string, std::string> variables_;
    Json dry_;
    std::set<std::string> seen_;
};

}  // namespace launcher::test
