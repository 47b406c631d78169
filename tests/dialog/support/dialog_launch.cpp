#include "tests/dialog/support/dialog_launch.h"

#include <cctype>

#include "tests/support/links.h"
#include "tests/support/repeats.h"
#include "tests/support/wine.h"

namespace launcher::test {

Media DialogTest::MarkedMedia(const std::string& osFolder) const {
    const std::string name = "setup-" + ToUtf8(scratch.Dir().filename()) + ".exe";
    Media media(scratch.Dir() / "far" / "near" / "between" / "media", name);
    media.AddMarker(osFolder);
    return media;
}

std::string DialogTest::AddInstallerIn(const std::string& folder,
                                       const std::string& osFolder) const {
    AddStandInInstaller(scratch.Dir() / FromUtf8(folder), osFolder);
    return scratch.Text(folder);
}

std::string DialogTest::InstallerOf(const std::string& folder, const std::string& osFolder) const {
    return scratch.Text(folder + "\\inst\\" + osFolder + "\\code\\bin\\" + kGuiInstaller);
}

LauncherRun DialogTest::RunWithDialog(const LauncherStart& start, const Steps& steps) {
    for (Repeats repeats;;) {
        LauncherProcess process(start);
        DialogDriver dialog;
        steps(dialog);
        LauncherRun run = process.Finish();
        if (!repeats.AreWorthIt(StumbledOverWine(run.BoxTexts()))) return run;
    }
}

LauncherRun DialogTest::RunOnDrive(char letter, const std::string& root, const Steps& steps) const {
    const std::filesystem::path folder = scratch.Dir() / FromUtf8(root);
    const std::filesystem::path program = MarkedMedia().Launcher().lexically_relative(folder);
    // Wine knows drives by their lower-case letters.
    const char lowerCase = static_cast<char>(std::tolower(letter));
    const MappedDrive drive(std::string(1, lowerCase) + ":", folder);
    const LauncherStart start{
        FromUtf8(std::string(1, letter) + ":\\" + ToUtf8(program)), {}, variables, scratch.Dir()};
    return RunWithDialog(start, steps);
}

}  // namespace launcher::test
