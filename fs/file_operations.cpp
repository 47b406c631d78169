#include "fs/file_operations.h"

#include <windows.h>

#include <exception>

#include "fs/directory.h"
#include "fs/exceptions.h"
#include "fs/file_copy.h"
#include "fs/owners.h"
#include "fs/path.h"
#include "fs/text.h"

namespace launcher {
namespace {

// The attributes as the folder's listing has them, which works for a file that is in use.
DWORD AttributesFromListing(const std::string& path, const std::wstring& widePath) {
    WIN32_FIND_DATAW data{};
    const FindHandle search(FindFirstFileW(widePath.c_str(), &data));
    if (!search) {
        const DWORD error = GetLastError();
        throw ZEPInsException("GetType - " + path, error);
    }
    return data.dwFileAttributes;
}

// Anything that goes wrong here shows again, and is then reported, when the child is made.
void CreateParentIgnoringFailure(const std::string& parent) {
    try {
        CreateDir(parent);
    } catch (const std::exception&) {
    }
}

}  // namespace

FileType TypeFromAttributes(std::uint32_t attributes) {
    const bool directory = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        return directory ? FileType::DirectoryLink : FileType::FileLink;
    return directory ? FileType::Directory : FileType::File;
}

bool PathExists(const std::string& path) {
    return !path.empty() && GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

FileType GetType(const std::string& path) {
    if (path.empty()) throw ZEPInsException("GetType - empty path");
    const std::wstring widePath = ToWide(path);
    DWORD attributes = GetFileAttributesW(widePath.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        const DWORD error = GetLastError();
        if (error != ERROR_SHARING_VIOLATION) throw ZEPInsException("GetType - " + path, error);
        attributes = AttributesFromListing(path, widePath);
    }
    return TypeFromAttributes(attributes);
}

void CreateDir(const std::string& path) {
    const Path folder(path);
    const std::string& text = folder.Text();
    if (text.empty()) throw ZEPInsException("CreateDir - empty path");
    const std::wstring wideText = ToWide(text);
    const DWORD attributes = GetFileAttributesW(wideText.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return;
        throw ZEPInsException("CreateDir - " + text + " is not a directory.");
    }
    const Path parent = Parent(folder);
    if (IsEmpty(parent)) return;
    CreateParentIgnoringFailure(parent.Text());
    if (FileName(folder) == ".") return;
    // The message names the Windows call, unlike the two above; it is meant so.
    if (!CreateDirectoryW(wideText.c_str(), nullptr)) {
        const DWORD error = GetLastError();
        throw ZEPInsException("CreateDirectory - " + text, error);
    }
}

void Copy(const std::string& source, const std::string& destination) {
    if (source.empty()) throw ZEPInsException("Copy - empty source path");
    if (destination.empty()) throw ZEPInsException("Copy - empty destination path");
    if (IsDirectory(GetType(source)))
        CopyDirectory(source, destination);
    else
        CopyOneFile(source, destination);
}

}  // namespace launcher
