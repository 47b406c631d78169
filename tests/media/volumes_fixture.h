#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/media/volumes_outcome.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

// A split media in a temporary folder. Paths are relative to that folder, with slashes. The id of
// the media is "X" throughout, that of an outer set "Y", and "Z" is foreign to both.
class VolumesTest : public testing::Test {
  protected:
    std::string At(const std::string& relative) const { return folder.Text(relative); }

    void Count(const std::string& volumeOne, const std::string& line) const {
        folder.Write(volumeOne + "/inst/volumes.txt", line + "\r\n");
    }
    void Marker(const std::string& dir, int number, const std::string& id) const {
        folder.Write(dir + "/" + std::to_string(number) + ".txt",
                     "Made by hand\r\nMTBDIR=" + id + "\r\n");
    }
    // Volume 1: the count file and its marker.
    void VolumeOne(const std::string& dir, int count) const {
        Count(dir, std::to_string(count));
        Marker(dir, 1, "X");
    }
    // An existing file, opened so that nobody else can read it.
    FileHandle Lock(const std::string& relative) const {
        FileHandle file(CreateFileW(ToWide(At(relative)).c_str(), GENERIC_READ, 0, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_TRUE(file);
        return file;
    }

    static Message Composed(const std::string& line) {
        return Info("This media is composed of " + line + " volumes.");
    }
    Message Found(int volume, const std::string& dir) const {
        return Plain("Volume " + std::to_string(volume) + " found in: " + At(dir));
    }
    Message FoundAm(int volume, const std::string& dir) const {
        return Plain("AM volume " + std::to_string(volume) + " found in: " + At(dir));
    }
    static Message Missing() {
        return Warning("Missing volumes. Please make sure you copied everything correctly.");
    }

    const TemporaryFolder folder;
};

}  // namespace launcher::test
