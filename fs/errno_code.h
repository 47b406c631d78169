#pragma once

#include <cstdint>

namespace launcher {

// The errno value that the C runtime's file functions give for a Windows error code, EINVAL for a
// code that file calls do not end with. For messages about Windows calls that stand in for those
// functions.
// https://learn.microsoft.com/cpp/c-runtime-library/errno-constants
int ErrnoFromWindowsError(std::uint32_t code);

}  // namespace launcher
