#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "mediatool/media/launcher_view.h"
#include "mediatool/validate/validate.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

inline constexpr std::uint16_t kX64 = 0x8664;
inline constexpr std::uint16_t kX86 = 0x014C;
inline constexpr std::uint16_t kArm64 = 0xAA64;

// The headers of a Windows program, and nothing else of it.
std::string ProgramBytes(std::uint16_t machine, bool isLibrary = false);

// The launcher of this build.
const std::string& LauncherBytes();

// The same without symbols, which that of a debug build has behind all else.
std::string LauncherWithoutSymbols();

// The same as one of another version.
std::string OtherLauncherBytes();
inline const std::string kOtherVersion = "9" + std::string(LAUNCHER_VERSION).substr(1);

// A medium without mistakes, in a temporary folder, and what tests do to it. File names are
// relative to the folder of volume 1 and may lead out of it.
class SampleMedia {
  public:
    // The identifier of the split ones is SET, that of the outer volumes OUTER, whose first is 7.
    explicit SampleMedia(mediatool::Layout layout = mediatool::Layout::NotSplit, int volumes = 3);

    SampleMedia& Write(std::string_view relative, std::string_view content = {});
    SampleMedia& Remove(std::string_view relative);
    SampleMedia& Rename(std::string_view relative, std::string_view to);
    SampleMedia& MakeDir(std::string_view relative);
    SampleMedia& Marker(std::string_view relative, std::string_view id = "SET");

    // Volume 1, or what is at `relative` to it.
    std::string Text(std::string_view relative = {}) const;
    const TemporaryFolder& Folder() const { return *folder_; }

    mediatool::Validation Validate(const std::vector<std::string>& others = {}) const;

  private:
    void WriteBasics();
    void WriteVolumes(mediatool::Layout layout, int volumes);

    std::unique_ptr<TemporaryFolder> folder_;
    std::string first_;  // of volume 1, relative to the folder
};

}  // namespace launcher::test
