#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

#include "fs/file_type.h"
#include "fs/owners.h"

namespace launcher {

// One open listing of one folder, in the system's order, without "." and "..". An entry is
// listed when its FileType shares a bit with the filter.
class DirectoryEnumerator {
  public:
    static constexpr std::uint32_t kEverything = 3;
    static constexpr std::uint32_t kFiles = 2;  // files and links to files

    // Opens a listing at its first accepted entry. A folder that cannot be searched gives an empty
    // listing. Throws ZEPInsException "FindFirstFile - Path is empty" when the normalised path is
    // empty. The listing closes when its owning pointer is destroyed.
    static std::unique_ptr<DirectoryEnumerator> Open(const std::string& folder,
                                                     std::uint32_t filter);

    bool AtEnd() const { return atEnd_; }

    // The current entry; valid only while AtEnd() is false.
    std::string Name() const { return name_; }
    std::string FullPath() const { return fullPath_; }  // normalised folder + "\" + name
    FileType Type() const { return type_; }

    // Moves to the next accepted entry, or to the end.
    void Next();

  private:
    DirectoryEnumerator(const std::string& folder, std::uint32_t filter);

    void Fetch();           // one step of the system's search
    void SkipToAccepted();  // from the entry just fetched

    std::string dirPath_;
    std::uint32_t filter_;
    bool atEnd_ = false;
    std::string name_;
    std::string fullPath_;
    FileType type_{};
    FindHandle findHandle_;
    WIN32_FIND_DATAW findData_{};
};

}  // namespace launcher
