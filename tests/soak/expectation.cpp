#include "tests/soak/expectation.h"

#include "tests/soak/copied_folder.h"
#include "tests/soak/media_set.h"
#include "tests/support/temporary_folder.h"

namespace launcher::soak {
namespace {

using Texts = std::vector<std::string>;

class Judge {
  public:
    Judge(const test::LauncherRun& run, const Expectation& expected, const test::Media& media)
        : run_(run), expected_(expected), media_(media) {}

    Texts Problems() {
        CheckTemp();
        CheckBoxes();
        Compare("exit code", std::to_string(run_.exitCode), std::to_string(expected_.exitCode));
        Compare("standard output", run_.output, expected_.output);
        Compare("standard error", run_.errors, expected_.errors);
        Require(run_.dialogs.empty(), "a folder dialog");
        if (run_.report && expected_.startsInstaller)
            CheckInstaller(*run_.report);
        else
            Require(!run_.report && !expected_.startsInstaller,
                    run_.report ? "an installer was started" : "no installer was started");
        return problems_;
    }

  private:
    void Require(bool holds, const std::string& problem) {
        if (!holds) problems_.push_back(problem);
    }
    void Compare(const std::string& what, const std::string& actual, const std::string& wanted) {
        Require(actual == wanted, what + ": " + actual + " instead of " + wanted);
    }

    void CheckTemp() {
        const Texts names = run_.LeftInTemp();
        const bool wanted = expected_.copying != Copying::None;
        Require(names.size() == (wanted ? 1u : 0u),
                std::to_string(names.size()) + " entries in the temporary folder");
        if (!wanted || names.empty()) return;
        copy_ = test::ToUtf8(run_.temp / test::FromUtf8(names[0]));
        // A failed copy is never taken for a finished one.
        if (expected_.copying == Copying::Failed)
            Require(!std::filesystem::exists(test::FromUtf8(copy_ + "\\remove.bat")), "a script");
        else
            for (const std::string& difference : CopyDifferences(media_, copy_, true))
                problems_.push_back(difference);
    }

    void CheckBoxes() {
        std::vector<BoxText> wanted = expected_.boxes;
        if (expected_.copying == Copying::Failed)
            wanted.insert(
                wanted.begin(),
                {"Cannot copy the installer to a temporary directory: " + copy_ + "\\", true});
        const Texts texts = run_.BoxTexts();
        bool same = texts.size() == wanted.size();
        for (std::size_t i = 0; same && i < texts.size(); ++i)
            same =
                wanted[i].whole ? texts[i] == wanted[i].text : texts[i].starts_with(wanted[i].text);
        Require(same, "other boxes than expected");
    }

    void CheckInstaller(const test::InstallerReport& seen) {
        const bool copied = expected_.copying == Copying::Complete;
        const std::string folder = copied ? copy_ : media_.Text();
        Compare("installer", seen.module,
                folder + "\\inst\\" + kOsFolder + "\\code\\bin\\" + expected_.installerName);
        Texts arguments = {"-CDpath", folder};
        arguments.insert(arguments.end(), expected_.arguments.begin(), expected_.arguments.end());
        Require(seen.Arguments() == arguments, "other arguments: " + seen.commandLine);
        CompareVariable(seen, "ZEPAdmInstOriginalMediaDir", copied ? media_.Text() : "");
        CompareVariable(seen, "ZEPAdmInstCurrentMediaDir", folder);
        for (const auto& [name, value] : expected_.variables)
            CompareVariable(seen, name, value);
        Require(seen.inheritedFiles.size() == 2, "open files handed on");
    }

    void CompareVariable(const test::InstallerReport& seen, const std::string& name,
                         const std::string& wanted) {
        Compare(name, seen.Variable(name).value_or(""), wanted);
    }

    const test::LauncherRun& run_;
    const Expectation& expected_;
    const test::Media& media_;
    std::string copy_;
    Texts problems_;
};

}  // namespace

Texts Problems(const test::LauncherRun& run, const Expectation& expected,
               const test::Media& media) {
    return Judge(run, expected, media).Problems();
}

std::string Lines(const Texts& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\r\n";
    return text;
}

}  // namespace launcher::soak
