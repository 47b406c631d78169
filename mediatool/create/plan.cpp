// What create is asked to write: the content of the volumes, the count file and the markers.

#include "mediatool/create/plan.h"

#include <algorithm>
#include <map>
#include <set>

#include "media/volume_files.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/checksums.h"
#include "mediatool/media/markers.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

constexpr std::uint64_t kLongestText = 65536;  // of a marker or count file, in bytes

Path VolumeFolder(const CreateRequest& request, const Path& out, int k) {
    const std::string number = std::to_string(k);
    switch (request.layout) {
        case Layout::Siblings:
            return Join(out, number);
        case Layout::Outer: {
            const Path outer = Join(out, std::to_string(request.firstOuter + k - 1));
            return Join(Join(outer, request.inner), number);
        }
        default:
            return out;
    }
}

std::vector<PlannedFile> MarkersOf(const CreateRequest& request, const Plan& plan) {
    std::vector<PlannedFile> files;
    const auto add = [&files](const Path& path, const std::string& content) {
        files.push_back({.path = path, .content = content, .size = content.size()});
    };
    add(CountFileIn(plan.VolumeOne()), CountFileText(request.volumes));
    for (int k = 1; k <= request.volumes; ++k)
        add(MarkerIn(plan.volumes[static_cast<std::size_t>(k) - 1], k), MarkerText(request.id));
    if (request.layout != Layout::Outer) return files;
    for (int k = 0; k < request.volumes; ++k) {
        const int number = request.firstOuter + k;
        add(MarkerIn(Join(plan.out, std::to_string(number)), number), MarkerText(OuterId(request)));
    }
    return files;
}

bool IsOneInOther(const Path& left, const Path& right) {
    return IsWithin(left, right) || IsWithin(right, left);
}

