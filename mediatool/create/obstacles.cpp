// What is in the way of the files and folders that create is going to write.

#include <algorithm>
#include <map>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/create/plan.h"
#include "mediatool/create/writer.h"
#include "mediatool/media/checksums.h"

namespace launcher::mediatool {
namespace {

// FAT keeps times to two seconds.
constexpr std::uint64_t kSameTime = 20'000'000;

class Obstacles {
  public:
    Obstacles(const CreateRequest& request, Plan& plan)
        : request_(request),
          plan_(plan),
          seen_{.what = "Comparing", .allFiles = plan.files.size()} {}

    void Meet() {
        for (const std::vector<Path>* folders : {&plan_.volumes, &plan_.emptyFolders})
            for (const Path& folder : *folders)
                NeedFolder(folder);
        for (PlannedFile& file : plan_.files) {
            MeetFile(file);
            Tell();
        }
        if (!request_.checksums)
            for (const Path& folder : plan_.FoldersOfVolumes())
                if (const Path list = Join(folder, kChecksumsName); IsFile(list))
                    RefuseOldList(list);
        if (request_.force) RefuseLosses();
    }

  private:
    void Tell() {
        ++seen_.files;
        request_.progress(seen_);
    }

    // Whether the folder is there already.
    bool NeedFolder(const Path& folder) {
        const auto [known, isNew] = folders_.insert({InLowerCase(folder.Text()), false});
        if (!isNew) return known->second;
        const auto entry = Look(folder);
        if (entry && !entry->isFolder)
            throw BadInput(Quoted(folder) + " is a file, where a folder is to be.");
        known->second = entry.has_value();
        if (!entry) NeedFolder(Parent(folder));
        return known->second;
    }

    void MeetFile(PlannedFile& file) {
        if (!NeedFolder(Parent(file.path))) return;
        const auto there = Look(file.path);
        if (!there) return;
        if (there->isFolder)
            throw BadInput(Quoted(file.path) + " is a folder, where a file is to be.");
        file.fate = plan_.resumes && IsSame(file, *there) ? Fate::Kept : Fate::Replaced;
    }

    // The unfinished run before this one wrote it.
    bool IsSame(PlannedFile& file, const Entry& there) const {
        if (there.size != file.size) return false;
        if (!file.IsCopy()) return ReadStart(file.path, file.content.size()) == file.content;
        const std::uint64_t apart =
            std::max(there.modified, file.modified) - std::min(there.modified, file.modified);
        if (apart > kSameTime) return false;
        if (!request_.checksums) return true;
        const auto tell = [this](std::uint64_t) { request_.progress(seen_); };
        file.hash = ChecksumOf(file.path, tell);
        return ChecksumOf(file.source, tell) == file.hash;
    }

    // No file may be overwritten that is still to be copied, whatever its other name.
    void RefuseLosses() {
        const auto isReplaced = [](const PlannedFile& file) { return file.fate == Fate::Replaced; };
        if (std::ranges::none_of(plan_.files, isReplaced)) return;
        std::map<FileIdentity, Path> taken;
        seen_ = {.what = "Checking", .allFiles = plan_.copies};
        for (const PlannedFile& file : plan_.files) {
            if (!file.IsCopy()) continue;
            Tell();
            if (!CanBeRead(file.source.Text())) RefuseFor(file.source, "read");
            if (const auto identity = IdentityOf(file.source.Text()))
                taken.insert({*identity, file.source});
        }
        for (const PlannedFile& file : plan_.files) {
            if (!isReplaced(file)) continue;
            if (const auto identity = IdentityOf(file.path.Text())) {
                const auto [other, isNew] = taken.insert({*identity, file.path});
                if (!isNew)
                    throw BadInput(Quoted(file.path) + " and " + Quoted(other->second) +
                                   " are the same file.");
            }
            if (!CanBeOverwritten(file.path.Text())) RefuseFor(file.path, "written");
        }
    }

    const CreateRequest& request_;
    Plan& plan_;
    std::map<std::string, bool> folders_;  // in lower case: whether it is there
    Amounts seen_;
};

}  // namespace

void RefuseOldList(const Path& list) {
    throw Refused(Quoted(list) + " would not hold for the new set; --checksums writes it anew.");
}

void MeetWhatIsThere(const CreateRequest& request, Plan& plan) {
    if (plan.resumes) HoldMark(plan.Mark(), true);  // before everything is compared in vain
    Obstacles(request, plan).Meet();
    RefuseStaleMarkers(request, plan);
    if (request.force) return;
    for (const PlannedFile& file : plan.files)
        if (file.fate == Fate::Replaced && !(file.isList && plan.resumes))
            throw Refused(Quoted(file.path) + " is there already; --force writes over it.");
}

}  // namespace launcher::mediatool
