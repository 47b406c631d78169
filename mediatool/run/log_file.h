#pragma once

#include <string>

#include "fs/owners.h"
#include "fs/path.h"

namespace launcher::mediatool {

// A text file to which lines are added at the end, each written to the disk before Add returns. Two
// processes may add to the same one.
class LogFile {
  public:
    // No log: Add does nothing.
    LogFile() = default;
    // Opens or makes it; throws BadInput with the reason when that fails.
    explicit LogFile(const std::string& path);

    // `text` is UTF-8 with LF at the end of its lines; the file gets CR LF. False when it could not
    // be written, with the reason in GetLastError().
    bool Add(const std::string& text);

  private:
    FileHandle file_;
};

// Whether `log`, what the user gave, asks for none: it is empty, or the device that keeps nothing.
bool IsNoLog(const std::string& log);

// Throws BadInput when what the user gave is empty, is another device, or is a file of the media in
// `folder`, whose launcher it might be, by whatever path: to add to it would damage the media.
void CheckLog(const Path& folder, const Path& launcher, const std::string& log);

}  // namespace launcher::mediatool