// The folder and those that it is in, or is going to be in, whatever its name.
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
        for (const Path& folder : plan.volumes) {
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
    Content(const CreateRequest& request, std::vector<PlannedFile>& markers, Plan& plan)
        : request_(request), plan_(plan) {
        for (PlannedFile& marker : markers) {
            markers_.insert({InLowerCase(marker.path.Text()), &marker});
            for (Path above = Parent(marker.path); !IsEmpty(above); above = Parent(above))
                folders_.insert(InLowerCase(above.Text()));
        }
        countFile_ = &markers.front();
        for (const Path& volume : plan.volumes)
            lists_.insert(InLowerCase(Join(volume, kChecksumsName).Text()));
    }

    void Copy(const Path& source, const Path& destination) {
        const auto entries = List(source);
        if (!entries) throw BadInput(WhyNot(source, "listed"));
        if (entries->empty()) plan_.emptyFolders.push_back(destination);
        for (const Entry& entry : *entries) {
            const Path from = Join(source, entry.name);
            const Path to = Join(destination, entry.name);
            if (GivesWay(from, to, entry)) continue;
            Take(from, to, entry.isFolder);
            if (entry.isFolder)
                Copy(from, to);
            else
                Add(from, to, entry);
        }
    }

  private:
    void Add(const Path& from, const Path& to, Entry entry) {
        if (entry.isLink) {
            const auto target = LookThrough(from);
            if (!target) RefuseFor(from, "read");
            entry = *target;
        }
        plan_.files.push_back({.path = to,
                               .source = from,
                               .size = entry.size,
                               .modified = entry.modified,
                               .attributes = entry.attributes});
        bytes_ += entry.size;
        request_.progress({.what = "Content", .files = plan_.files.size(), .bytes = bytes_});
    }

    // It stands where a file is going to be that create itself writes. Throws when it is of no use
    // for that one.
    bool GivesWay(const Path& from, const Path& to, const Entry& entry) {
        if (SameName(entry.name, kUnfinishedMark) || SameName(entry.name, kUnfinishedFile))
            throw BadInput(Quoted(from) +
                           " is left from a set that was not written to its end; finish that set, "
                           "or remove the file.");
        const std::string key = InLowerCase(to.Text());
        if (folders_.contains(key) && !entry.isFolder)
            throw BadInput(Quoted(from) + " is a file, where a folder is to be.");
        if (lists_.contains(key) && entry.isFolder && request_.checksums)
            throw BadInput(Quoted(from) + " is a folder, where a file is to be.");
        if (lists_.contains(key) && !entry.isFolder) {
            if (!request_.checksums) RefuseOldList(from);
            return true;
        }
        const auto found = markers_.find(key);
        if (found == markers_.end()) return false;
        PlannedFile& marker = *found->second;
        const bool isCountFile = &marker == countFile_;
        if (entry.isFolder || (!isCountFile && ReadMtbDir(from.Text()).empty()))
            throw BadInput(Quoted(from) +
                           " has the name of a volume's marker and is none; rename it.");
        const std::string text = ReadText(from, entry);
        const auto merged =
            isCountFile ? WithCount(text, request_.volumes) : WithId(text, request_.id);
        if (!merged) {
            RefuseLostLines(from, isCountFile);
            return true;
        }
        const auto [other, isNew] = merged_.insert({key, from});
        if (!isNew && marker.content != *merged) RefuseBoth(other->second, from, to);
        marker.content = *merged;
        marker.size = marker.content.size();
        return true;
    }

    void RefuseLostLines(const Path& file, bool isCountFile) const {
        if (request_.force) return;
        throw Refused(Quoted(file) + " has lines that would be lost: " +
                      (isCountFile ? "its first is not a number; --force writes a new count file"
                                   : "they end with carriage returns alone; --force writes a new "
                                     "marker") +
                      " in its place.");
    }

    static std::string ReadText(const Path& file, const Entry& entry) {
        if (entry.size > kLongestText)
            throw BadInput(Quoted(file) + " is too long for a text of one or a few lines.");
        if (auto text = ReadStart(file, kLongestText)) return *text;
        RefuseFor(file, "read");
    }

    // Two files of one name would leave one of them; two folders become one.
    void Take(const Path& from, const Path& to, bool isFolder) {
        const auto [taken, isNew] = taken_.insert({InLowerCase(to.Text()), {from, isFolder}});
        if (!isNew && !(isFolder && taken->second.isFolder))
            RefuseBoth(taken->second.from, from, to);
    }

    [[noreturn]] static void RefuseBoth(const Path& one, const Path& other, const Path& to) {
        throw BadInput(Quoted(one) + " and " + Quoted(other) + " would both become " + Quoted(to) +
                       ".");
    }

    struct Taken {
        Path from;
        bool isFolder;
    };
    const CreateRequest& request_;
    Plan& plan_;
    // By path in lower case.
    std::map<std::string, PlannedFile*> markers_;
    const PlannedFile* countFile_ = nullptr;
    std::map<std::string, Path> merged_;  // where a marker has its lines from
    std::set<std::string> folders_;       // that the markers lie in
    std::set<std::string> lists_;         // of checksums
    std::map<std::string, Taken> taken_;
    std::uint64_t bytes_ = 0;
};

void PlanContent(const CreateRequest& request, std::vector<PlannedFile>& markers, Plan& plan) {
    const Targets targets(plan);
    if (request.from.empty()) return;
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
    Content content(request, markers, plan);
    for (std::size_t i = 0; i < sources.size(); ++i)
        content.Copy(sources[i], plan.volumes[i]);
}

}  // namespace

std::vector<Path> Plan::FoldersOfVolumes() const {
    return out.Text() == VolumeOne().Text() ? std::vector{out} : volumes;
}

Path Plan::Mark() const {
    return Join(VolumeOne(), kUnfinishedMark);
}

std::string OuterId(const CreateRequest& request) {
    if (request.layout != Layout::Outer) return {};
    return request.outerId.empty() ? request.id + "-outer" : request.outerId;
}

Plan PlanOf(const CreateRequest& request) {
    Plan plan;
    plan.out = CheckedOut(request.out);
    for (int k = 1; k <= request.volumes; ++k)
        plan.volumes.push_back(VolumeFolder(request, plan.out, k));
    std::vector<PlannedFile> markers = MarkersOf(request, plan);
    PlanContent(request, markers, plan);
    plan.copies = plan.files.size();
    plan.files.insert(plan.files.end(), markers.begin(), markers.end());
    for (const Path& volume : request.checksums ? plan.FoldersOfVolumes() : std::vector<Path>())
        plan.files.push_back({.path = Join(volume, kChecksumsName), .isList = true});
    plan.resumes = Look(plan.Mark()).has_value();
    return plan;
}

}  // namespace launcher::mediatool
