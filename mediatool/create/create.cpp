#include "mediatool/create/create.h"

#include <map>
#include <set>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/interruption.h"
#include "mediatool/base/sha256.h"
#include "mediatool/create/plan.h"
#include "mediatool/create/writer.h"
#include "mediatool/media/checksums.h"
#include "mediatool/media/media_set.h"

namespace launcher::mediatool {
namespace {

Creation CreationOf(const CreateRequest& request, const Plan& plan) {
    Creation result;
    result.layout = request.layout;
    result.outerId = OuterId(request);
    for (const Path& folder : plan.volumes)
        result.folders.push_back(folder.Text());
    for (const PlannedFile& file : plan.files) {
        result.files.push_back({file.fate, file.path.Text(), file.source.Text(), file.size});
        if (!file.IsCopy())
            (file.isList ? result.checksums : result.written).push_back(file.path.Text());
        if (file.fate == Fate::Kept) ++result.keptFiles;
        if (!file.IsCopy() || file.fate == Fate::Kept) continue;
        ++result.copiedFiles;
        result.copiedBytes += file.size;
    }
    return result;
}

// Carries a plan out.
class Carrying {
  public:
    Carrying(const CreateRequest& request, Plan& plan, const Creation& creation)
        : request_(request), plan_(plan), writer_(plan) {
        progress_.isWriting = true;
        progress_.allFiles = creation.copiedFiles;
        progress_.allBytes = creation.copiedBytes;
    }

    void Run() {
        try {
            for (const std::vector<Path>* folders : {&plan_.volumes, &plan_.emptyFolders})
                for (const Path& folder : *folders)
                    writer_.MakeFolder(folder);
            for (PlannedFile& file : plan_.files)
                Write(file);
            writer_.Finish();
        } catch (const Refused& failure) {
            throw Refused(failure.what() + writer_.TakeBack());
        }
    }

  private:
    void Write(PlannedFile& file) {
        Tell(0);
        if (file.isList)
            writer_.Write(file.path, ListOf(Parent(file.path)));
        else if (file.fate != Fate::Kept && file.IsCopy())
            Copy(file);
        else if (file.fate != Fate::Kept)
            writer_.Write(file.path, file.content);
    }

    void Copy(PlannedFile& file) {
        std::optional<Sha256> hash;
        if (request_.checksums) hash.emplace();
        writer_.Copy(file, [&](std::string_view bytes) {
            if (hash) hash->Add(bytes);
            Tell(bytes.size());
        });
        if (hash) file.hash = hash->Digits();
        ++progress_.files;
    }

    // What was copied has its checksum; what create wrote itself, or what was there, is read.
    std::string ListOf(const Path& volume) {
        std::map<std::string, std::string> known;
        for (const PlannedFile& file : plan_.files)
            if (!file.hash.empty()) known.insert({InLowerCase(file.path.Text()), file.hash});
        std::set<std::string> volumes;
        for (const Path& other : plan_.volumes)
            volumes.insert(InLowerCase(other.Text()));
        return ChecksumsText(volume, FilesOfVolume(volume, volumes), [&](const Path& file) {
            const auto hash = known.find(InLowerCase(file.Text()));
            return hash != known.end() ? hash->second
                                       : ChecksumOf(file, [this](std::uint64_t) { Tell(0); });
        });
    }

    void Tell(std::uint64_t bytes) {
        if (interruption_.HasCome()) throw Refused("Interrupted; what was new is taken back.");
        progress_.bytes += bytes;
        if (request_.progress) request_.progress(progress_);
    }

    const CreateRequest& request_;
    Plan& plan_;
    Interruption interruption_;
    Writer writer_;
    CreateProgress progress_;
};

}  // namespace

Creation Create(const CreateRequest& request) {
    CheckRequest(request);
    Plan plan = PlanOf(request);
    MeetWhatIsThere(request, plan);
    Creation creation = CreationOf(request, plan);
    if (!request.isDry) Carrying(request, plan, creation).Run();
    return creation;
}

std::string NextStep(const Creation& creation) {
    const std::string first = creation.folders.front();
    if (Look(Join(Path(first), kLauncherName))) return {};
    return "Still missing: the launcher (setup.exe), the installer and the other content. Add "
           "them, "
           "then check with:\n  mediatool validate " +
           (first.find(' ') == std::string::npos ? first : "\"" + first + "\"") + "\n";
}

}  // namespace launcher::mediatool
