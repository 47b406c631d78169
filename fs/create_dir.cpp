#include "fs/create_dir.h"

#include <windows.h>

#include <exception>

#include "fs/encoding.h"
#include "fs/exceptions.h"
#include "fs/open_file.h"
#include "fs/path.h"

namespace launcher {
namespace {

// A failure here recurs, and is reported, when the child is created.
void CreateParentIgnoringFailure(const std::string& parent) {
    try {
        CreateDir(parent);
    } catch (const std::exception&) {
    }
}

// What the C runtime's status functions find, which follow links.
bool IsThere(const std::wstring& path, DWORD attributes) {
    if (attributes == INVALID_FILE_ATTRIBUTES) return false;
    return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 || OpenForAttributes(path);
}

}  // namespace

void CreateDir(const std::string& path) {
    const Path folder(path);
    const std::string& text = folder.Text();
    if (text.empty()) throw ZEPInsException("CreateDir - empty path");
    const std::wstring wideText = ToWide(text);
    const DWORD attributes = GetFileAttributesW(wideText.c_str());
    if (IsThere(wideText, attributes)) {
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return;
        throw ZEPInsException("CreateDir - " + text + " is not a directory.");
    }
    const Path parent = Parent(folder);
    if (IsEmpty(parent)) return;
    CreateParentIgnoringFailure(parent.Text());
    if (FileName(folder) == ".") return;
    // Deliberate: unlike the two above, this message names the Windows call.
    if (!CreateDirectoryW(wideText.c_str(), nullptr)) ThrowLastError("CreateDirectory - ", text);
}

}  // namespace launcher
