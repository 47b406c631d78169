#include "mediatool/create/checksum.h"

#include <deque>
#include <nlohmann/json.hpp>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/create/new_file.h"
#include "mediatool/media/checksums.h"
#include "mediatool/media/launcher_view.h"
#include "mediatool/media/media_set.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

// All lists are made before the first has its name.
class Lists {
  public:
    explicit Lists(const ChecksumRequest& request) : request_(request) {
        const MediaSet set = OpenUnfinishedSet(request.folders);
        volumes_ = FoldersOf(set.given, ViewFromEverywhere(set.first).folders);
        const auto refuse = [](const Path& folder) { RefuseFor(folder, "listed"); };
        for (const Path& volume : volumes_) {
            lists_.push_back(Join(volume, kChecksumsName));
            RefuseWhatIsThere(volume);
            files_.push_back(FilesOfVolume(volume, volumes_, refuse));
            for (const auto& [name, size] : files_.back()) {
                ++read_.allFiles;
                read_.allBytes += size;
            }
        }
    }

    Checksums Write() {
        ProveWritable();
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < volumes_.size(); ++i)
            texts.push_back(TextFor(volumes_[i], files_[i]));
        std::deque<NewFile> whole;
        for (std::size_t i = 0; i < volumes_.size(); ++i)
            whole.emplace_back(lists_[i]).Add(texts[i]);
        Checksums result = {{}, read_.files, read_.bytes};
        for (std::size_t i = 0; i < volumes_.size(); ++i) {
            whole[i].GiveName(request_.force);
            result.written.push_back(lists_[i].Text());
        }
        return result;
    }

  private:
    void RefuseWhatIsThere(const Path& volume) const {
        if (const Path mark = Join(volume, kUnfinishedMark); Look(mark))
            throw Refused(Quoted(mark) + " says that the set is not finished.");
        if (const Path list = Join(volume, kChecksumsName); Look(list) && !request_.force)
            throw Refused(Quoted(list) + " is there already; --force writes over it.");
    }

    // Before discs are read for minutes. The files are gone again: no run that is ended leaves
    // them.
    void ProveWritable() const {
        for (const Path& list : lists_) {
            const NewFile proof(list);
            if (Look(list) && !CanBeOverwritten(list.Text())) RefuseFor(list, "written");
        }
    }

    std::string TextFor(const Path& volume, const SizesByName& files) {
        const auto tell = [this](std::uint64_t bytes) {
            read_.bytes += bytes;
            request_.progress(read_);
        };
        std::string text;
        for (const auto& [name, size] : files) {
            text += ChecksumLine(ChecksumOf(Join(volume, name), tell), name);
            ++read_.files;
        }
        return text;
    }

    const ChecksumRequest& request_;
    std::vector<Path> volumes_;
    std::vector<Path> lists_;         // of each of them
    std::vector<SizesByName> files_;  // likewise
    Amounts read_ = {.what = "Checksums"};
};

}  // namespace

Checksums WriteChecksums(const ChecksumRequest& request) {
    return Lists(request).Write();
}

std::string TextOf(const Checksums& checksums) {
    std::string text =
        Counted(checksums.files, "file") + ", " + Counted(checksums.bytes, "byte") + "; written:\n";
    for (const std::string& list : checksums.written)
        text += "  " + list + "\n";
    return text;
}

Json JsonOf(const Checksums& checksums) {
    return {{"schema", 1},
            {"command", "checksum"},
            {"files", checksums.files},
            {"bytes", checksums.bytes},
            {"written", checksums.written}};
}

}  // namespace launcher::mediatool
