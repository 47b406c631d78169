#pragma once

#include <string>
#include <vector>

namespace launcher::mediatool {

// The command line of a program that CommandLineToArgvW splits into exactly these arguments again,
// the empty ones included. `program` is a path, without quotes. Texts are UTF-8.
// https://learn.microsoft.com/windows/win32/api/shellapi/nf-shellapi-commandlinetoargvw
std::string CommandLineOf(const std::string& program, const std::vector<std::string>& arguments);

// Whether the launcher, given these, waits for the installer.
bool WaitsForInstaller(const std::vector<std::string>& arguments);

// Whether the launcher, given these in this environment, only tells the number of volumes, as its
// exit code.
bool AsksForVolumes(const std::vector<std::string>& arguments);

}  // namespace launcher::mediatool
