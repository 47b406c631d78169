#include <nlohmann/json.hpp>

#include "mediatool/run/report.h"

namespace launcher::mediatool {
namespace {

const char* NameOf(Origin origin) {
    switch (origin) {
        case Origin::LauncherOutput:
            return "output";
        case Origin::LauncherErrors:
            return "errors";
        case Origin::InstallerOutput:
            return "installer-output";
        case Origin::InstallerErrors:
            break;
    }
    return "installer-errors";
}

const char* NameOf(EndedBy endedBy) {
    switch (endedBy) {
        case EndedBy::Launcher:
            return "launcher";
        case EndedBy::TimeLimit:
            return "time-limit";
        case EndedBy::Interrupt:
            return "interrupt";
        case EndedBy::Failure:
            break;
    }
    return "failure";
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
