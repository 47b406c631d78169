#pragma once

namespace launcher::mediatool {

// What create leaves in a set that it has not finished.

// In volume 1's folder, from the first change of the set to the last.
inline constexpr char kUnfinishedMark[] = "mediatool-unfinished.txt";

// A file that is being written, in the folder that it belongs to; it gets its name when it is
// whole.
inline constexpr char kUnfinishedFile[] = "mediatool-unfinished.tmp";

}  // namespace launcher::mediatool
