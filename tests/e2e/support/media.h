#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace launcher::test {

inline constexpr char kGuiInstaller[] = "ZEPInsAppliGUI.exe";

// Of the Windows that the tests run on, whatever the launcher and the tests were built for.
bool Is64BitWindows();
// The per-OS folder that the launcher takes there when a medium has it.
std::string UsualOs();

// A media folder with the real launcher and the other entries at its root, and with what a test
// adds. Paths and texts are UTF-8.
class Media {
  public:
    // Makes the folder and its root files, without any installer. `launcherName` is the name of
    // the launcher that Launcher() starts; "setup.exe" is there as well.
    explicit Media(std::filesystem::path root, const std::string& launcherName = "setup.exe");

    // The stand-in installer in "inst\<osFolder>\code\bin".
    Media& AddInstaller(const std::string& osFolder, const std::string& exeName = kGuiInstaller);
    // The marker "inst\common\<osFolder>.installos".
    Media& AddMarker(const std::string& osFolder);
    // The count in "inst\volumes.txt" and the marker of volume 1.
    Media& MakeSplit(int volumeCount, const std::string& id);
    Media& AddFile(std::string_view relative, std::string_view content = {});

    const std::filesystem::path& Root() const { return root_; }
    const std::filesystem::path& Launcher() const { return launcher_; }
    std::string Text() const;
    std::string Text(std::string_view relative) const;
    // Where AddInstaller puts an installer.
    std::string InstallerText(const std::string& osFolder,
                              const std::string& exeName = kGuiInstaller) const;

  private:
    std::filesystem::path root_;
    std::filesystem::path launcher_;
};

// The stand-in installer of a medium without a launcher: the separate installer media.
// Puts it in "<root>\inst\<osFolder>\code\bin"; returns its path.
std::string AddStandInInstaller(const std::filesystem::path& root, const std::string& osFolder,
                                const std::string& exeName = kGuiInstaller);
// A copy of the stand-in under another name.
void CopyStandIn(const std::filesystem::path& destination);
// The marker of one volume, with the identifier of its set.
void WriteVolumeMarker(const std::filesystem::path& folder, int number, const std::string& id);

}  // namespace launcher::test
