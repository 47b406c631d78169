#include <algorithm>

#include "installer/installer_environment.h"
#include "launcher/base/message.h"
#include "mediatool/base/console.h"
#include "mediatool/base/sentences.h"
#include "mediatool/dry_run/report.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kMissingShown = 10;  // of the files that were looked for

std::string Heading(const std::string& text) {
    return Painted(Colour::Bold, text) + "\n";
}

std::string Line(const std::string& text) {
    return "  " + text + "\n";
}

// "1234567" -> "1,234,567"
std::string Grouped(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3;) {
        i -= 3;
        digits.insert(i, 1, ',');
    }
    return digits;
}

// An argument as it is typed.
std::string Typed(const std::string& argument) {
    const bool plain = !argument.empty() && argument.find_first_of(" \t\"") == std::string::npos;
    if (plain) return argument;
    return "\"" + argument + (argument.ends_with('\\') ? "\\\"" : "\"");
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
    return Line(Painted(Colour::Yellow, run.doubt) + " It may do something else than this:");
}

std::string InstallerText(const DryRun& run) {
    std::string text = Heading("Looked for");
    if (run.journal.lookups.empty()) text += Line("nothing");
    std::size_t missing = 0;
    for (const Lookup& lookup : run.journal.lookups) {
        if (!lookup.found && ++missing > kMissingShown) continue;
        text += "  " + (lookup.found ? Painted(Colour::Green, "found    ") : "missing  ") +
                lookup.path + "\n";
    }
    if (missing > kMissingShown)
        text += Line("missing  " + std::to_string(missing - kMissingShown) + " more");
    text += Heading("Installer");
    if (!run.installer) return text + Line("none");
    text += Line(run.installer->foundAt);
    text += Line(run.installer->osFolder + ", found by " + run.installer->foundBy);
    const std::string& program = run.installer->program;
    if (program != "64-bit" && program != "32-bit")
        text += Line(Painted(Colour::Red, "Windows cannot start it: " + program + "."));
    else
        text += Line("a " + program + " program");
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
            return "missing or not to be put together, of " + count + "; why: mediatool validate " +
                   Typed(run.volumes->folders.front());
        case Layout::NotSplit:
            break;
    }
    return "one; the media is not split";
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

std::string CopyText(const DryRun& run) {
    if (!run.volumes) return {};
    const PretendedCopy& copy = run.journal.copy;
    std::string text = Heading("Temporary copy");
    text += Line((run.copy.made ? "made: " : "none: ") + run.copy.reason);
    if (copy.contents.empty()) return text;
    text += Line(Counted(copy.contents.size(), "file") + ", " + Grouped(copy.bytes) +
                 " bytes, to " + run.temp + "\\" + kPretendedUuid);
    if (copy.room)
        text += Line(Grouped(*copy.room) + " bytes are free there" +
                     (copy.bytes > *copy.room ? Painted(Colour::Red, ": too few") : ""));
    return text;
}

std::string ValueText(const std::optional<std::string>& value) {
    return value ? *value : "(not set)";
}

// The first entry of a list of folders; the others are like it.
std::string ShortValue(const std::string& value) {
    const std::size_t end = value.find(';');
    return end == std::string::npos ? value : value.substr(0, end) + ";...";
}

bool IsFixed(const Change& change) {
    return std::ranges::count(kFixedVariables, change.name, &FixedVariable::name) > 0;
}

bool IsBackup(const Change& change) {
    return change.name.starts_with(kBackupPrefix);
}

std::string EnvironmentText(const DryRun& run, bool everything) {
    if (run.environment.empty()) return {};
    std::string text = Heading("Environment");
    std::size_t backups = 0;
    std::size_t fixed = 0;
    for (const Change& change : run.environment) {
        if (everything) {
            text += Line(change.name + " = " + ValueText(change.after));
            text += Line("    before: " + ValueText(change.before));
        } else if (IsBackup(change)) {
            ++backups;
        } else if (IsFixed(change)) {
            ++fixed;
        } else {
            const std::string was =
                change.before ? "   (before: " + ShortValue(*change.before) + ")" : "";
            text += Line(change.name + " = " +
                         (change.after ? ShortValue(*change.after) : "(removed)") +
                         Painted(Colour::Dim, was));
        }
    }
    if (backups + fixed > 0)
        text += Line(Painted(
            Colour::Dim, "and " + Counted(backups, "backup") + " in " + kBackupPrefix + "..., " +
                             Counted(fixed, "fixed value") + "; --all shows them"));
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
            text += Line(Painted(Colour::Yellow, message.dialog ? "dialog   " : "box      ") +
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

std::string ExitCodeText(const DryRun& run) {
    const Colour colour = run.started ? Colour::Green : Colour::Red;
    if (run.exitCodeIsInstallers) return Heading("Exit code") + Line(Painted(colour, run.meaning));
    return Heading("Exit code") +
           Line(Painted(colour, std::to_string(run.exitCode)) + ": " + run.meaning);
}

}  // namespace

std::string TextOf(const DryRun& run, bool everything) {
    std::string typed = run.launcher;
    for (const std::string& argument : run.arguments)
        typed += " " + Typed(argument);
    std::string text = Heading(typed) + Line(MachineText(run)) + DoubtText(run);
    text += InstallerText(run) + VolumesText(run) + CopyText(run);
    text += EnvironmentText(run, everything) + CommandLineText(run);
    return text + MessagesText(run) + ExitCodeText(run);
}

}  // namespace launcher::mediatool
