#include "mediatool/validate/validate.h"

#include <nlohmann/json.hpp>

#include "mediatool/base/console.h"
#include "mediatool/base/sentences.h"

namespace launcher::mediatool {
namespace {

constexpr char kIndent[] = "           ";

Colour ColourOf(Level level) {
    if (level == Level::Error) return Colour::Red;
    return level == Level::Warning ? Colour::Yellow : Colour::Cyan;
}

// Level and name in a column of their own.
std::string Label(Level level) {
    std::string name = LevelName(level);
    const std::string blanks(sizeof kIndent - 1 - name.size() - 2, ' ');
    return "  " + Painted(ColourOf(level), name) + blanks;
}

std::string TextOf(const Finding& finding) {
    std::string text = Label(finding.level) + Painted(Colour::Bold, finding.id) + "\n";
    text += kIndent + finding.what + "\n";
    text += kIndent + Painted(Colour::Dim, finding.file) + "\n";
    text += kIndent + ("Why:  " + finding.why) + "\n";
    text += kIndent + ("Do:   " + finding.action) + "\n\n";
    return text;
}

// Notes take one line: most media have some, and are meant to.
std::string NoteText(const Finding& finding) {
    return Label(finding.level) + Painted(Colour::Bold, finding.id) + ": " + finding.what + "\n";
}

std::string VolumesText(const LauncherView& view) {
    if (view.layout == Layout::NotSplit) return "one volume";
    if (view.layout == Layout::Incomplete) return "volumes are missing or cannot be put together";
    const char* const where = view.layout == Layout::OneFolder  ? "in one folder"
                              : view.layout == Layout::Siblings ? "side by side"
                                                                : "in outer volumes";
    return std::to_string(view.count->count) + " volumes " + where;
}

std::string Summary(const Validation& validation) {
    const Findings& findings = validation.findings;
    const std::size_t errors = findings.Count(Level::Error);
    const std::size_t warnings = findings.Count(Level::Warning);
    const std::size_t notes = findings.Count(Level::Note);
    std::string text = errors > 0     ? Painted(Colour::Red, Counted(errors, "error"))
                       : warnings > 0 ? "no errors"
                                      : Painted(Colour::Green, "clean");
    if (warnings > 0) text += ", " + Painted(Colour::Yellow, Counted(warnings, "warning"));
    if (notes > 0) text += ", " + Counted(notes, "note");
    if (errors == 0 && !validation.IsClean())
        text += "; not clean, since warnings count (--strict)";
    return text;
}

}  // namespace

std::string TextOf(const Validation& validation) {
    std::string text;
    for (const std::string& folder : validation.media)
        text += Painted(Colour::Bold, Harmless(folder)) + "\n";
    text += "  " + VolumesText(validation.view) + "; " +
            (validation.view.Copies() ? "the installer is copied to the temporary folder"
                                      : "the installer runs from the media") +
            "\n";
    if (validation.verified.files > 0)
        text += "  " + Counted(validation.verified.files, "checksum") + " verified, " +
                Counted(validation.verified.bytes, "byte") + "\n";
    text += "\n";
    bool hadNote = false;
    for (const Finding& finding : validation.findings.Sorted(Findings::Shown::Readable)) {
        hadNote = finding.level == Level::Note;
        text += hadNote ? NoteText(finding) : TextOf(finding);
    }
    if (hadNote) text += "\n";
    return text + Summary(validation) + "\n";
}

Json JsonOf(const Validation& validation) {
    Json findings = Json::array();
    for (const Finding& finding : validation.findings.Sorted())
        findings.push_back({{"severity", LevelName(finding.level)},
                            {"id", finding.id},
                            {"file", finding.file},
                            {"what", finding.what},
                            {"why", finding.why},
                            {"action", finding.action}});
    const Findings& all = validation.findings;
    return {
        {"schema", 1},
        {"command", "validate"},
        {"media", validation.media},
        {"clean", validation.IsClean()},
        {"errors", all.Count(Level::Error)},
        {"warnings", all.Count(Level::Warning)},
        {"notes", all.Count(Level::Note)},
        {"volumes", JsonOf(validation.view)},
        {"copiesInstaller", validation.view.Copies()},
        {"verified", {{"files", validation.verified.files}, {"bytes", validation.verified.bytes}}},
        {"findings", findings}};
}

}  // namespace launcher::mediatool
