#include "platform/module_path.h"

#include <windows.h>

#include "fs/exceptions.h"
#include "fs/path.h"
#include "fs/text.h"

namespace launcher {

std::string GetModuleFileNameText() {
    static std::string cache;
    if (cache.empty()) {
        wchar_t buffer[MAX_PATH + 1] = {};  // one more: Windows XP does not terminate a cut name
        if (GetModuleFileNameW(nullptr, buffer, MAX_PATH) == 0) {
            const DWORD error = GetLastError();
            throw ZEPInsException("GetModuleFileName failed.", error);
        }
        cache = ToNarrow(buffer);
    }
    return cache;
}

std::string GetModuleDirectory() {
    static std::string cache;
    if (cache.empty()) cache = Parent(Path(GetModuleFileNameText())).Text();
    return cache;
}

}  // namespace launcher
