#include "launcher/requirements.h"

#include "launcher/base/message.h"
#include "platform/web_library.h"
#include "platform/windows_version.h"

namespace launcher {

bool CheckWebLibrary(const LaunchOptions& options) {
    if (HasRequiredWebLibrary()) return true;
    ReportMessage(options,
                  "Internet Explorer 10 or later is required to run the installer. Please install "
                  "it and try again.",
                  Severity::Error, /*noBox=*/false);
    return false;
}

void WarnOfOldWindows(const LaunchOptions& options) {
    if (IsWindows8OrNewer()) return;
    ReportMessage(options,
                  "This version of Windows is not supported anymore.\nPlease check the certified "
                  "platforms in the Program Directory.",
                  Severity::Warning, /*noBox=*/false);
}

}  // namespace launcher
