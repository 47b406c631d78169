// What is in the way of the files and folders that create is going to write.

#include <map>
#include <set>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/create/plan.h"

namespace launcher::mediatool {
namespace {

class Obstacles {
  public:
    explicit Obstacles(const Plan& plan) : plan_(plan) {}

    void RefuseKinds() {
        for (const Path& folder : plan_.folders)
            NeedFolder(folder);
        for (const Path& folder : plan_.emptyFolders)
            NeedFolder(folder);
        for (const CopiedFile& copy : plan_.copies)
            NeedFile(copy.destination);
        for (const TextFile& text : plan_.texts)
            NeedFile(text.path);
    }

    // Of the files that are going to be overwritten. No file may be overwritten that is still to be
    // copied, whatever its other name.
    void RefuseLosses() const {
        if (there_.empty()) return;
        std::map<FileIdentity, Path> taken;
        for (const CopiedFile& copy : plan_.copies) {
            if (!CanBeRead(copy.source.Text())) Fail(copy.source, "read");
            if (const auto identity = IdentityOf(copy.source.Text()))
                taken.insert({*identity, copy.source});
        }
        for (const Path& file : there_) {
            const auto identity = IdentityOf(file.Text());
            if (identity) {
                const auto [other, isNew] = taken.insert({*identity, file});
                if (!isNew)
                    throw BadInput(Quoted(file) + " and " + Quoted(other->second) +
                                   " are the same file.");
            }
            if (!CanBeOverwritten(file.Text())) Fail(file, "written");
        }
    }

  private:
    [[noreturn]] static void Fail(const Path& file, const std::string& what) {
        const std::string reason = LastErrorText();
        throw Refused(Quoted(file) + " cannot be " + what + ": " + reason + ".");
    }

    void NeedFolder(const Path& folder) {
        if (IsEmpty(folder) || !folders_.insert(InLowerCase(folder.Text())).second) return;
        const auto entry = Look(folder);
        if (entry && !entry->isFolder)
            throw BadInput(Quoted(folder) + " is a file, where a folder is to be.");
        if (!entry) NeedFolder(Parent(folder));
    }

    void NeedFile(const Path& file) {
        NeedFolder(Parent(file));
        const auto entry = Look(file);
        if (!entry) return;
        if (entry->isFolder) throw BadInput(Quoted(file) + " is a folder, where a file is to be.");
        there_.push_back(file);
    }

    const Plan& plan_;
    std::set<std::string> folders_;  // looked at, in lower case
    std::vector<Path> there_;        // files that would be overwritten
};

}  // namespace

void RefuseObstacles(const CreateRequest& request, const Plan& plan) {
    Obstacles obstacles(plan);
    obstacles.RefuseKinds();
    if (request.force) obstacles.RefuseLosses();
}

}  // namespace launcher::mediatool
