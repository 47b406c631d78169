// The content of the volumes that create copies.

#include <algorithm>
#include <map>
#include <set>

#include "media/volume_files.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/create/plan.h"

namespace launcher::mediatool {
namespace {

bool IsOneInOther(const Path& left, const Path& right) {
    const std::string a = InLowerCase(left.Text()) + "\\";
    const std::string b = InLowerCase(right.Text()) + "\\";
    return a.starts_with(b) || b.starts_with(a);
}

// The folder and those that it is in, whatever its name.
std::set<FileIdentity> WithFoldersAbove(const Path& folder) {
    std::set<FileIdentity> identities;
    for (const Path& name : {folder, FinalPath(folder)})
        for (Path above = name; !IsEmpty(above); above = Parent(above))
            if (const auto identity = IdentityOf(above.Text())) identities.insert(*identity);
    return identities;
}

// The folders that are written into, as far as they are there.
class Targets {
  public:
    explicit Targets(const Plan& plan) {
        Add(plan.out);
        std::map<FileIdentity, Path> volumes;
        for (const Path& folder : plan.folders) {
            Add(folder);
            const auto identity = IdentityOf(folder.Text());
            if (!identity) continue;
            const auto [other, isNew] = volumes.insert({*identity, folder});
            if (!isNew && !SameName(other->second.Text(), folder.Text()))
                throw BadInput(Quoted(other->second) + " and " + Quoted(folder) +
                               " are the same folder.");
        }
    }

    bool AreInOneAnotherWith(const Path& source) const {
        const auto identity = IdentityOf(source.Text());
        if (identity && above_.contains(*identity)) return true;
        return std::ranges::any_of(WithFoldersAbove(source), [this](const FileIdentity& folder) {
            return targets_.contains(folder);
        });
    }

  private:
    void Add(const Path& folder) {
        if (const auto identity = IdentityOf(folder.Text())) targets_.insert(*identity);
        above_.merge(WithFoldersAbove(folder));
    }

    std::set<FileIdentity> targets_;
    std::set<FileIdentity> above_;  // and the targets themselves
};

class Content {
  public:
    explicit Content(Plan& plan) : plan_(plan) {
        for (const TextFile& text : plan.texts)
            texts_.insert({InLowerCase(text.path.Text()), &text == &plan.texts.front()});
    }

    void Copy(const Path& source, const Path& destination) {
        const auto entries = List(source);
        if (!entries) {
            const std::string reason = LastErrorText();
            throw BadInput(Quoted(source) + " cannot be listed: " + reason + ".");
        }
        if (entries->empty()) plan_.emptyFolders.push_back(destination);
        for (const Entry& entry : *entries) {
            const Path from = Join(source, entry.name);
            const Path to = Join(destination, entry.name);
            if (GivesWay(from, to, entry.isFolder)) continue;
            Take(from, to, entry.isFolder);
            if (entry.isFolder)
                Copy(from, to);
            else
                plan_.copies.push_back({from, to, entry.size});
        }
    }

  private:
    // It stands where a marker or the count file is going to be, and is one.
    bool GivesWay(const Path& from, const Path& to, bool isFolder) const {
        const auto text = texts_.find(InLowerCase(to.Text()));
        if (text == texts_.end()) return false;
        const bool isCountFile = text->second;
        if (isFolder || (!isCountFile && ReadMtbDir(from.Text()).empty()))
            throw BadInput(Quoted(from) +
                           " has the name of a volume's marker and is none; rename it.");
        return true;
    }

    // Two files of one name would leave one of them; two folders become one.
    void Take(const Path& from, const Path& to, bool isFolder) {
        const auto [taken, isNew] = taken_.insert({InLowerCase(to.Text()), {from, isFolder}});
        if (!isNew && !(isFolder && taken->second.isFolder))
            throw BadInput(Quoted(taken->second.from) + " and " + Quoted(from) +
                           " would both become " + Quoted(to) + ".");
    }

    struct Taken {
        Path from;
        bool isFolder;
    };
    Plan& plan_;
    std::map<std::string, bool> texts_;   // by path in lower case: is it the count file?
    std::map<std::string, Taken> taken_;  // by destination in lower case
};

}  // namespace

void PlanContent(const CreateRequest& request, Plan& plan) {
    if (request.from.empty()) return;
    const Targets targets(plan);
    std::vector<Path> sources;
    for (const std::string& text : request.from) {
        const Path source = FullPath(text);
        if (!IsFolder(source)) throw BadInput("\"" + text + "\" is no folder.");
        if (IsOneInOther(source, plan.out) || targets.AreInOneAnotherWith(source))
            throw BadInput(Quoted(source) + " and the folder to write into are in one another.");
        for (const Path& other : sources)
            if (SameName(other.Text(), source.Text()) ||
                (IdentityOf(source.Text()) &&
                 IdentityOf(other.Text()) == IdentityOf(source.Text())))
                throw BadInput(Quoted(source) + " is given twice, with --from.");
        sources.push_back(source);
    }
    Content content(plan);
    for (std::size_t i = 0; i < sources.size(); ++i)
        content.Copy(sources[i], plan.folders[i]);
}

}  // namespace launcher::mediatool
