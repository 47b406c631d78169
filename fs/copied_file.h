#pragma once

#include <windows.h>

#include <string>
#include <utility>

#include "fs/owners.h"

namespace launcher {

// The open source of a copy and its times, taken before reading.
struct SourceFile {
    std::wstring path;
    FileHandle handle;
    FILETIME accessed{};
    FILETIME modified{};
};

// The file that a copy writes (fs/copy.h). Every other program may go on reading and writing it.
// What returns false leaves the reason in GetLastError().
class CopiedFile {
  public:
    explicit CopiedFile(std::wstring path) : path_(std::move(path)) {}

    const std::wstring& Name() const { return path_; }

    // `disposition` as for CreateFileW. Before anything else.
    bool Open(DWORD disposition);

    // Writes all bytes of `source`, by a buffer of 64 KiB; a read error counts as their end.
    bool Fill(const SourceFile& source);

    bool SetTimes(const FILETIME& accessed, const FILETIME& modified);

  private:
    std::wstring path_;
    FileHandle file_;
};

}  // namespace launcher
