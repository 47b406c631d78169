#include "tests/e2e/support/media.h"

#include <windows.h>

#include <stdexcept>
#include <utility>

#include "media/volume_files.h"
#include "mediatool/media/markers.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

namespace {

void WriteBelow(const stdfs::path& root, std::string_view relative, std::string_view content) {
    const stdfs::path path = root / FromUtf8(relative);
    stdfs::create_directories(path.parent_path());
    WriteFile(path, content);
}

// Not std::filesystem's own copy: MinGW's takes any two files of one drive for the same.
void CopyBuiltFile(const char* builtFile, const stdfs::path& destination) {
    if (!CopyFileW(BuiltFile(builtFile).c_str(), destination.c_str(), FALSE))
        throw std::runtime_error("cannot write " + ToUtf8(destination));
}

stdfs::path InstallerBelow(const stdfs::path& root, const std::string& osFolder,
                           const std::string& exeName) {
    return root / "inst" / osFolder / "code" / "bin" / exeName;
}

}  // namespace

bool Is64BitWindows() {
    SYSTEM_INFO system;
    GetNativeSystemInfo(&system);
    return system.wProcessorArchitecture != PROCESSOR_ARCHITECTURE_INTEL;
}

std::string UsualOs() {
    return Is64BitWindows() ? "win_b64" : "intel_a";
}

Media::Media(stdfs::path root, const std::string& launcherName)
    : root_(std::move(root)), launcher_(root_ / FromUtf8(launcherName)) {
    stdfs::create_directories(root_ / "inst" / "common");
    for (const char* name :
         {"meta.TOCxml", "media.xml", "media.db", "setup.exe", "StartTUI.exe", "setup_noUAC.exe"})
        AddFile(name, name);
    CopyBuiltFile(SETUP_PROGRAM, launcher_);
}

Media& Media::AddInstaller(const std::string& osFolder, const std::string& exeName) {
    AddStandInInstaller(root_, osFolder, exeName);
    return *this;
}

Media& Media::AddMarker(const std::string& osFolder) {
    return AddFile("inst/common/" + osFolder + ".installos");
}

Media& Media::MakeSplit(int volumeCount, const std::string& id) {
    WriteVolumeMarker(root_, 1, id);
    return AddFile("inst/volumes.txt", mediatool::CountFileText(volumeCount));
}

Media& Media::AddFile(std::string_view relative, std::string_view content) {
    WriteBelow(root_, relative, content);
    return *this;
}

std::string Media::Text() const {
    return ToUtf8(root_);
}

std::string Media::Text(std::string_view relative) const {
    return ToUtf8(root_ / FromUtf8(relative));
}

std::string Media::InstallerText(const std::string& osFolder, const std::string& exeName) const {
    return ToUtf8(InstallerBelow(root_, osFolder, exeName));
}

std::string AddStandInInstaller(const stdfs::path& root, const std::string& osFolder,
                                const std::string& exeName) {
    const stdfs::path path = InstallerBelow(root, osFolder, exeName);
    CopyStandIn(path);
    return ToUtf8(path);
}

void CopyStandIn(const stdfs::path& destination) {
    stdfs::create_directories(destination.parent_path());
    CopyBuiltFile(STANDIN_PROGRAM, destination);
}

void WriteVolumeMarker(const stdfs::path& folder, int number, const std::string& id) {
    WriteBelow(folder, MarkerName(number), mediatool::MarkerText(id));
}

}  // namespace launcher::test
