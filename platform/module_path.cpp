#include "platform/module_path.h"

#include <windows.h>

#include "fs/encoding.h"
#include "fs/exceptions.h"
#include "fs/path.h"

namespace launcher {

std::string GetModuleFileNameText() {
    static std::string cache;
    if (cache.empty()) {
        wchar_t buffer[MAX_PATH + 1] = {};  // one more: Windows XP leaves a cut name unterminated
        if (GetModuleFileNameW(nullptr, buffer, MAX_PATH) == 0)
            ThrowLastError("GetModuleFileName failed.");
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
