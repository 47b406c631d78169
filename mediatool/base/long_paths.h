#pragma once

namespace launcher::mediatool {

// Whether this machine lets programs that ask for it, as the launcher does, use paths of more than
// 259 characters: Windows 10 and 11 with "LongPathsEnabled" in their registry.
// https://learn.microsoft.com/windows/win32/fileio/maximum-file-path-limitation
bool AreLongPathsEnabled();

}  // namespace launcher::mediatool
