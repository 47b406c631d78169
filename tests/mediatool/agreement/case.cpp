#include "tests/mediatool/agreement/case_maker.h"

#include <windows.h>

#include <stdexcept>

#include "tests/support/links.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

NetworkPlace::NetworkPlace(const std::string& name) {
    const stdfs::path folder = NetworkFolder();
    std::error_code ignored;
    if (!stdfs::exists(folder, ignored)) throw NoNetwork();
    path = folder / name;
}

NetworkPlace::~NetworkPlace() {
    std::error_code ignored;
    stdfs::remove_all(path, ignored);
}

void PutProgram(const char* builtFile, const stdfs::path& destination) {
    stdfs::create_directories(destination.parent_path());
    if (!CopyFileW(BuiltFile(builtFile).c_str(), destination.c_str(), FALSE))
        throw std::runtime_error("cannot write " + ToUtf8(destination));
}

void Put(const stdfs::path& file, const std::string& content) {
    stdfs::create_directories(file.parent_path());
    WriteFile(file, content);
}

Maker::Maker(unsigned seed, const stdfs::path& folder, const stdfs::path& work)
    : seed_(seed),
      random_(seed),
      purpose_(static_cast<Purpose>(seed % static_cast<unsigned>(Purpose::Count))),
      name_(std::to_string(seed) + "-" + std::to_string(GetCurrentProcessId())),
      folder_(folder),
      work_(work) {}

Case Maker::Make() {
    MakeMedia();
    MakeInstallerMedia();
    MakeInstallers();
    MakeVolumes();
    MakeArguments();
    MakeVariables();
    MakePurpose();
    MakePlace();
    return case_;
}

// Wine names a program that is started from the network in a way of its own, so there it is the
// media of --odt that lies there.
void Maker::MakeNetworkMedia() {
    Note("media on the network");
    const stdfs::path network = Hold<NetworkPlace>(name_ + "-media").path;
    for (const auto& entry : stdfs::recursive_directory_iterator(media_)) {
        const stdfs::path to = network / "m" / entry.path().lexically_relative(media_);
        stdfs::create_directories(entry.is_directory() ? to : to.parent_path());
        if (!entry.is_directory()) CopyFileW(entry.path().c_str(), to.c_str(), FALSE);
    }
    case_.arguments.push_back("--odt");
    case_.variables["CurrentMediaDir"] = ToUtf8(network / "m");
}

void Maker::MakePlace() {
    case_.launcher = media_ / launcherName_;
    if (IsFor(Purpose::Dialog)) return;
    const unsigned place = Below(12);
    // Elsewhere the other volumes are not beside it any more.
    if (IsFor(Purpose::Volumes) && place != 1) return;
    switch (place) {
        case 0:
            Note("at a drive's root");
            case_.launcher = Hold<MappedDrive>("j:", media_).Root() / launcherName_;
            break;
        case 1:
            Note("on a drive");
            case_.launcher = Hold<MappedDrive>("k:", folder_).Root() /
                             media_.lexically_relative(folder_) / launcherName_;
            break;
        case 2:
            Note("by a link");
            Hold<FolderLink>(folder_ / "link to media", media_);
            case_.launcher = folder_ / "link to media" / launcherName_;
            break;
        case 3:
            MakeNetworkMedia();
            break;
        default:
            break;
    }
}

std::optional<Case> MakeCase(unsigned seed, const stdfs::path& folder, const stdfs::path& work) {
    try {
        return Maker(seed, folder, work).Make();
    } catch (const NoNetwork&) {
        return std::nullopt;
    }
}

}  // namespace launcher::test
