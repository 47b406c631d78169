#pragma once

#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace launcher::test {

// What a media must hold at its root to be copied, in the order of the copy.
inline const std::string kRequiredEntries[] = {
    "inst", "meta.TOCxml", "media.xml", "media.db", "setup.exe", "StartTUI.exe", "setup_noUAC.exe"};

// Makes a whole media in `name`, a folder below `folder`, with things in it that are not copied.
// Returns its text.
std::string MakeMedia(const TemporaryFolder& folder, const std::string& name);

// The files below a folder, as "path: content", in the order of their paths, and its empty folders.
// Nothing when there is no such folder.
std::vector<std::string> TreeOf(const std::string& folder);

// The tree of a copy of the media that MakeMedia makes.
std::vector<std::string> CopiedTree();

}  // namespace launcher::test
