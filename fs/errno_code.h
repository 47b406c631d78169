#pragma once

#include <cstdint>

namespace launcher {

// The errno value that the C runtime's file functions give for a Windows error code, EINVAL for a
// code that no file call returns. Used in messages about the Windows calls that replace those
// functions.
// https://learn.microsoft.com/cpp/c-runtime-library/errno-constants
int ErrnoFromWindowsError(std::uint32_t code);

}  // namespace launcher
