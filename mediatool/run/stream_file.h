#pragma once

#include <string>
#include <vector>

#include "fs/owners.h"

namespace launcher::mediatool {

// What one standard stream of a launcher leads to: a file that is followed. A pipe would break, or
// block, whoever still writes when nobody reads any more; a file takes it all. It lies in the
// temporary folder and is gone, on any end whatever, as soon as the last process that writes to it
// and this one have closed it.
class StreamFile {
  public:
    // Throws std::runtime_error when there is no folder to make it in.
    StreamFile();

    // The end to write to, which is inheritable.
    HANDLE Writer() const { return writer_.Get(); }
    // Closes it in this process, once those who write have theirs.
    void CloseWriter() { writer_.Reset(); }

    // The lines completed since the last call, without their ends, in UTF-8: what is none, or is a
    // zero byte, stands as U+FFFD. Comes to an end however fast somebody writes.
    std::vector<std::string> TakeLines();
    // What is there of a line that nobody will complete.
    std::string TakeRest();

  private:
    FileHandle writer_;
    FileHandle reader_;
    std::string rest_;  // of a line whose end has not come
};

}  // namespace launcher::mediatool
