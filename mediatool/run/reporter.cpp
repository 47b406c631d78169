#include "mediatool/run/reporter.h"

#include <nlohmann/json.hpp>

#include "fs/text.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/json.h"
#include "mediatool/base/sentences.h"
#include "mediatool/run/report.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kSourceWidth = 11;
constexpr std::size_t kClockWidth = 10;

std::string SourceOf(Origin origin) {
    switch (origin) {
        case Origin::LauncherOutput:
            return "output";
        case Origin::LauncherErrors:
            return "errors";
        case Origin::InstallerOutput:
        case Origin::InstallerErrors:
            break;
    }
    return "installer";
}

// Further lines of a text stand under its first.
std::string LineOf(Moment at, const std::string& source, const std::string& text) {
    std::string line = ClockText(at) + "  " + source;
    line.append(kSourceWidth - source.size(), ' ');
    std::string indented = WithoutLineEnds(text);
    ReplaceAll(indented, "\n", "\n" + std::string(kClockWidth + kSourceWidth, ' '), 0);
    return line + indented + "\n";
}

LogFile OpenLog(const std::string& path) {
    return path.empty() ? LogFile() : LogFile(path);
}

}  // namespace

Reporter::Reporter(const std::string& log, bool json)
    : log_(OpenLog(log)), logName_(log), json_(json) {}

void Reporter::Begin(const std::string& commandLine) {
    if (log_.Add("==== " + DateAndClockText(Now()) + "  " + commandLine + "\n")) return;
    const std::string reason = LastErrorText();
    throw BadInput("The log " + Quoted(logName_) + " cannot be written: " + reason + ".");
}

void Reporter::Say(const std::string& sentence) {
    status_.Clear();
    screen_.Error("mediatool: " + sentence + "\n");
    Log(LineOf(Now(), "mediatool", sentence));
}

void Reporter::Conclude(const WatchedRun& run, const RunRequest& request) {
    status_.Clear();
    screen_.Out(json_ ? Printed(JsonOf(run)) : TextOf(run, request, /*coloured=*/true));
    Log(TextOf(run, request, /*coloured=*/false));
}

// All together: each piece of the log waits for the disk.
void Reporter::Saw(const std::vector<SeenLine>& lines) {
    std::string told;
    for (const SeenLine& line : lines)
        told += LineOf(line.at, SourceOf(line.origin), line.text);
    last_ = lines.back().text;
    Tell(told);
}

void Reporter::Saw(const AnsweredBox& box) {
    last_ = box.box.text;
    if (box.box.dialog)
        Tell(LineOf(box.at, "dialog", box.box.text) + LineOf(box.at, "", kDialogRemedy));
    else
        Tell(LineOf(box.at, "box", box.box.text));
}

void Reporter::TimePassed(std::uint64_t milliseconds) {
    status_.Show(milliseconds, last_);
}

void Reporter::Tell(const std::string& lines) {
    if (!json_) {
        status_.Clear();
        screen_.Out(lines);
    }
    Log(lines);
}

// A disk that is full, or gone, must not stop the watching.
void Reporter::Log(const std::string& text) {
    if (logFailed_ || log_.Add(text)) return;
    const std::string reason = LastErrorText();
    logFailed_ = true;
    screen_.Error("mediatool: The log " + Quoted(logName_) +
                  " can no longer be written: " + reason + ".\n");
}

}  // namespace launcher::mediatool
