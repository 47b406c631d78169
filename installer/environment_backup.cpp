#include "installer/environment_backup.h"

#include "fs/environment.h"

namespace launcher {

void BackupEnvVar(const std::string& name) {
    SetEnvVar("ZEP_BAK_" + name, "ZEP_BAK=" + GetEnvVar(name));
}

}  // namespace launcher
