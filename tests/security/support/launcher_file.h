#pragma once

#include "tests/support/wine.h"

namespace launcher::test {

// The launcher's executable as it was built.
inline std::filesystem::path LauncherFile() {
    return BuiltFile(SETUP_PROGRAM);
}

}  // namespace launcher::test
