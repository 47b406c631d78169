#include "fs/directory_enumerator.h"

#include "fs/encoding.h"
#include "fs/exceptions.h"
#include "fs/path.h"

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

}  // namespace launcher
