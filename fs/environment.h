#pragma once

#include <string>

namespace launcher {

// The process environment: what is set here is read back here and inherited by child processes.
// Unset and empty are the same to this program: both read as empty, and setting an empty value
// removes the variable. Names are case-insensitive.

// The value of a variable; empty when it is unset, or when `name` is empty.
// https://learn.microsoft.com/windows/win32/api/processenv/nf-processenv-getenvironmentvariablew
std::string GetEnvVar(const std::string& name);

// Sets a variable, or removes it when `value` is empty, which a value that begins with a zero byte
// is to Windows. An empty `name` does nothing. A failed write is not reported.
// https://learn.microsoft.com/windows/win32/api/processenv/nf-processenv-setenvironmentvariablew
void SetEnvVar(const std::string& name, const std::string& value);

}  // namespace launcher
