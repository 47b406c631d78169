#pragma once

#include <memory>
#include <optional>
#include <string>

#include "mediatool/run/outbox.h"

namespace launcher::mediatool {

// The log of one run: a text file that other runs add to as well, at the same time even. A thread
// writes it, each text through to the disk: a disk that stalls does not stop the watching.
class RunLog {
  public:
    // Opens or makes it; throws BadInput with the reason when that fails.
    explicit RunLog(const std::string& path);

    // The heading, which is on the disk when this returns. Throws BadInput when it is not.
    void Begin(const std::string& heading);
    // Lines, with LF at their ends; each gets the number of this process in front. Does not wait.
    void Add(const std::string& lines);
    // Whether as much waits to be written as is to be kept.
    bool IsFull() const;

    // Why nothing more can be written; once.
    std::optional<std::string> NewFailure();
    // Waits for the disk, unless that has taken nothing for ten seconds. What is missing then.
    std::optional<std::string> Finish();

  private:
    struct File;

    std::string name_;
    std::shared_ptr<File> file_;  // the thread's as well
    bool failureIsTold_ = false;
    Outbox outbox_;
};

}  // namespace launcher::mediatool
