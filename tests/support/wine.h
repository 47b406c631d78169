#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/claim.h"

namespace launcher::test {

// Wine plays Windows on other systems; what a test does with it in particular is here.

bool IsWine();

// Whether a message says that a process could not be created for a reason of Wine's: error 1359,
// which it has now and then, whoever asks. Such a run is worth repeating.
bool StumbledOverWine(const std::vector<std::string>& messages);

// A path known to the build, which may be one of another system, as this program can open it.
std::filesystem::path BuiltFile(const char* path);

// What Wine keeps in its registry for programs of one file name: nothing at first, and again at the
// end. On Windows it does nothing.
class WineSettings {
  public:
    explicit WineSettings(const std::string& exeName);
    WineSettings(const WineSettings&) = delete;
    WineSettings& operator=(const WineSettings&) = delete;
    ~WineSettings();

    // Poses as another Windows: "winxp64", "vista", "win7", "win8", "win81", "win10".
    void PoseAs(const std::string& version);
    // Which of its own ("builtin") and other ("native") libraries a program gets. The file in the
    // system folder is the genuine one again if a program that replaced it was killed.
    void OverrideDll(const std::string& dll, const std::string& order);

  private:
    std::wstring key_;
};

// Another library in the place of one in the system folder while it lives. The genuine one is saved
// beside it; what a program that was killed left there is put back first.
class SystemDll {
  public:
    SystemDll(const std::string& name, const std::filesystem::path& replacement);
    SystemDll(const SystemDll&) = delete;
    SystemDll& operator=(const SystemDll&) = delete;
    ~SystemDll();

  private:
    Claim claim_;
    std::filesystem::path path_;
};

}  // namespace launcher::test
