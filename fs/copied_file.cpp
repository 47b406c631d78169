#include "fs/copied_file.h"

#include <array>
#include <cstddef>

#include "fs/open_file.h"

namespace launcher {

bool CopiedFile::Open(DWORD disposition) {
    file_ = OpenSharedFile(path_, GENERIC_WRITE, disposition);
    return static_cast<bool>(file_);
}

bool CopiedFile::Fill(const SourceFile& source) {
    constexpr DWORD kBufferSize = 65536;
    std::array<std::byte, kBufferSize> buffer;
    DWORD count = 0;
    // Deliberate: a failed read counts as the end of the file, and a short write goes unnoticed.
    while (ReadFile(source.handle.Get(), buffer.data(), kBufferSize, &count, nullptr) &&
           count > 0) {
        DWORD written = 0;
        if (!WriteFile(file_.Get(), buffer.data(), count, &written, nullptr)) return false;
        if (written == 0) {  // some systems report a full disk as a successful write of nothing
            SetLastError(ERROR_DISK_FULL);
            return false;
        }
    }
    return true;
}

bool CopiedFile::SetTimes(const FILETIME& accessed, const FILETIME& modified) {
    return SetFileTime(file_.Get(), nullptr, &accessed, &modified) != 0;
}

}  // namespace launcher
