#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
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
    // zero byte, stands as U+FFFD. A line ends with LF or CR LF; with CR alone, after which a
    // terminal would write over it; and after 1 MB. Takes 2 MB at most, and of short lines not many
    // more than ten thousand.
    std::vector<std::string> TakeLines();
    // What is there of a line that nobody will complete.
    std::string TakeRest();
    // Its length in bytes.
    std::size_t RestSize() const { return rest_.size(); }

    // In bytes: of all that was written, and of what was taken of it.
    std::uint64_t Size() const;
    std::uint64_t Taken() const { return taken_; }

  private:
    void Split(std::string_view bytes, std::vector<std::string>& lines);
    bool IsFullBefore(char byte) const;

    FileHandle writer_;
    FileHandle reader_;
    std::uint64_t taken_ = 0;
    std::string rest_;       // of a line whose end has not come
    bool returned_ = false;  // after a CR
};

}  // namespace launcher::mediatool
