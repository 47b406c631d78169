#pragma once

#include <string>

#include "fs/path.h"

namespace launcher::mediatool {

// Whether `log`, what the user gave, is the device that keeps nothing.
bool IsNoLog(const std::string& log);

// Throws BadInput when what the user gave is empty, is another device, or is a file of the media in
// `folder`, whose launcher it might be, by whatever path: to add to it would damage the media.
void CheckLog(const Path& folder, const Path& launcher, const std::string& log);

}  // namespace launcher::mediatool
