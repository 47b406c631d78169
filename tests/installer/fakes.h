#pragma once

#include <windows.h>
// windows.h first: the COM headers need it.
#include <objbase.h>

#include <cstddef>
#include <functional>
#include <string>

#include "platform/module_path.h"
#include "tests/support/isolated_test.h"
#include "tests/support/options.h"

namespace launcher::test {

// What the fakes below the installer's layer answer.
struct FakeBelow {
    bool isAdministrator = true;
    bool administratorCheckFails = false;  // IsAdministrator throws kCheckFailed
    int administratorChecks = 0;
    bool findsInstaller = false;  // LocateInstaller; each call is in the journal

    // In place of installer/com.cpp. An apartment is in the journal, "COM begins" and "COM ends";
    // what is freed is really freed, and counted.
    std::function<HRESULT(REFCLSID, REFIID, void**)> createInstance;
    std::size_t freed = 0;
};
extern FakeBelow below;

inline constexpr char kCheckFailed[] = "OpenProcessToken failed.";

// A test on fresh fakes and an empty journal, with options of a medium that has been searched.
class InstallerTest : public IsolatedTest {
  protected:
    InstallerTest();

    LaunchOptions options_;
};

// A command line for the child program beside this test program (launch_child.cpp).
inline std::string ChildCommandLine(const std::string& arguments) {
    return "\"" + GetModuleDirectory() + "\\launch_child.exe\" " + arguments;
}

}  // namespace launcher::test
