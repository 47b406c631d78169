#include "fs/directory.h"

#include "fs/exceptions.h"
#include "fs/file_copy.h"
#include "fs/path.h"
#include "fs/text.h"

namespace launcher {

std::unique_ptr<DirectoryEnumerator> DirectoryEnumerator::Open(const std::string& folder,
                                                               std::uint32_t filter) {
    return std::unique_ptr<DirectoryEnumerator>(new DirectoryEnumerator(folder, filter));
}

DirectoryEnumerator::DirectoryEnumerator(const std::string& folder, std::uint32_t filter)
    : dirPath_(Path(folder).Text()), filter_(filter) {
    if (dirPath_.empty()) throw ZEPInsException("FindFirstFile - Path is empty");
    *findHandle_.Put() = FindFirstFileW(ToWide(folder + "\\*").c_str(), &findData_);
    atEnd_ = !findHandle_;
    SkipToAccepted();
}

void DirectoryEnumerator::Next() {
    Fetch();
    SkipToAccepted();
}

void DirectoryEnumerator::Fetch() {
    if (!FindNextFileW(findHandle_.Get(), &findData_)) atEnd_ = true;
}

void DirectoryEnumerator::SkipToAccepted() {
    for (; !atEnd_; Fetch()) {
        name_ = ToNarrow(findData_.cFileName);
        fullPath_ = dirPath_ + kBackslash + name_;
        type_ = TypeFromAttributes(findData_.dwFileAttributes);
        if (name_ == "." || name_ == "..") continue;
        if ((filter_ & static_cast<std::uint32_t>(type_)) != 0) return;
    }
}

void CopyDirectory(const std::string& source, const std::string& destination) {
    const auto entries = DirectoryEnumerator::Open(source, DirectoryEnumerator::kEverything);
    if (entries->AtEnd()) {
        CreateDir(destination);
        return;
    }
    auto copyFile = CopyOneFile;
    for (; !entries->AtEnd(); entries->Next()) {
        const std::string target = destination + kBackslash + entries->Name();
        if (IsDirectory(entries->Type())) {
            CopyDirectory(entries->FullPath(), target);
        } else {
            copyFile(entries->FullPath(), target);
            copyFile = CopyIntoFolder;  // the first file has made the folder
        }
    }
}

}  // namespace launcher
