#include "mediatool/run/reporter.h"

#include <windows.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "fs/text.h"
#include "mediatool/base/json.h"
#include "mediatool/base/sentences.h"
#include "mediatool/run/command_line.h"
#include "mediatool/run/report.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kSourceWidth = 11;
constexpr std::size_t kClockWidth = 10;

std::string SourceOf(Origin origin) {
    return NameIn({"output", "errors", "installer", "installer"}, origin);
}

// Further lines of a text stand under its first.
std::string LineOf(Moment at, const std::string& source, const std::string& text) {
    std::string line = ClockText(at) + "  " + source;
    line.append(kSourceWidth - source.size(), ' ');
    std::string indented = Harmless(WithoutLineEnds(text));
    ReplaceAll(indented, "\n", "\n" + std::string(kClockWidth + kSourceWidth, ' '), 0);
    return line + indented + "\n";
}

}  // namespace

Reporter::Reporter(const std::string& log, bool json) : json_(json) {
    if (!log.empty()) log_.emplace(log);
}

void Reporter::Begin(const std::string& commandLine) {
    if (log_)
        log_->Begin("==== " + DateAndClockText(Now()) + "  process " +
                    std::to_string(GetCurrentProcessId()) + "  " + OnOneLine(commandLine));
}

void Reporter::Say(const std::string& sentence) {
    status_.Clear();
    screen_.Error("mediatool: " + OnOneLine(sentence) + "\n");
    Log(LineOf(Now(), "mediatool", OnOneLine(sentence)));
}

void Reporter::Conclude(const WatchedRun& run, const RunRequest& request) {
    status_.Clear();
    TellLinesLeftOut();
    SayWhatIsMissing(run);
    if (run.endedBy == EndedBy::Failure) Say(MeaningOf(run, request));
    screen_.Out(json_ ? Printed(JsonOf(run)) : TextOf(run, request, /*coloured=*/true));
    Log(TextOf(run, request, /*coloured=*/false));
    FinishLog();
}

void Reporter::ConcludeWith(const std::string& sentence, int exitCode) {
    Say(sentence);
    if (json_) screen_.Out(Printed(FailureJson("run", exitCode, sentence)));
    FinishLog();
}

void Reporter::Started(const RunRequest& request) {
    if (!WaitsForInstaller(request.arguments))
        Say("Without -wait, only the launcher is waited for, not the installer.");
}

void Reporter::Saw(const std::vector<SeenLine>& lines) {
    std::string told;
    for (const SeenLine& line : lines) {
        told += LineOf(line.at, SourceOf(line.origin), line.text);
        const bool isBlank = line.text.find_first_not_of(" \t") == std::string::npos;
        if (!isBlank) last_ = line.text;
    }
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
    if (const auto failure = log_ ? log_->NewFailure() : std::nullopt) Say(*failure);
    if (!screen_.IsFull()) status_.Show(milliseconds, last_);
}

// Nobody may be reading: then the screen's part must not grow for ever.
void Reporter::Tell(const std::string& lines) {
    if (!json_ && screen_.IsFull()) {
        leftOut_ += static_cast<std::size_t>(std::ranges::count(lines, '\n'));
    } else if (!json_) {
        status_.Clear();
        TellLinesLeftOut();
        screen_.Out(lines);
    }
    Log(lines);
}

void Reporter::TellLinesLeftOut() {
    if (leftOut_ == 0) return;
    screen_.Out(LineOf(Now(), "mediatool",
                       Counted(std::exchange(leftOut_, 0), "line") +
                           " left out here: nobody read them." +
                           (log_ ? " The log has them all." : "")));
}

void Reporter::SayWhatIsMissing(const WatchedRun& run) {
    if (json_ && run.linesLeftOut > 0)
        Say("The JSON holds " + std::to_string(kKeptLines >> 20) + " MB of lines; the last " +
            std::to_string(run.linesLeftOut) + " are left out of it." +
            (log_ ? " The log has them all." : ""));
    if (run.bytesLeftOut > 0)
        Say("The last " + std::to_string(run.bytesLeftOut) +
            " bytes of output were not taken down: there was no time for them.");
}

void Reporter::Log(const std::string& text) {
    if (log_) log_->Add(text);
}

void Reporter::FinishLog() {
    if (const auto failure = log_ ? log_->Finish() : std::nullopt)
        screen_.Error("mediatool: " + *failure + "\n");
}

}  // namespace launcher::mediatool
