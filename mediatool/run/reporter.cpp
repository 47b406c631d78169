#include "mediatool/run/reporter.h"

#include "fs/text.h"
#include "mediatool/base/console.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
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

LogFile OpenLog(const std::string& path) {
    return path.empty() ? LogFile() : LogFile(path);
}

}  // namespace

Reporter::Reporter(const std::string& log, bool onlyLog)
    : log_(OpenLog(log)), logName_(log), onlyLog_(onlyLog) {}

void Reporter::Begin(const std::string& commandLine) {
    if (log_.Add("==== " + DateAndClockText(Now()) + "  " + commandLine + "\n")) return;
    const std::string reason = LastErrorText();
    throw BadInput("The log " + Quoted(logName_) + " cannot be written: " + reason + ".");
}

void Reporter::Say(const std::string& sentence) {
    status_.Clear();
    PrintError("mediatool: " + sentence + "\n");
    Log(ClockText(Now()) + "  mediatool  " + sentence + "\n");
}

void Reporter::Conclude(const WatchedRun& run, const RunRequest& request) {
    status_.Clear();
    if (!onlyLog_) PrintOut(TextOf(run, request, /*coloured=*/true));
    Log(TextOf(run, request, /*coloured=*/false));
}

void Reporter::Saw(const SeenLine& line) {
    Tell(line.at, SourceOf(line.origin), line.text);
}

void Reporter::Saw(const AnsweredBox& box) {
    Tell(box.at, box.box.dialog ? "dialog" : "box", box.box.text);
    if (box.box.dialog) Tell(box.at, "", kDialogRemedy);
}

void Reporter::TimePassed(std::uint64_t milliseconds) {
    status_.Show(milliseconds, last_);
}

// Further lines of a text stand under its first.
void Reporter::Tell(Moment at, const std::string& source, const std::string& text) {
    last_ = text;
    std::string line = ClockText(at) + "  " + source;
    line.append(kSourceWidth - source.size(), ' ');
    std::string indented = WithoutLineEnds(text);
    ReplaceAll(indented, "\n", "\n" + std::string(kClockWidth + kSourceWidth, ' '), 0);
    line += indented + "\n";
    if (!onlyLog_) {
        status_.Clear();
        PrintOut(line);
    }
    Log(line);
}

// A disk that is full, or gone, must not stop the watching.
void Reporter::Log(const std::string& text) {
    if (logFailed_ || log_.Add(text)) return;
    const std::string reason = LastErrorText();
    logFailed_ = true;
    PrintError("mediatool: The log " + Quoted(logName_) + " can no longer be written: " + reason +
               ".\n");
}

}  // namespace launcher::mediatool
