#include "tests/soak/media_set.h"

#include "tests/support/temporary_folder.h"

namespace launcher::soak {

namespace stdfs = std::filesystem;
using test::Media;

namespace {

constexpr int kLargeCount = 300;  // files

Media WithInstallers(const stdfs::path& root) {
    Media media(root);
    for (const char* const name : {test::kGuiInstaller, kPipeServer, kOdtInstaller})
        media.AddInstaller(kOsFolder, name);
    return media.AddFile("inst/common/deep/er/file.dat", "content");
}

Media WithoutCount(const stdfs::path& root) {
    return WithInstallers(root).AddFile("inst/volumes.txt", "three\r\n");
}

// The first of `count` volumes, and those beside it that are there.
Media FirstVolume(const stdfs::path& folder, int count, int present) {
    for (int number = 2; number <= present; ++number)
        test::WriteVolumeMarker(folder / std::to_string(number), number, kSetId);
    return WithInstallers(folder / "1").MakeSplit(count, kSetId);
}

// Of sizes around that of a buffer, in a handful of folders.
void AddManyFiles(Media& media) {
    for (int i = 0; i < kLargeCount; ++i)
        media.AddFile("inst/many/" + std::to_string(i % 7) + "/" + std::to_string(i) + ".dat",
                      std::string(static_cast<std::size_t>(i) * 997 % 70000, 'x'));
}

}  // namespace

MediaSet::MediaSet(const stdfs::path& folder)
    : ordinary_(WithInstallers(folder / "ordinary")),
      foreign_(Media(folder / "foreign")),
      damaged_(WithoutCount(folder / "damaged")),
      split_(FirstVolume(folder / "split", 3, 3)),
      incomplete_(FirstVolume(folder / "incomplete", 3, 2)),
      large_(WithoutCount(folder / "large")) {
    AddManyFiles(*large_);
}

std::string MediaSet::Volume(const Media& first, int number) {
    return test::ToUtf8(first.Root().parent_path() / std::to_string(number));
}

}  // namespace launcher::soak
