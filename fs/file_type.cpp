#include "fs/file_type.h"

#include <windows.h>

#include "fs/encoding.h"
#include "fs/exceptions.h"
#include "fs/open_file.h"
#include "fs/owners.h"

namespace launcher {
namespace {

constexpr char kGetType[] = "GetType - ";

// The attributes from the folder's listing, which are readable even when the file is in use.
DWORD AttributesFromListing(const std::string& path, const std::wstring& widePath) {
    WIN32_FIND_DATAW data{};
    const FindHandle search(FindFirstFileW(widePath.c_str(), &data));
    if (!search) ThrowLastError(kGetType, path);
    return data.dwFileAttributes;
}

}  // namespace

FileType TypeFromAttributes(std::uint32_t attributes) {
    const bool folder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0)
        return folder ? FileType::DirectoryLink : FileType::FileLink;
    return folder ? FileType::Directory : FileType::File;
}

bool IsThere(const std::string& path) {
    return !path.empty() && GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::optional<FileType> TypeBehindLinks(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return std::nullopt;
    const bool isLink = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if (isLink && !OpenForAttributes(path)) return std::nullopt;
    return TypeFromAttributes(attributes);
}

FileType GetType(const std::string& path) {
    if (path.empty()) throw ZEPInsException("GetType - empty path");
    const std::wstring widePath = ToWide(path);
    DWORD attributes = GetFileAttributesW(widePath.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        if (GetLastError() != ERROR_SHARING_VIOLATION) ThrowLastError(kGetType, path);
        attributes = AttributesFromListing(path, widePath);
    }
    return TypeFromAttributes(attributes);
}

}  // namespace launcher
