#pragma once

#include <string>

namespace launcher {

// Copies the bytes and the access and modification times of one file to `destination`, its full
// name, making missing folders first and overwriting an existing file. Attributes and the creation
// time are not carried over. One buffer of 64 KiB; a read error counts as the end of the file.
//
// Throws, besides what CreateDir throws for the destination's folder (fs/file_operations.h):
//   ZEPInsExceptionErrno "Cannot stat " + source     the source is missing
//   ZEPInsException      "Cannot copy " + source + " to itself."
//   ZEPInsExceptionErrno "Cannot read " + source     it cannot be opened
//   ZEPInsExceptionErrno "Cannot write into " + destination   it cannot be opened or written
//   ZEPInsExceptionErrno "SetTime - " + destination
// A failure leaves a partial destination file in place.
void CopyOneFile(const std::string& source, const std::string& destination);

// As CopyOneFile, into a folder that was there a moment ago: saves asking again for every file.
void CopyIntoFolder(const std::string& source, const std::string& destination);

}  // namespace launcher
