#include "mediatool/create/checksum.h"

#include <nlohmann/json.hpp>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/create/writer.h"
#include "mediatool/media/checksums.h"
#include "mediatool/media/launcher_view.h"
#include "mediatool/media/media_set.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

// All lists are made before the first is written.
class Lists {
  public:
    explicit Lists(const ChecksumRequest& request) : request_(request) {
        const MediaSet set = OpenUnfinishedSet(request.folders);
        volumes_ = FoldersOf(set.given, ViewOf(set.first).folders);
        const auto refuse = [](const Path& folder) { RefuseFor(folder, "listed"); };
        for (const Path& volume : volumes_) {
            RefuseWhatIsThere(volume);
            files_.push_back(FilesOfVolume(volume, volumes_, refuse));
            for (const auto& [name, size] : files_.back()) {
                ++read_.allFiles;
                read_.allBytes += size;
            }
        }
    }

    Checksums Write() {
        std::vector<std::string> texts;
        for (std::size_t i = 0; i < volumes_.size(); ++i)
            texts.push_back(TextFor(volumes_[i], files_[i]));
        Checksums result = {{}, read_.files, read_.bytes};
        for (std::size_t i = 0; i < volumes_.size(); ++i) {
            const Path list = Join(volumes_[i], kChecksumsName);
            WriteUnderTemporaryName(list, texts[i]);
            result.written.push_back(list.Text());
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
    std::vector<SizesByName> files_;  // of each of them
    Amounts read_ = {.what = "Checksums"};
};

}  // namespace

Checksums WriteChecksums(const ChecksumRequest& request) {
    return Lists(request).Write();
}

std::string TextOf(const Checksums& checksums) {
    std::string text = Counted(checksums.files, "file") + ", " + std::to_string(checksums.bytes) +
                       " bytes; written:\n";
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
