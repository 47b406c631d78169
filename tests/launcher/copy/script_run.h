#pragma once

#include <windows.h>

#include <string>

#include "installer/installer_process.h"

namespace launcher::test {

// A batch script that the system's command processor runs. It is ended with this object if it still
// runs then.
class ScriptRun {
  public:
    explicit ScriptRun(const std::string& script);
    ScriptRun(const ScriptRun&) = delete;
    ScriptRun& operator=(const ScriptRun&) = delete;
    ~ScriptRun();

    // True when it ends, or has ended, within the time.
    bool EndsWithin(DWORD milliseconds) const;

  private:
    ProcessInformation process_;
};

}  // namespace launcher::test
