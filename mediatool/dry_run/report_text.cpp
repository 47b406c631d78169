#include "fs/text.h"
#include "launcher/base/message.h"
#include "media/folder_names.h"
#include "mediatool/base/console.h"
#include "mediatool/base/sentences.h"
#include "mediatool/dry_run/dry_run.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kMissingShown = 4;  // of the files that were looked for

std::string Heading(const std::string& text) {
    return Painted(Colour::Bold, Harmless(text)) + "\n";
}

// `text` after the part of the line that is in a colour.
std::string Line(Colour colour, const std::string& painted, const std::string& text = "") {
    return "  " + Painted(colour, Harmless(painted)) + Harmless(text) + "\n";
}

std::string Line(const std::string& text) {
    return Line(Colour::Plain, text);
}

// An argument as it is typed.
std::string Typed(const std::string& argument) {
    const bool plain = !argument.empty() && argument.find_first_of(" \t\"") == std::string::npos;
    return plain ? argument : QuotedArgument(argument);
}

std::string MachineText(const DryRun& run) {
    const PretendedMachine& machine = run.machine;
    std::string text;
    const auto add = [&text](const std::string& fact) {
        text += (text.empty() ? "" : ", ") + fact;
    };
    if (machine.isWindows8OrNewer)
        add(*machine.isWindows8OrNewer ? "Windows 8 or newer" : "Windows 7");
    if (machine.is64Bit) add(*machine.is64Bit ? "64-bit" : "32-bit");
    if (machine.isAdministrator)
        add(*machine.isAdministrator ? "administrator" : "no administrator");
    if (machine.hasOldWebLibrary) add("old web library");
    for (const std::string& name : run.variables)
        add(name);
    return text.empty() ? "on this machine" : "pretended: " + text + "; else this machine's";
}

std::string DoubtText(const DryRun& run) {
    if (run.doubt.empty()) return {};
    return Line(Colour::Yellow, run.doubt, " It may do something else than this:");
}

std::string HintsText(const DryRun& run) {
    if (run.hints.empty()) return {};
    std::string text = Heading("Hints");
    for (const std::string& hint : run.hints)
        text += Line(Colour::Yellow, hint);
    return text;
}

// TEMP, which is always set, is told with the copy.
std::string VariablesText(const DryRun& run) {
    std::string text;
    for (const SetVariable& variable : run.setVariables)
        if (variable.name != "TEMP")
            text += Line(variable.name + " = " + variable.value + ": " + variable.effect);
    return text.empty() ? text
                        : Heading("Variables that are set and that the launcher reads") + text;
}

// Every medium but a volume of a split one lacks it.
bool IsMissingInOrder(const DryRun& run, const Lookup& lookup) {
    return run.volumes && run.volumes->layout == Layout::NotSplit &&
           lookup.path.ends_with(std::string(kInstFolder) + "\\" + kCountFile);
}

std::string LookupsText(const DryRun& run, bool everything) {
    std::string text = Heading("Looked for");
    if (run.journal.lookups.empty()) text += Line("nothing");
    std::size_t missing = 0;
    for (const Lookup& lookup : run.journal.lookups) {
        if (!lookup.found && ++missing > kMissingShown && !everything) continue;
        const bool isInOrder = !lookup.found && IsMissingInOrder(run, lookup);
        text += Line(lookup.found ? Colour::Green : Colour::Plain,
                     lookup.found ? "found    " : "missing  ",
                     lookup.path + (isInOrder ? ", as it should be" : ""));
    }
    if (missing > kMissingShown && !everything)
        text +=
            Line("missing  " + std::to_string(missing - kMissingShown) + " more; --all shows them");
    return text;
}

std::string InstallerText(const DryRun& run) {
    std::string text = Heading("Installer");
    if (!run.installer) return text + Line("none");
    const ChosenInstaller& installer = *run.installer;
    const bool isInMedia = installer.foundBy == "current-media";
    text += Line(installer.foundAt);
    text += Line(installer.osFolder + ", found " +
                 (isInMedia ? "on the medium itself" : "by " + installer.foundBy) +
                 (installer.fault.empty() ? ", a " + installer.program + " program" : ""));
    if (!installer.fault.empty())
        text += Line(Colour::Red, "Windows cannot start it: " + installer.fault + ".");
    return text;
}

