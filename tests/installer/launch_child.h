#pragma once

#include <string>

#include "platform/module_path.h"

namespace launcher::test {

// A command line for the child program beside this test program (launch_child.cpp).
inline std::string ChildCommandLine(const std::string& arguments) {
    return "\"" + GetModuleDirectory() + "\\launch_child.exe\" " + arguments;
}

}  // namespace launcher::test
