#include "mediatool/create/report.h"

#include <nlohmann/json.hpp>

#include "mediatool/base/sentences.h"

namespace launcher::mediatool {

std::string TextOf(const Creation& creation) {
    std::string text;
    for (const std::string& file : creation.written)
        text += "  " + file + "\n";
    text = Counted(creation.folders.size(), "volume") + " (" + LayoutName(creation.layout) +
           "), written:\n" + text;
    if (creation.copiedFiles > 0)
        text += Counted(creation.copiedFiles, "file") + " copied, " +
                std::to_string(creation.copiedBytes) + " bytes\n";
    return text;
}

Json JsonOf(const Creation& creation, const CreateRequest& request) {
    return {{"schema", 1},
            {"command", "create"},
            {"id", request.id},
            {"outerId", creation.outerId.empty() ? Json() : Json(creation.outerId)},
            {"layout", LayoutName(creation.layout)},
            {"folders", creation.folders},
            {"written", creation.written},
            {"copied", {{"files", creation.copiedFiles}, {"bytes", creation.copiedBytes}}}};
}

}  // namespace launcher::mediatool
