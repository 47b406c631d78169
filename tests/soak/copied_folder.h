#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/e2e/support/media.h"

namespace launcher::soak {

// What differs between the installer's part of a medium and its temporary copy, names and bytes;
// empty when the copy is complete. The clean-up script belongs to the copy when `withScript` is
// set, and must not be there otherwise.
std::vector<std::string> CopyDifferences(const test::Media& media,
                                         const std::filesystem::path& copy, bool withScript);

}  // namespace launcher::soak
