// Shows the launcher at work on a sample medium: one installation as the installer sees it, and two
// refusals as a person sees them.

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/e2e/support/launcher_run.h"
#include "tests/e2e/support/media.h"
#include "tests/support/links.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

constexpr std::size_t kBoxWidth = 62;

void Say(const std::string& line = {}) {
    std::printf("%s\n", line.c_str());
}

void Heading(const std::string& text) {
    Say();
    Say(text);
    Say(std::string(text.size(), '='));
}

// `label`, filled up with blanks, and what belongs to it.
void Entry(std::string label, const std::string& text) {
    label.resize(std::max<std::size_t>(label.size(), 30), ' ');
    Say("  " + label + "  " + text);
}

std::string AsTyped(const std::vector<std::string>& arguments) {
    std::string line = "setup.exe";
    for (const std::string& argument : arguments) {
        const bool plain = !argument.empty() && argument.find(' ') == std::string::npos;
        line += " " + (plain ? argument : QuoteArguments({argument}));
    }
    return line;
}

// `text` in lines of at most `width` characters, cut at blanks.
std::vector<std::string> Wrapped(std::string text, std::size_t width) {
    std::vector<std::string> lines;
    while (text.size() > width) {
        const std::size_t blank = text.rfind(' ', width);
        lines.push_back(text.substr(0, blank));
        text.erase(0, blank + 1);
    }
    lines.push_back(text);
    return lines;
}

std::string Repeated(const std::string& text, std::size_t times) {
    std::string result;
    for (; times > 0; --times)
        result += text;
    return result;
}

void DrawBox(const Box& box) {
    const auto line = [](const std::string& text) {
        Say("    │ " + text + std::string(kBoxWidth - text.size(), ' ') + " │");
    };
    Say("    ┌─ " + box.caption + " " + Repeated("─", kBoxWidth - box.caption.size() - 1) + "┐");
    line("");
    for (const std::string& text : Wrapped(box.text, kBoxWidth))
        line(text);
    line("");
    line(std::string(kBoxWidth - 6, ' ') + "[ OK ]");
    Say("    └" + Repeated("─", kBoxWidth + 2) + "┘");
}

class Demo {
  public:
    Demo() : drive_("m:", disc_.Dir()) {}

    void Show() {
        ShowInstallation();
        ShowRefusals();
        Say();
    }

  private:
    LauncherRun Run(const Media& media, const std::vector<std::string>& arguments) {
        Say();
        Say("  " + media.Text() + "> " + AsTyped(arguments));
        Say();
        return RunToEnd({media.Launcher(), arguments, {{"STANDIN_EXIT", "3010"}}, work_.Dir()});
    }

    void ShowInstallation() {
        Heading("An installation");
        Say("A media with the launcher at its root and an installer for each kind of Windows:");
        Say();
        Media media(L"M:\\Sample Media");
        for (const char* osFolder : {"win_b64", "intel_a"}) {
            media.AddInstaller(osFolder).AddMarker(osFolder);
            Say("  " + media.InstallerText(osFolder));
        }
        Say("  " + ToUtf8(media.Launcher()));
        ShowInstaller(Run(media, {"-wait", "-env", "LICENCE=2041@server", "C:\\Target Folder\\",
                                  "Größe: 漢字", "", "--verbose"}));
    }

    void ShowInstaller(const LauncherRun& run) {
        const InstallerReport& seen = run.Installer();
        Say("What the installer saw:");
        Say();
        Entry("it is", seen.module);
        const std::vector<std::string> arguments = seen.Arguments();
        for (std::size_t i = 0; i < arguments.size(); ++i)
            Entry("argument " + std::to_string(i + 1), "|" + arguments[i] + "|");
        Entry("two independent parsers",
              seen.shellArguments == seen.runtimeArguments ? "agree on these" : "disagree");
        for (const char* name : {"LICENCE", "ZEPAdmInstCurrentMediaDir", "MORInstallPath", "ZEP_OS",
                                 "ZEPIns_HasElevatedPrivileges", "ZEPIns_IsInteractiveSession"})
            Entry(name, seen.Variable(name).value_or("(not set)"));
        const std::string path = seen.Variable("PATH").value_or("");
        Entry("PATH begins with", path.substr(0, path.find(';')));
        Say();
        Say("The installer ended with 3010 (done, restart needed); the launcher ended with " +
            std::to_string(run.exitCode) + ".");
    }

    void ShowRefusals() {
        Heading("Two refusals");
        ShowRefusal(Run(Media(L"M:\\Sample Media"), {"-wait", "-env"}));
        Media other(L"M:\\Other Media");
        other.AddMarker("linux_a64");
        ShowRefusal(Run(other, {"-wait"}));
    }

    static void ShowRefusal(const LauncherRun& run) {
        if (run.boxes.empty()) throw std::runtime_error("no message box appeared");
        for (const Box& box : run.boxes)
            DrawBox(box);
        Say();
        Say("  exit code " + std::to_string(run.exitCode) + ", installer " +
            (run.report ? "started" : "not started"));
    }

    TemporaryFolder disc_;
    TemporaryFolder work_;
    MappedDrive drive_;  // short names to read
};

}  // namespace
}  // namespace launcher::test

// Wine ends a program that is interrupted with 0: this code says that it came to its end.
constexpr int kAllShown = 42;

int wmain() {
    SetConsoleOutputCP(CP_UTF8);
    try {
        launcher::test::Demo().Show();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    return kAllShown;
}
