#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

#include "fs/text.h"
#include "launcher/driver.h"
#include "mediatool/base/console.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/remedies.h"
#include "mediatool/run/command_line.h"
#include "mediatool/run/report.h"
#include "mediatool/run/streams.h"

namespace launcher::mediatool {
namespace {

class Summary {
  public:
    explicit Summary(bool coloured) : coloured_(coloured) {}

    void Heading(const std::string& text) { text_ += InColour(Colour::Bold, text) + "\n"; }
    // Further lines of an item stand more to the right.
    void Item(const std::string& item, std::size_t indent = 2) {
        std::string text = std::string(indent, ' ') + WithoutLineEnds(item);
        ReplaceAll(text, "\n", "\n" + std::string(indent + 2, ' '), 0);
        text_ += text + "\n";
    }
    std::string InColour(Colour colour, const std::string& text) const {
        return coloured_ ? Painted(colour, text) : text;
    }
    const std::string& Text() const { return text_; }

  private:
    bool coloured_;
    std::string text_;
};

// "3010", "3221225477 (0xC0000005)"
std::string CodeText(std::uint32_t code) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = std::to_string(code);
    if (code < 0x80000000) return text;
    text += " (0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        text += kDigits[(code >> shift) & 0xF];
    return text + ")";
}

std::string Numbered(const std::string& name, const SeenProcess& process) {
    return "the " + name + ", process " + std::to_string(process.processId) + ",";
}

std::string LaunchersEnd(const WatchedRun& run) {
    if (run.launcher->stillRunning) return Numbered("launcher", *run.launcher) + " cannot be ended";
    return run.launcher->wasEnded ? "the launcher was ended" : "the launcher has ended";
}

std::string InstallersEnd(const WatchedRun& run, const RunRequest& request) {
    if (!run.installer) return "no installer was seen";
    const std::string installer = Numbered("installer", *run.installer);
    if (run.installer->wasEnded) return installer + " was ended too";
    if (!run.installer->stillRunning) return installer + " has ended";
    return installer + (request.endInstaller ? " cannot be ended" : " goes on");
}

std::string MeaningOfAnEnd(const WatchedRun& run, const RunRequest& request,
                           const std::string& what) {
    if (!run.launcher) return what + " before the launcher was started.";
    return what + ": " + LaunchersEnd(run) + "; " + InstallersEnd(run, request) + ".";
}

// After this one there was an installer.
constexpr char kCrashed[] = "Cannot wait for process";

bool AnyBox(const WatchedRun& run, const std::string& beginning) {
    return std::ranges::any_of(run.boxes, [&beginning](const AnsweredBox& box) {
        return box.box.text.starts_with(beginning);
    });
}

void AddBoxes(Summary& summary, const WatchedRun& run) {
    if (run.boxes.empty()) return;
    summary.Heading("Boxes, each of which would have waited");
    for (const AnsweredBox& box : run.boxes)
        summary.Item(Harmless(WithoutLineEnds(box.box.text)));
}

void AddAdvice(Summary& summary, const WatchedRun& run) {
    // In the order in which the messages came: what follows from a mistake comes after it.
    std::vector<std::pair<Moment, std::string>> messages;
    for (const SeenLine& line : run.lines)
        if (line.origin == Origin::LauncherOutput || line.origin == Origin::LauncherErrors)
            messages.emplace_back(line.at, MessageOf(line.text));
    for (const AnsweredBox& box : run.boxes)
        messages.emplace_back(box.at, box.box.text);
    std::ranges::stable_sort(messages, {}, &std::pair<Moment, std::string>::first);
    std::set<std::string> told;  // first lines
    for (const auto& [at, message] : messages) {
        const std::string first = WithoutLineEnds(message.substr(0, message.find('\n')));
        const std::string remedy = RemedyFor(message).value_or("");
        if (remedy.empty() || !told.insert(first).second) continue;
        if (told.size() == 1) summary.Heading("What to do");
        summary.Item(Harmless(first));
        summary.Item(remedy, 4);
    }
}

}  // namespace

std::string WithoutLineEnds(std::string text) {
    std::erase(text, '\r');
    while (text.ends_with('\n'))
        text.pop_back();
    return text;
}

std::string MeaningOf(const WatchedRun& run, const RunRequest& request) {
    if (run.endedBy == EndedBy::TimeLimit)
        return MeaningOfAnEnd(run, request, "The time limit is over");
    if (run.endedBy == EndedBy::Interrupt) return MeaningOfAnEnd(run, request, "Interrupted");
    if (run.endedBy == EndedBy::Failure)
        return MeaningOfAnEnd(run, request, "mediatool failed (" + run.failure + ")");
    const bool waits = WaitsForInstaller(request.arguments);
    if (AnyBox(run, kCrashed))
        return "The launcher's, for an installer that crashed; see the installer's own log.";
    if (run.installer && waits) return "The installer's own.";
    const bool asks = AsksForVolumes(request.arguments);
    const auto refuses = [&](const AnsweredBox& box) {
        return !(waits || asks) || KnownMessage(box.box.text);
    };
    if (run.exitCode == 1 && std::ranges::any_of(run.boxes, refuses))
        return "The launcher refuses; the message says why.";
    if (!run.installer && run.exitCode <= INT32_MAX && asks)
        return std::string("The number of volumes, which ") + kVolumesQuery +
               " asks for; nothing was started.";
    if (run.exitCode == 0 && !waits)
        return "The launcher has started the installer, and does not wait for it.";
    if (waits) return "The installer's own, which ended before it was seen, or the launcher's.";
    return "The launcher's; not one that it has of its own.";
}

std::string TextOf(const WatchedRun& run, const RunRequest& request, bool coloured) {
    Summary summary(coloured);
    AddBoxes(summary, run);
    AddAdvice(summary, run);
    summary.Heading("Exit code");
    const Colour colour = run.exitCode == 0 ? Colour::Green : Colour::Red;
    summary.Item(summary.InColour(colour, CodeText(run.exitCode)) + ": " + MeaningOf(run, request));
    summary.Heading("Time");
    summary.Item(LengthText(run.milliseconds));
    return summary.Text();
}

}  // namespace launcher::mediatool
