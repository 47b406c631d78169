#pragma once

#include <string>

namespace launcher {

// The full path of this process's executable, in UTF-8. Asked of Windows once, into a buffer of
// MAX_PATH characters: a longer path is truncated and used as it is. Throws ZEPInsException
// "GetModuleFileName failed." + the system's text.
// https://learn.microsoft.com/windows/win32/api/libloaderapi/nf-libloaderapi-getmodulefilenamew
std::string GetModuleFileNameText();

// The folder of this process's executable, normalised, without a trailing backslash ("D:" at a
// drive root). Computed once. Throws as GetModuleFileNameText.
std::string GetModuleDirectory();

}  // namespace launcher
