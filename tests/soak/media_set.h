#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "tests/e2e/support/media.h"

namespace launcher::soak {

inline constexpr char kPipeServer[] = "ZEPInsPipeServer.exe";
inline constexpr char kOdtInstaller[] = "ZEPInsAppliODT.exe";
inline constexpr char kOsFolder[] = "win_b64";
inline constexpr char kSetId[] = "SET";

// The media that one worker uses again and again, made once.
class MediaSet {
  public:
    explicit MediaSet(const std::filesystem::path& folder);

    // All in one folder: not copied.
    const test::Media& Ordinary() const { return *ordinary_; }
    // Without an installer and without a marker that says for what system it is.
    const test::Media& Foreign() const { return *foreign_; }
    // Its count is no number, so that it is copied.
    const test::Media& Damaged() const { return *damaged_; }
    // Three volumes side by side.
    const test::Media& Split() const { return *split_; }
    // The same without its third volume: copied.
    const test::Media& Incomplete() const { return *incomplete_; }
    // Damaged, and with so many files that their copy takes a while.
    const test::Media& Large() const { return *large_; }

    // The folder of one of the volumes beside the first.
    static std::string Volume(const test::Media& first, int number);

  private:
    std::optional<test::Media> ordinary_, foreign_, damaged_, split_, incomplete_, large_;
};

}  // namespace launcher::soak
