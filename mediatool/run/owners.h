#pragma once

// The owners of this folder's resources (fs/owners.h).

#include <windows.h>

#include "mediatool/base/owners.h"

namespace launcher::mediatool {

using Snapshot = Owner<FileTraits>;  // CreateToolhelp32Snapshot

}  // namespace launcher::mediatool
