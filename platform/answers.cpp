// What the launcher believes of the machine: nothing else asks for it.

#include "platform/administrator.h"
#include "platform/architecture.h"
#include "platform/web_library.h"
#include "platform/windows_version.h"

namespace launcher {

bool IsAdministrator() {
    static const bool answer = DetectAdministrator();
    return answer;
}

bool Is64BitWindows() {
    return Detect64BitWindows();
}

bool HasRequiredWebLibrary() {
    return DetectRequiredWebLibrary();
}

bool IsWindows8OrNewer() {
    return DetectWindows8();
}

}  // namespace launcher
