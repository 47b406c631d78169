#pragma once

#include "launcher/base/launch_options.h"
#include "tests/launcher/isolated_test.h"
#include "tests/launcher/journal.h"

namespace launcher::test {

// What the fakes below the installer's layer answer.
struct FakeBelow {
    bool isAdministrator = true;
    bool administratorCheckFails = false;  // IsAdministrator throws kCheckFailed
    int administratorChecks = 0;
    bool findsInstaller = false;  // LocateInstaller; each call is in the journal
};
extern FakeBelow below;

inline constexpr char kCheckFailed[] = "OpenProcessToken failed.";

// A test on fresh fakes and an empty journal, with options of a media that has been searched.
class InstallerTest : public IsolatedTest {
  protected:
    InstallerTest();

    LaunchOptions options_;
};

}  // namespace launcher::test
