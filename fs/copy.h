#pragma once

#include <string>

namespace launcher {

// Copies a file, or a folder with all it holds, to `destination`, the full name of the copy. Throws
// ZEPInsException "Copy - empty source path" or "Copy - empty destination path", and what GetType
// throws for the source (fs/file_type.h) and the two functions below. What was copied before a
// failure stays, the part of a file included.
void Copy(const std::string& source, const std::string& destination);

// Copies one file, making missing folders first and overwriting an existing file. The copy has the
// bytes and the access and modification times of its source, but not its attributes or creation
// time. One buffer of 64 KiB; a read error counts as the end of the file. Throws, besides what
// CreateDir throws for the destination's folder (fs/create_dir.h):
//   ZEPInsExceptionErrno "Cannot stat " + source              it cannot be looked at
//   ZEPInsException      "Cannot copy " + source + " to itself."
//   ZEPInsExceptionErrno "Cannot read " + source              it cannot be opened
//   ZEPInsExceptionErrno "Cannot write into " + destination   it cannot be opened or written
//   ZEPInsExceptionErrno "SetTime - " + destination
void CopyOneFile(const std::string& source, const std::string& destination);

// Copies the tree below the folder `source`, following links. A folder is created with its first
// file or empty subfolder; a source that is empty or cannot be listed gives an empty destination.
// Other files in the destination are left alone. The first failure ends the whole copy. Throws what
// CopyOneFile and CreateDir throw.
void CopyDirectory(const std::string& source, const std::string& destination);

}  // namespace launcher
