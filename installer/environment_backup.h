#pragma once

#include <string>

namespace launcher {

// Saves the value of the variable `name` for the installer and the programs it starts, in
// "ZEP_BAK_" + name, as "ZEP_BAK=" + value. The prefix makes sure that the backup exists even when
// the variable is unset or empty. A later backup overwrites an earlier one.
void BackupEnvVar(const std::string& name);

}  // namespace launcher