std::string LayoutText(const DryRun& run) {
    if (!run.volumesChecked) return "not looked for";
    const LauncherView& view = *run.volumes;
    const std::string count = view.count ? std::to_string(view.count->count) : "?";
    switch (view.layout) {
        case Layout::OneFolder:
            return count + " in one folder";
        case Layout::Siblings:
            return count + " side by side";
        case Layout::Outer:
            return count + " in outer volumes";
        case Layout::Incomplete:
            return "not all of the " + count + " can be put together; why: mediatool validate " +
                   Typed(run.volumes->folders.front());
        case Layout::NotSplit:
            break;
    }
    return "one; the medium is not split";
}

std::string VolumesText(const DryRun& run) {
    if (!run.volumes) return {};
    std::string text = Heading("Volumes") + Line(LayoutText(run));
    const std::vector<std::string>& folders = run.volumes->folders;
    if (run.volumes->layout == Layout::Siblings || run.volumes->layout == Layout::Outer)
        for (std::size_t i = 0; i < folders.size(); ++i)
            text += Line(std::to_string(i + 1) + "  " + folders[i]);
    return text;
}

std::string CopyText(const DryRun& run, bool everything) {
    if (!run.volumes) return {};
    const PretendedCopy& copy = run.journal.copy;
    std::string text = Heading("Temporary copy");
    text += Line((run.copy.made ? "made: " : "none: ") + run.copy.reason);
    if (copy.contents.empty()) return text;
    text += Line(Counted(copy.contents.size(), "file") + ", " + Grouped(copy.bytes) +
                 " bytes, to " + run.temp + "\\" + kUuidShown);
    if (copy.room) {
        const std::string free = Grouped(*copy.room) + " bytes are free there";
        text += copy.bytes > *copy.room ? Line(Colour::Red, free + ": too few") : Line(free);
    }
    for (const auto& [key, file] : copy.contents)
        if (everything) text += Line(file.path);
    return text;
}

std::string ValueText(const std::optional<std::string>& value) {
    return value ? *value : "(not set)";
}

std::string EnvironmentText(const DryRun& run, bool everything) {
    if (run.environment.empty()) return {};
    std::string text = Heading("Environment");
    if (!everything)
        return text + Line(Counted(run.environment.size(), "variable") +
                           " change for the installer; --all shows them");
    for (const Change& change : run.environment) {
        text += Line(change.name + " = " + ValueText(change.after));
        text += Line("    before: " + ValueText(change.before));
    }
    return text;
}

std::string CommandLineText(const DryRun& run) {
    if (!run.journal.commandLine) return {};
    std::string text = Heading("Command line") + Line(*run.journal.commandLine);
    for (std::size_t i = 0; i < run.installerArguments.size(); ++i)
        text += Line("argument " + std::to_string(i + 1) + "  |" + run.installerArguments[i] + "|");
    return text;
}

std::string Indented(std::string text, const std::string& indent) {
    ReplaceAll(text, "\r\n", "\n", 0);
    while (text.ends_with('\n') || text.ends_with('\r'))
        text.pop_back();
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1))
        text.insert(at + 1, indent);
    return text;
}

std::string MessagesText(const DryRun& run) {
    std::string text = Heading("Messages");
    if (run.journal.messages.empty() && !run.showsCommandLine) text += Line("none");
    for (const Message& message : run.journal.messages) {
        if (message.box) {
            text += Line(Colour::Yellow, message.dialog ? "dialog   " : "box      ",
                         Indented(message.text, "           "));
            text += Line("         An unattended run waits here for ever.");
        } else {
            text += Line("console  " + Indented(message.text, "           "));
        }
    }
    if (run.showsCommandLine) {
        text += Line(
            "console  cmd.exe shows the command line and stays open; the installer is "
            "not run.");
        text += Line("         An unattended run waits here for ever.");
    }
    return text;
}

Colour ColourOf(Verdict verdict) {
    if (verdict == Verdict::Starts) return Colour::Green;
    return verdict == Verdict::Waits ? Colour::Yellow : Colour::Red;
}

}  // namespace

std::string TextOf(const DryRun& run, bool everything) {
    std::string typed = run.launcher;
    for (const std::string& argument : run.arguments)
        typed += " " + Typed(argument);
    std::string text = Painted(ColourOf(run.verdict), Harmless(run.summary)) + "\n";
    text += Heading(typed) + Line(MachineText(run)) + DoubtText(run);
    text += HintsText(run) + VariablesText(run) + LookupsText(run, everything);
    text += InstallerText(run) + VolumesText(run) + CopyText(run, everything);
    text += EnvironmentText(run, everything);
    return text + CommandLineText(run) + MessagesText(run);
}

}  // namespace launcher::mediatool
