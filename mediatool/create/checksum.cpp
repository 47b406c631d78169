#include "mediatool/create/checksum.h"

#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/create/writer.h"
#include "mediatool/media/checksums.h"
#include "mediatool/media/media_set.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

// Each once, in whatever way it is named.
std::map<std::string, Path> VolumesOf(const MediaSet& set) {
    std::map<std::string, Path> volumes;
    for (const Path& folder : set.given)
        volumes.insert({InLowerCase(folder.Text()), folder});
    for (const std::string& text : ViewOf(set.first).folders) {
        const Path folder = FullPath(text);
        volumes.insert({InLowerCase(folder.Text()), folder});
    }
    return volumes;
}

}  // namespace

Checksums WriteChecksums(const ChecksumRequest& request) {
    const MediaSet set = OpenUnfinishedSet(request.folders);
    const std::map<std::string, Path> volumes = VolumesOf(set);
    std::set<std::string> names;
    for (const auto& [name, volume] : volumes) {
        names.insert(name);
        if (const Path mark = Join(volume, kUnfinishedMark); Look(mark))
            throw Refused(Quoted(mark) + " says that the set is not finished.");
        if (const Path list = Join(volume, kChecksumsName); Look(list) && !request.force)
            throw Refused(Quoted(list) + " is there already; --force writes over it.");
    }

    Checksums result;
    std::map<std::string, SizesByPath> files;
    CreateProgress progress;
    for (const auto& [name, volume] : volumes) {
        files[name] = FilesOfVolume(volume, names);
        for (const auto& [path, size] : files[name]) {
            ++result.files;
            result.bytes += size;
        }
    }
    progress = {true, 0, result.files, 0, result.bytes};
    const auto checksumOf = [&](const Path& file) {
        std::string digits = ChecksumOf(file, [&](std::uint64_t bytes) {
            progress.bytes += bytes;
            if (request.progress) request.progress(progress);
        });
        ++progress.files;
        return digits;
    };
    std::map<Path, std::string, bool (*)(const Path&, const Path&)> lists(
        [](const Path& a, const Path& b) { return a.Text() < b.Text(); });
    for (const auto& [name, volume] : volumes)
        lists[Join(volume, kChecksumsName)] = ChecksumsText(volume, files[name], checksumOf);
    for (const auto& [path, text] : lists) {
        WriteUnderTemporaryName(path, text);
        result.written.push_back(path.Text());
    }
    return result;
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
