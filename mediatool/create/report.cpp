#include "mediatool/create/create.h"

#include <map>
#include <nlohmann/json.hpp>

#include "mediatool/base/sentences.h"

namespace launcher::mediatool {

namespace {

std::string ActionOn(const CreatedFile& file) {
    if (file.fate == Fate::Kept) return "keep";
    if (file.fate == Fate::Replaced) return "replace";
    return file.source.empty() ? "write" : "copy";
}

struct Totals {
    std::size_t count = 0;
    std::uint64_t bytes = 0;
};

std::map<std::string, Totals> TotalsOf(const Creation& creation) {
    std::map<std::string, Totals> totals;
    for (const char* action : {"write", "copy", "replace", "keep"})
        totals[action];
    for (const CreatedFile& file : creation.files) {
        Totals& total = totals[ActionOn(file)];
        ++total.count;
        total.bytes += file.size;
    }
    return totals;
}

// What every output of create begins with.
Json Head(const Creation& creation, const CreateRequest& request) {
    return {{"schema", 1},
            {"command", "create"},
            {"id", request.id},
            {"outerId", creation.outerId.empty() ? Json() : Json(creation.outerId)},
            {"layout", LayoutName(creation.layout)},
            {"folders", creation.folders}};
}

}  // namespace

std::string TextOf(const Creation& creation) {
    std::string text;
    for (const auto* files : {&creation.written, &creation.checksums})
        for (const std::string& file : *files)
            text += "  " + file + "\n";
    text = Counted(creation.folders.size(), "volume") + " (" + LayoutName(creation.layout) +
           "), written:\n" + text;
    if (creation.keptFiles > 0)
        text += Counted(creation.keptFiles, "file") + " of the unfinished set kept\n";
    if (creation.copiedFiles > 0)
        text += Counted(creation.copiedFiles, "file") + " copied, " +
                Counted(creation.copiedBytes, "byte") + "\n";
    return text;
}

std::string TextOfDry(const Creation& creation) {
    std::string text = Counted(creation.folders.size(), "volume") + " (" +
                       LayoutName(creation.layout) + "), nothing is changed:\n";
    for (const CreatedFile& file : creation.files) {
        const std::string action = ActionOn(file);
        text += "  " + action + std::string(9 - action.size(), ' ') + file.path + "\n";
    }
    for (const auto& [action, total] : TotalsOf(creation))
        if (total.count > 0)
            text += action + ": " + Counted(total.count, "file") + ", " +
                    Counted(total.bytes, "byte") + "\n";
    return text;
}

Json JsonOf(const Creation& creation, const CreateRequest& request) {
    Json json = Head(creation, request);
    json["written"] = creation.written;
    json["copied"] = {{"files", creation.copiedFiles}, {"bytes", creation.copiedBytes}};
    if (creation.keptFiles > 0) json["kept"] = creation.keptFiles;
    if (request.checksums) json["checksums"] = creation.checksums;
    return json;
}

Json JsonOfDry(const Creation& creation, const CreateRequest& request) {
    Json json = Head(creation, request);
    json["dryRun"] = true;
    json["files"] = Json::array();
    for (const CreatedFile& file : creation.files)
        json["files"].push_back({{"action", ActionOn(file)},
                                 {"path", file.path},
                                 {"source", file.source.empty() ? Json() : Json(file.source)},
                                 {"bytes", file.size}});
    for (const auto& [action, total] : TotalsOf(creation))
        json["totals"][action] = {{"files", total.count}, {"bytes", total.bytes}};
    return json;
}

}  // namespace launcher::mediatool
