#include "tests/mediatool/run/support/run_test.h"

#include "mediatool/base/owners.h"
#include "tests/support/repeats.h"
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

namespace {

// A process could not be created for a reason of Wine's.
bool Stumbled(const MediatoolRun& run) {
    return IsWine() && (run.errors.find("(error 1359)") != std::string::npos ||
                        run.output.find("rc=1359") != std::string::npos);
}

}  // namespace

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
    for (Repeats repeats;;) {
        const MediatoolRun run = Started(media, launcherArguments, options).Finish();
        if (!repeats.AreWorthIt(Stumbled(run))) return run;
    }
}

// Wine makes the thread that hears of Ctrl+C inside the handler of a Unix signal, whatever was
// interrupted; inside its heap, for example, it never comes back. Most often that meets a process
// that only begins. What mediatool has started by then is ended as well.
bool RunTest::IsBrokenByCtrlC(const MediatoolProcess& process) const {
    constexpr DWORD kPatience = 60000;  // milliseconds; mediatool needs a second
    if (!IsWine() || process.EndsWithin(kPatience)) return false;
    process.Kill();
    for (const DWORD id : RunningBelow(scratch.Dir())) {
        const mediatool::KernelObject left(OpenProcess(PROCESS_TERMINATE, FALSE, id));
        TerminateProcess(left.Get(), 1);
    }
    return true;
}

MediatoolRun RunTest::Interrupted(const Media& media, const Words& launcherArguments,
                                  const Words& options, DWORD milliseconds) const {
    Repeats repeats;
    for (bool isFirst = true;; isFirst = false) {  // a second one is mediatool's own
        const MediatoolProcess process = Started(media, launcherArguments, options);
        Sleep(milliseconds);
        if (!process.Interrupt()) {
            EXPECT_TRUE(process.EndsWithin(10000)) << "Ctrl+C was not sent";
        }
        if (!repeats.AreWorthIt(isFirst && IsBrokenByCtrlC(process), "Ctrl+C broke Wine"))
            return process.Finish();
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
