#include "mediatool/create/create.h"

#include <map>
#include <optional>

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
    Carrying(const CreateRequest& request, const Plan& plan, const Creation& creation)
        : request_(request),
          plan_(plan),
          writer_(plan),
          copied_{"Copying", 0, creation.copiedFiles, 0, creation.copiedBytes} {}

    void Run() {
        try {
            for (const std::vector<Path>* folders : {&plan_.volumes, &plan_.emptyFolders})
                for (const Path& folder : *folders)
                    writer_.MakeFolder(folder);
            for (const PlannedFile& file : plan_.files)
                Write(file);
            writer_.Finish();
        } catch (const Refused& failure) {
            throw Refused(failure.what() + writer_.TakeBack());
        }
    }

  private:
    void Write(const PlannedFile& file) {
        Tell(copied_);
        if (file.isList)
            writer_.Write(file, ListOf(Parent(file.path)));
        else if (file.fate == Fate::Kept)
            hashes_.insert({InLowerCase(file.path.Text()), file.hash});
        else if (file.IsCopy())
            Copy(file);
        else
            writer_.Write(file, file.content);
    }

    void Copy(const PlannedFile& file) {
        std::optional<Sha256> hash;
        if (request_.checksums) hash.emplace();
        writer_.Copy(file, [&](std::string_view bytes) {
            if (hash) hash->Add(bytes);
            copied_.bytes += bytes.size();
            Tell(copied_);
        });
        if (hash) hashes_.insert({InLowerCase(file.path.Text()), hash->Digits()});
        ++copied_.files;
    }

    // What was copied has its checksum; what create wrote itself, or what was there, is read.
    std::string ListOf(const Path& volume) {
        const auto refuse = [](const Path& folder) { RefuseFor(folder, "listed"); };
        std::string list;
        for (const auto& [name, size] : FilesOfVolume(volume, plan_.volumes, refuse)) {
            std::string& hash = hashes_[InLowerCase(Join(volume, name).Text())];
            if (hash.empty()) hash = ReadChecksum(Join(volume, name));
            list += ChecksumLine(hash, name);
        }
        return list;
    }

    std::string ReadChecksum(const Path& file) {
        ++read_.files;
        return ChecksumOf(file, [this](std::uint64_t bytes) {
            read_.bytes += bytes;
            Tell(read_);
        });
    }

    void Tell(const Amounts& amounts) {
        if (interruption_.HasCome()) throw Refused("Interrupted; what was new is taken back.");
        request_.progress(amounts);
    }

    const CreateRequest& request_;
    const Plan& plan_;
    Interruption interruption_;
    Writer writer_;
    Amounts copied_;
    Amounts read_ = {.what = "Checksums"};
    std::map<std::string, std::string> hashes_;  // by path in lower case; empty when not known yet
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
