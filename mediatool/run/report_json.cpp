#include <nlohmann/json.hpp>

#include "mediatool/base/sentences.h"
#include "mediatool/run/report.h"

namespace launcher::mediatool {
namespace {

const char* NameOf(Origin origin) {
    return NameIn({"output", "errors", "installer-output", "installer-errors"}, origin);
}

const char* NameOf(EndedBy endedBy) {
    return NameIn({"launcher", "time-limit", "interrupt", "failure"}, endedBy);
}

Json JsonOf(const std::vector<AnsweredBox>& boxes) {
    Json list = Json::array();
    for (const AnsweredBox& box : boxes)
        list.push_back(
            {{"text", box.box.text}, {"dialog", box.box.dialog}, {"at", UtcText(box.at)}});
    return list;
}

Json JsonOf(const std::vector<SeenLine>& lines) {
    Json list = Json::array();
    for (const SeenLine& line : lines)
        list.push_back(
            {{"text", line.text}, {"stream", NameOf(line.origin)}, {"at", UtcText(line.at)}});
    return list;
}

Json JsonOf(const std::optional<SeenProcess>& process) {
    if (!process) return nullptr;
    return {{"processId", process->processId}, {"stillRunning", process->stillRunning}};
}

}  // namespace

Json JsonOf(const WatchedRun& run) {
    return {{"schema", 1},
            {"command", "run"},
            {"exitCode", run.exitCode},
            {"endedBy", NameOf(run.endedBy)},
            {"seconds", static_cast<double>(run.milliseconds) / 1000},
            {"boxes", JsonOf(run.boxes)},
            {"lines", JsonOf(run.lines)},
            {"linesLeftOut", run.linesLeftOut},
            {"bytesLeftOut", run.bytesLeftOut},
            {"launcher", JsonOf(run.launcher)},
            {"installer", JsonOf(run.installer)},
            {"error", run.failure.empty() ? Json() : Json(run.failure)}};
}

}  // namespace launcher::mediatool
