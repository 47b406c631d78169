#include "fs/create_dir.h"

#include <exception>

#include "fs/encoding.h"
#include "fs/exceptions.h"
#include "fs/new_folder.h"
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

}  // namespace

void CreateDir(const std::string& path) {
    const Path folder(path);
    const std::string& text = folder.Text();
    if (text.empty()) throw ZEPInsException("CreateDir - empty path");
    const std::wstring wideText = ToWide(text);
    if (const std::optional<FileType> type = WhatIsAt(wideText)) {
        if (IsDirectory(*type)) return;
        throw ZEPInsException("CreateDir - " + text + " is not a directory.");
    }
    const Path parent = Parent(folder);
    if (IsEmpty(parent)) return;
    CreateParentIgnoringFailure(parent.Text());
    if (FileName(folder) == ".") return;
    // Deliberate: unlike the two above, this message names the Windows call.
    if (!MakeFolder(wideText)) ThrowLastError("CreateDirectory - ", text);
}

}  // namespace launcher
