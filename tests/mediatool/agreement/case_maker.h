#pragma once

#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/mediatool/agreement/case.h"

namespace launcher::test {

// What a case is made for; two of ten are for whatever comes.
enum class Purpose {
    Anything,
    Anything2,
    Copy,
    CopyOfBoth,
    FailedCopy,
    FailedStart,
    OtherMedia,
    Volumes,
    Dialog,
    Machine,
    Count
};

struct NoNetwork {};

// A folder on the network, removed at the end. Throws NoNetwork.
struct NetworkPlace {
    explicit NetworkPlace(const std::string& name);
    NetworkPlace(const NetworkPlace&) = delete;
    NetworkPlace& operator=(const NetworkPlace&) = delete;
    ~NetworkPlace();
    std::filesystem::path path;
};

inline constexpr const char* kFlavours[] = {"win_b64", "win_csa64", "intel_a"};

// A copy, for all its bytes: while another test runs a program, no other name of the same file can
// be removed.
void PutProgram(const char* builtFile, const std::filesystem::path& destination);
void Put(const std::filesystem::path& file, const std::string& content = {});

// Makes one case, step by step, each with the next of the numbers that its seed gives.
class Maker {
  public:
    Maker(unsigned seed, const std::filesystem::path& folder, const std::filesystem::path& work);

    Case Make();

  private:
    bool IsFree() const { return purpose_ <= Purpose::Anything2; }
    bool IsFor(Purpose purpose) const { return purpose_ == purpose; }

    // Not a standard distribution: those give other numbers in other libraries.
    unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    bool Chance(unsigned percent) { return Below(100) < percent; }
    template <class T, std::size_t N>
    const T& Pick(const T (&from)[N]) {
        return from[Below(N)];
    }
    void Note(const std::string& feature) { case_.features.push_back(feature); }
    template <class T, class... Arguments>
    T& Hold(Arguments&&... arguments) {
        const auto place = std::make_shared<T>(std::forward<Arguments>(arguments)...);
        case_.places.push_back(place);
        return *place;
    }

    // What lies on the media: case_media.cpp.
    void MakeMedia();
    bool HasInstallers();
    void MakeInstallers();
    void AddInstaller(const std::filesystem::path& root, const char* flavour);
    std::string CountText(int volumes);
    void Marker(const std::filesystem::path& folder, int number, const std::string& id);
    void MakeVolumes();
    void MakeInstallerMedia();

    // What the launcher is given: case_run.cpp.
    void MakeArguments();
    void MakeVariables();
    void SetDebugProgram();

    // What the case is for: case_purpose.cpp.
    void ReplaceInstallers(bool byFolders);
    void LoseVolumes();
    std::string TempThatWindowsChanges();
    void MakeCopyFail();
    void MakeStartFail();
    std::string TempThatFillsPaths();
    void MakeCopy();
    void FindOtherMedia();
    void PickInDialog();
    void PretendMachine();
    void MakePurpose();

    // Where the media lies: case.cpp.
    void MakeNetworkMedia();
    void MakePlace();

    unsigned seed_;
    std::mt19937 random_;
    Purpose purpose_;
    std::string name_;  // of this case and this process alone
    std::filesystem::path folder_;
    std::filesystem::path work_;
    std::filesystem::path launcherName_;
    std::string externalText_;
    std::filesystem::path media_;
    std::filesystem::path external_;
    std::vector<std::filesystem::path> installers_;
    Case case_;
};

}  // namespace launcher::test
