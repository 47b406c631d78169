#pragma once

#include <filesystem>
#include <string>

#include "tests/support/claim.h"

namespace launcher::test {

// Second names for a folder, each while the object lives. Wine makes none itself: there they are
// symbolic links of the host, and each costs this process a handle that Wine never closes. All
// throw std::runtime_error when the name is not there afterwards.

// A link to a folder: a junction, which needs no privileges. Must end before its target does.
class FolderLink {
  public:
    FolderLink(const std::filesystem::path& link, const std::filesystem::path& target);
    FolderLink(const FolderLink&) = delete;
    FolderLink& operator=(const FolderLink&) = delete;
    ~FolderLink();

  private:
    std::filesystem::path link_;
};

// A drive letter for a temporary folder. Programs that want the same one have it one after the
// other, and take it from one that was killed.
class MappedDrive {
  public:
    // A free letter, or `drive`, a small letter and a colon.
    explicit MappedDrive(const std::filesystem::path& folder);
    MappedDrive(const std::string& drive, const std::filesystem::path& folder);
    MappedDrive(const MappedDrive&) = delete;
    MappedDrive& operator=(const MappedDrive&) = delete;
    ~MappedDrive();

    std::filesystem::path Root() const { return letter_ + L"\\"; }

  private:
    std::wstring letter_;  // "q:"
    Claim claim_;
};

// A disk of 256 KiB in the place of an empty folder. Only Wine on a host whose root runs the test
// has one.
class SmallDisk {
  public:
    explicit SmallDisk(const std::filesystem::path& folder);
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk();

    // False when it could not be made: the folder is as it was.
    bool IsThere() const;

  private:
    std::filesystem::path folder_;
    std::filesystem::path below_;  // a file in the folder itself, which the disk hides
};

// The name of a local file over the network; under Wine of one on C:. On Windows administrators
// alone can open it, where the machine shares its disks at all.
std::filesystem::path NetworkName(const std::filesystem::path& path);

// A network path that leads to a folder of this machine that can be written to; on Windows with the
// same conditions.
std::filesystem::path NetworkFolder();

}  // namespace launcher::test
