#include "tests/mediatool/run/support/run_test.h"

#include <cstdio>

#include "tests/support/wine.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

std::vector<std::string> WatchedOutcome::BoxTexts() const {
    std::vector<std::string> texts;
    for (const Json& box : report["boxes"])
        if (!box["dialog"]) texts.push_back(box["text"]);
    return texts;
}

std::vector<std::string> WatchedOutcome::Lines(const std::string& stream) const {
    std::vector<std::string> texts;
    for (const Json& line : report["lines"])
        if (line["stream"] == stream) texts.push_back(line["text"]);
    return texts;
}

void PrintTo(const WatchedOutcome& outcome, std::ostream* stream) {
    *stream << "exit code " << outcome.run.exitCode << "; errors: " << outcome.run.errors
            << "; output: " << outcome.run.output.substr(0, 4000);
}

bool IsWorthRepeating(const MediatoolRun& run) {
    const bool stumbled = IsWine() && (run.errors.find("(error 1359)") != std::string::npos ||
                                       run.output.find("rc=1359") != std::string::npos);
    // On the output of the test, where it can be counted afterwards.
    if (stumbled) std::puts("[ REPEATED ] a process could not be created, error 1359");
    return stumbled;
}

RunTest::RunTest() : temp(scratch.Dir() / "temp") {
    stdfs::create_directories(temp);
}

RunTest::~RunTest() {
    EXPECT_TRUE(NoneRunsBelow(scratch.Dir()));
}

RunTest::Words RunTest::LineOf(const Media& media, const Words& launcherArguments,
                               Words options) const {
    options.insert(options.begin(), {"run", media.Text()});
    options.emplace_back("--");
    options.insert(options.end(), launcherArguments.begin(), launcherArguments.end());
    return options;
}

std::map<std::string, std::string> RunTest::Variables() const {
    std::map<std::string, std::string> all = variables;
    all.insert({{"TEMP", ToUtf8(temp)},
                {"TMP", ToUtf8(temp)},
                {"STANDIN_REPORT", ToUtf8(scratch.Dir() / "report")}});
    return all;
}

MediatoolRun RunTest::Told(const Media& media, const Words& launcherArguments,
                           const Words& options) const {
    for (int repeats = 0;; ++repeats) {
        const MediatoolRun run = Started(media, launcherArguments, options).Finish();
        if (repeats == 3 || !IsWorthRepeating(run)) return run;
    }
}

WatchedOutcome RunTest::Watched(const Media& media, const Words& launcherArguments,
                                const Words& options) const {
    Words withJson = options;
    withJson.emplace_back("--json");
    WatchedOutcome outcome{Told(media, launcherArguments, withJson), {}};
    if (outcome.run.output.empty()) ADD_FAILURE() << "no report: " << outcome.run.errors;
    if (!outcome.run.output.empty()) outcome.report = Json::parse(outcome.run.output);
    return outcome;
}

Media RunTest::ActingMedia(const std::string& acts) {
    variables["STANDIN_ACTS"] = acts;
    Media media = UsualMedia();
    stdfs::copy_file(BuiltFile(ACTING_INSTALLER), FromUtf8(media.InstallerText(UsualOs())),
                     stdfs::copy_options::overwrite_existing);
    return media;
}

Media RunTest::StandInAsLauncher() const {
    Media media = EmptyMedia();
    stdfs::remove(media.Launcher());
    CopyStandIn(media.Launcher());
    return media;
}

}  // namespace launcher::test
