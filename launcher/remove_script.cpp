#include "launcher/remove_script.h"

#include <windows.h>

#include "fs/encoding.h"
#include "fs/open_file.h"
#include "media/folder_names.h"

namespace launcher {

void WriteRemoveScript(const std::string& temporaryDir) {
    const FileHandle file =
        OpenSharedFile(ToWide(temporaryDir + "remove.bat"), GENERIC_WRITE, CREATE_ALWAYS);
    if (!file) return;
    const std::string inst = "\"" + temporaryDir + kInstFolder + "\"";
    const std::string script =
        ":begin\r\n"
        "rmdir /Q /S " +
        inst +
        " 1>nul 2>nul\r\n"
        "if exist " +
        inst +
        " goto begin\r\n"
        "rmdir /Q /S \"" +
        temporaryDir + "\" 1>nul 2>nul\r\n";
    DWORD written = 0;
    WriteFile(file.Get(), script.data(), static_cast<DWORD>(script.size()), &written, nullptr);
}

}  // namespace launcher
