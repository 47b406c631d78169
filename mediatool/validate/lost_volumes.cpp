// Volumes where the launcher does not look for them.

#include <algorithm>
#include <string>

#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/disc_set.h"

namespace launcher::mediatool {
namespace {

class Search {
  public:
    explicit Search(const DiscSet& set) : set_(set), parent_(ParentOfVolumes(set.first)) {}

    // By the markers in the folder, whatever it is called; but a numbered one beside volume 1 that
    // holds its own marker is at its place.
    void TakeFolder(const Path& folder) {
        const Path own = Join(folder, FileName(folder) + kVolumeMarkerSuffix);
        if (SameName(Parent(folder), parent_) && NumberIn(own) > 0 && Look(own)) return;
        for (const Path& marker : NumberedMarkers(folder))
            Take(marker);
    }

    // The folders of `parent` that are named by the volume in them.
    void TakeNumbered(const Path& parent) {
        for (const VolumeNumber k : NumberedFolders(parent, 2, set_.count))
            Take(MarkerIn(Join(parent, std::to_string(k)), k));
    }

    void TakeBeside() {
        for (const Entry& entry : EntriesOf(parent_)) {
            const Path folder = Join(parent_, entry.name);
            if (!entry.isFolder || SameName(folder, set_.first)) continue;
            TakeFolder(folder);
            TakeNumbered(folder);
        }
    }

    std::map<VolumeNumber, Path> found;

  private:
    void Take(const Path& marker) {
        const VolumeNumber number = NumberIn(marker);
        if (number > 1 && number <= set_.count && set_.Has(marker))
            found.insert({number, Parent(marker)});
    }

    const DiscSet& set_;
    Path parent_;
};

// The digits at the end of a name, as a number.
VolumeNumber NumberAtEnd(const std::string& name) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    const auto end = std::find_if_not(name.rbegin(), name.rend(), isDigit);
    return ToIntOr(std::string(end.base(), name.end()), 0);
}

}  // namespace

std::map<VolumeNumber, Path> LostVolumes(const DiscSet& set, const std::vector<Path>& given) {
    Search search(set);
    for (const Path& folder : given)
        search.TakeFolder(folder);
    search.TakeBeside();
    const Path parent = Parent(set.first);
    if (!IsEmpty(parent)) search.TakeNumbered(set.first);  // at a drive's root, those are at home
    search.TakeNumbered(Parent(parent));
    return search.found;
}

std::map<VolumeNumber, Path> PackedVolumes(const Path& parent) {
    std::map<VolumeNumber, Path> archives;
    for (const Entry& entry : EntriesOf(parent)) {
        const std::string name = InLowerCase(entry.name);
        const std::string stem = name.substr(0, name.find('.'));
        for (const char* extension : {".zip", ".7z", ".rar", ".iso", ".tar", ".gz", ".tgz"})
            if (!entry.isFolder && name.ends_with(extension))
                archives.insert({NumberAtEnd(stem), Join(parent, entry.name)});
    }
    return archives;
}

}  // namespace launcher::mediatool
