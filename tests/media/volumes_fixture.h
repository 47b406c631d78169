#pragma once

#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

#include "fs/owners.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

// All that a search for volumes leaves behind. Every member is compared, so a test names each one
// that is not empty.
struct Outcome {
    int result = 0;
    bool skipTemporaryCopy = false;
    std::vector<std::string> volumes = {};   // found in folders of their own
    std::vector<std::string> messages = {};  // journal lines (fake_messages.h)
    std::string volumesCount = {};           // "ZEPAdmInstVolumesCount"
    std::string mtbDir = {};                 // "ZEPAdmInstMTBDIR"
    std::string firstOuterVolume = {};       // "ZEPAdmInstFirstAMVolume"
    std::string firstOuterPath = {};         // "ZEPAdmInstFirstAMPath"
    std::string outerRelativePath = {};      // "ZEPAdmInstAMRelativePath"

    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out);

// Calls ResolveVolumes, with each of the five variables set to something stale before.
Outcome Resolve(const std::string& mediaDir, bool softMgt = false);

// A split medium in a temporary folder. Paths are relative to that folder, with slashes. The id of
// the media is "X" throughout, that of an outer set "Y", and "Z" is foreign to both.
class VolumesTest : public testing::Test {
  protected:
    std::string At(const std::string& relative) const { return folder_.Text(relative); }

    void Count(const std::string& volumeOne, const std::string& line) const {
        folder_.Write(volumeOne + "/inst/volumes.txt", line + "\r\n");
    }
    void Marker(const std::string& dir, int number, const std::string& id) const {
        folder_.Write(dir + "/" + std::to_string(number) + ".txt",
                      "Made by hand\r\nMTBDIR=" + id + "\r\n");
    }
    // Volume 1: the count file and its marker.
    void VolumeOne(const std::string& dir, int count) const {
        Count(dir, std::to_string(count));
        Marker(dir, 1, "X");
    }
    // An existing file, opened so that nobody else can read it.
    FileHandle Lock(const std::string& relative) const;

    // The messages.
    static std::string Plain(const std::string& text) { return "plain trace: " + text; }
    static std::string Warning(const std::string& text) { return "warning trace: " + text; }
    static std::string Composed(const std::string& line) {
        return "trace: This media is composed of " + line + " volumes.";
    }
    std::string Found(int volume, const std::string& dir) const {
        return Plain("Volume " + std::to_string(volume) + " found in: " + At(dir));
    }
    std::string FoundOuter(int volume, const std::string& dir) const {
        return Plain("AM volume " + std::to_string(volume) + " found in: " + At(dir));
    }
    // "Volume 2" or "AM volume 8" of another medium.
    std::string Foreign(const std::string& volume, const std::string& id, const std::string& dir,
                        const std::string& ownId) const {
        return Warning(volume + " of " + id + " found in " + At(dir) + " instead of " + ownId);
    }
    static std::string Missing() {
        return Warning("Missing volumes. Please make sure you copied everything correctly.");
    }

    // The outcome of a search that ended with 0 after it knew the media's id. The volumes are those
    // found before that.
    static Outcome Failed(int count, std::vector<std::string> messages,
                          std::vector<std::string> volumes = {}) {
        messages.insert(messages.begin(), Composed(std::to_string(count)));
        return {.volumes = std::move(volumes),
                .messages = std::move(messages),
                .volumesCount = std::to_string(count),
                .mtbDir = "X"};
    }

    const TemporaryFolder folder_;
};

}  // namespace launcher::test
