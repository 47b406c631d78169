#pragma once

#include <string>
#include <string_view>

namespace launcher {

// Bytes that are read line by line, once, from the first to the last. In place of the standard
// library's streams, which are three quarters of a program that reads nothing but a few lines.
class InputStream {
  public:
    // A stream of `bytes`, which have to outlive it.
    explicit InputStream(std::string_view bytes) : block_(bytes) {}
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;
    virtual ~InputStream() = default;

    // False in the failed state, for good: a line was asked for and there was none.
    explicit operator bool() const { return !failed_; }

    // Reads up to the next LF, which is dropped, or up to the end. When no byte is left, the stream
    // fails: with an empty `line`, or, if the line before had no LF, with `line` as it was. A line
    // too long for the memory fails, too.
    InputStream& ReadLine(std::string& line);

  protected:
    InputStream() = default;

  private:
    // The bytes that follow, valid until the next call; none at the end.
    virtual std::string_view NextBlock();

    void ReadUpToLf(std::string& line);

    std::string_view block_;  // what is left of it
    bool atEnd_ = false;
    bool failed_ = false;
};

}  // namespace launcher
