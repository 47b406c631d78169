// The dry run and the watched run against the launcher itself: all get the same media, command
// line, environment and Windows, made from a number, and have to come to the same end.
//
// AGREEMENT_CASES and AGREEMENT_SEED set how many cases each of the 15 tests has and where their
// numbers begin.
//
// The dry run and the launcher are the same object code but for the outermost effects. So a mistake
// in the launcher's own rules is in both and agrees with itself here, by design: this finds what
// the dry run foresees wrongly. That the rules are right is for the tests of the launcher.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// windows.h first: the shell headers need it.
#include <shlobj.h>

#include <algorithm>
#include <map>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "tests/dialog/support/dialog_driver.h"
#include "tests/e2e/support/environment_block.h"
#include "tests/e2e/support/launcher_run.h"
#include "tests/mediatool/agreement/case.h"
#include "tests/mediatool/agreement/messages.h"
#include "tests/mediatool/agreement/new_files.h"
#include "tests/mediatool/agreement/watched.h"
#include "tests/mediatool/support/mediatool_run.h"
#include "tests/support/repeats.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

unsigned Setting(const char* name, unsigned usual) {
    const std::string value = GetEnvVar(name);
    return value.empty() ? usual : static_cast<unsigned>(std::stoul(value));
}

// Of each of the 15 tests.
unsigned CasesOfATest() {
    return Setting("AGREEMENT_CASES", 2);
}

constexpr unsigned kTests = 5;

// The first case's number.
unsigned FirstSeed() {
    return Setting("AGREEMENT_SEED", 1000);
}
// The variables of a block, by their names in lower case.
std::map<std::wstring, std::string> Variables(const std::wstring& block) {
    std::map<std::wstring, std::string> variables;
    for (const wchar_t* entry = block.c_str(); *entry != L'\0'; entry += std::wcslen(entry) + 1) {
        const wchar_t* const equals = std::wcschr(entry + 1, L'=');
        std::wstring name(entry, equals);
        CharLowerBuffW(name.data(), static_cast<DWORD>(name.size()));
        variables[name] = ToNarrow(equals + 1);
    }
    return variables;
}

std::map<std::wstring, std::string> Variables(
    const std::vector<std::pair<std::string, std::string>>& pairs) {
    std::wstring block;
    for (const auto& [name, value] : pairs)
        block.append(ToWide(name + "=" + WithoutUuid(value))).push_back(L'\0');
    return Variables(block + L'\0');
}

// The environment that the dry run says the installer gets.
std::map<std::wstring, std::string> Expected(std::map<std::wstring, std::string> variables,
                                             const Json& dry) {
    for (const auto& [name, change] : dry["environment"].items()) {
        std::wstring key = ToWide(name);
        CharLowerBuffW(key.data(), static_cast<DWORD>(key.size()));
        EXPECT_EQ(change["before"].is_null(), !variables.contains(key)) << name;
        if (change["after"].is_null())
            variables.erase(key);
        else
            variables[key] = change["after"];
    }
    return variables;
}

// Of how many runs each kind of end came, all cases together.
struct Tally {
    const char* what;
    std::size_t oneIn;  // a generator that has it in fewer runs than one of so many went wrong
    std::size_t count = 0;
};

class Agreement : public testing::TestWithParam<unsigned> {
  protected:
    void SetUp() override {
        if (!IsUserAnAdmin()) GTEST_SKIP() << "needs a console that runs as administrator";
    }

    // Ten cases in a row have one of each purpose, and so each kind of end.
    static void TearDownTestSuite() {
        std::printf("%zu runs", compared);
        for (const Tally& tally : tallies)
            std::printf(", %zu %s", tally.count, tally.what);
        std::puts("");
        for (const Tally& tally : tallies) {
            if (compared % 10 != 0 || compared < tally.oneIn) continue;
            EXPECT_GE(tally.count * tally.oneIn, compared) << tally.what;
        }
    }

    static void Count(const std::string& what, bool happened = true) {
        if (happened) ++std::ranges::find(tallies, what, &Tally::what)->count;
    }

    void Compare(unsigned seed) {
        ++compared;
        const TemporaryFolder files;
        const TemporaryFolder work;
        const Case made = MakeCase(seed, files.Dir(), work.Dir());
        std::string trace = "seed " + std::to_string(seed) + ": " + ToUtf8(made.launcher) + " " +
                            QuoteArguments(made.arguments);
        for (const std::string& feature : made.features)
            trace += "; " + feature;
        for (const auto& [name, value] : made.variables)
            trace += "; " + name + "=" + value;
        SCOPED_TRACE(trace);

        LauncherStart start{made.launcher, made.arguments, made.variables, work.Dir()};
        start.oneStream = seed % 2 == 0;
        variables_ = made.variables;
        variables_.insert({{"TEMP", ToUtf8(work.Dir() / "temp")},
                           {"TMP", ToUtf8(work.Dir() / "temp")},
                           {"STANDIN_REPORT", ToUtf8(work.Dir() / "report")}});
        stdfs::create_directory(work.Dir() / "temp");

        const std::vector<stdfs::path> folders = {files.Dir(), work.Dir()};
        const Snapshot before = TakeSnapshot(folders);
        const Json dry = RunDry(made, work.Dir());
        const Json copy = dry["temporaryCopy"]["files"] == 0
                              ? Json{{"files", Json::object()}, {"script", false}}
                              : RunPretendedCopy(made, work.Dir());
        EXPECT_THAT(NewFiles(before, TakeSnapshot(folders)), testing::IsEmpty())
            << "after a dry run";

        if (made.pretendsNoAdministrator) start.variables["ZEPProcessNotAdmin"] = "1";
        const LauncherRun real = RunReal(start, made, dry);
        const Snapshot after = TakeSnapshot(folders);
        CompareEnd(real, dry, made);
        CompareMessages(real, dry, start.oneStream);
        CompareCopy(NewFiles(before, after), copy, dry, work.Dir());
        CompareInstallersPlace(real, dry);
        CompareVolumes(real, dry);
        if (real.report) CompareInstaller(*real.report, dry, made, work.Dir());
        if (!start.oneStream && CanBeWatched(made)) {
            Count("watched runs");
            CompareWatched(made, variables_, work.Dir(), real);
        }
    }

    std::vector<std::string> DryRunLine(const Case& made, const std::vector<std::string>& options) {
        std::vector<std::string> line = options;
        line.insert(line.end(), made.machine.begin(), made.machine.end());
        line.push_back("--");
        line.insert(line.end(), made.arguments.begin(), made.arguments.end());
        return line;
    }

    Json RunDry(const Case& made, const stdfs::path& folder) {
        std::vector<std::string> options = {"dry-run", ToUtf8(made.launcher.parent_path()),
                                            "--json"};
        if (made.picked) options.insert(options.end(), {"--pick", ToUtf8(*made.picked)});
        const MediatoolRun run = RunMediatool(DryRunLine(made, options), folder, variables_);
        EXPECT_EQ(run.exitCode, 0u) << run.errors;
        return Json::parse(run.output);
    }

    Json RunPretendedCopy(const Case& made, const stdfs::path& folder) {
        const std::vector<std::string> line = DryRunLine(
            made, {ToUtf8(BuiltFile(PRETENDED_COPY_PROGRAM)), ToUtf8(made.launcher.parent_path()),
                   made.picked ? ToUtf8(*made.picked) : ""});
        const MediatoolRun run = RunCommandLine(QuoteArguments(line), folder, variables_);
        EXPECT_EQ(run.exitCode, 0u) << run.errors;
        return Json::parse(run.output);
    }

    // The folder is picked in the dialog when the dry run says that there is one.
    static LauncherRun RunReal(const LauncherStart& start, const Case& made, const Json& dry) {
        if (!made.picked || Dialogs(dry) == 0) return RunToEnd(start);
        for (Repeats repeats;;) {
            LauncherProcess process(start);
            DialogDriver dialog;
            dialog.Confirm(ToUtf8(*made.picked));
            LauncherRun run = process.Finish();
            run.dialogs = {"confirmed"};
            if (!repeats.AreWorthIt(StumbledOverWine(run.BoxTexts()))) return run;
        }
    }

    static void CompareEnd(const LauncherRun& real, const Json& dry, const Case& made) {
        EXPECT_EQ(dry["started"], real.report.has_value());
        const bool installers = dry["exitCodeIsInstallers"];
        EXPECT_EQ(std::to_string(real.exitCode),
                  installers ? made.variables.at("STANDIN_EXIT") : dry["exitCode"].dump());
        Count("started", real.report.has_value());
        Count("refused", !real.report);
        Count("pretended machines", !made.machine.empty());
        Count("picked folders", made.picked && !real.dialogs.empty());
    }

    static void CompareMessages(const LauncherRun& real, const Json& dry, bool oneStream) {
        EXPECT_EQ(Dialogs(dry), real.dialogs.size());
        Count("dialogs", !real.dialogs.empty());
        for (const std::string& text : real.BoxTexts()) {
            Count("failed starts", text.starts_with("Setup failed to create process\n"));
            Count("failed copies", text.starts_with("Cannot copy the installer "));
        }
        const std::vector<std::string> expected = Told(dry, oneStream);
        const std::vector<std::string> said = Said(real);
        const std::string errors = WithoutUuid(WithoutCr(real.errors));
        EXPECT_EQ(oneStream ? "" : Stream(dry, "errors"), errors);
        // The real dialog looks at the folders that it opens on, each with a message of its own.
        if (!real.dialogs.empty())
            EXPECT_TRUE(AreAmong(expected, said)) << testing::PrintToString(said);
        else
            EXPECT_EQ(expected, said);
    }

    // All that was written anywhere, the temporary folder wherever it is: names and contents.
    static void CompareCopy(const std::vector<std::string>& written, const Json& copy,
                            const Json& dry, const stdfs::path& work) {
        std::map<std::string, std::string> real;  // by names without the temporary folder's own
        for (const std::string& name : written)
            if (stdfs::path(FromUtf8(name)).parent_path() != FromUtf8(SnapshotName(ToUtf8(work))))
                real[SnapshotName(WithoutUuid(name))] = name;
        std::vector<std::string> expected;
        for (const auto& [name, source] : copy["files"].items()) {
            expected.push_back(SnapshotName(name));
            const auto file = real.find(expected.back());
            if (file == real.end()) continue;
            const std::string from = FullPath(source, work);
            EXPECT_TRUE(ReadFile(FromUtf8(from)) == ReadFile(FromUtf8(file->second))) << name;
        }
        std::vector<std::string> names;
        bool script = false;
        for (const auto& [name, file] : real)
            if (name.ends_with("}\\remove.bat"))
                script = true;
            else
                names.push_back(name);
        EXPECT_EQ(copy["script"], script);
        EXPECT_THAT(names, testing::UnorderedElementsAreArray(expected));
        EXPECT_EQ(dry["temporaryCopy"]["made"], script);
        EXPECT_EQ(dry["temporaryCopy"]["files"], copy["files"].size());
        Count("copies", script);
    }

    // What the launcher itself says: where the installer was found, and by which lookup.
    static void CompareInstallersPlace(const LauncherRun& real, const Json& dry) {
        const FoundInstaller found = FoundIn(real);
        Count("by -installerPath", found.by == "-installerPath");
        Count("by ZEP_TALVOR_Installer", found.by == "ZEP_TALVOR_Installer");
        if (dry["installer"].is_null()) {
            EXPECT_FALSE(real.report.has_value());
            return;
        }
        EXPECT_EQ(dry["installer"]["foundAt"], found.at);
        EXPECT_EQ(dry["installer"]["foundBy"], found.by);
    }

    static void CompareVolumes(const LauncherRun& real, const Json& dry) {
        const FoundVolumes found = VolumesIn(real);
        EXPECT_TRUE(!found.isSplit || !dry["volumes"].is_null());
        if (dry["volumes"].is_null()) return;
        const std::string layout = dry["volumes"]["layout"];
        EXPECT_EQ(layout == "one-folder", found.areInOneFolder);
        if (layout == "one-folder" || layout == "siblings" || layout == "outer")
            Count("whole sets");
        if (layout != "siblings" && layout != "outer") return;
        EXPECT_EQ(dry["volumes"]["folders"].get<std::vector<std::string>>(), found.folders);
        EXPECT_EQ(layout == "outer", found.areInOuterVolumes);
    }

    void CompareInstaller(const InstallerReport& seen, const Json& dry, const Case& made,
                          const stdfs::path& folder) {
        EXPECT_EQ(dry["commandLine"], WithoutUuid(seen.commandLine));
        EXPECT_EQ(dry["arguments"].get<std::vector<std::string>>(), WithoutUuid(seen.Arguments()));
        EXPECT_EQ(seen.folder, ToUtf8(folder));
        std::string module = WithoutUuid(seen.module);
        if (IsWine() && module.starts_with("UNC\\")) module.replace(0, 3, "\\");
        if (!made.variables.contains("DEBUGCMD_INSTALLK7")) {
            EXPECT_EQ(SnapshotName(FullPath(dry["installer"]["path"], folder)),
                      SnapshotName(module));
        }
        std::map<std::wstring, std::string> real = Variables(seen.environment);
        if (made.pretendsNoAdministrator) real.erase(L"zepprocessnotadmin");
        EXPECT_EQ(Expected(Variables(EnvironmentBlock(variables_)), dry), real);
    }

    std::map<std::string, std::string> variables_;

    static inline std::size_t compared = 0;
    static inline std::vector<Tally> tallies = {{"started", 5},
                                                {"refused", 5},
                                                {"copies", 10},
                                                {"failed copies", 10},
                                                {"failed starts", 10},
                                                {"dialogs", 10},
                                                {"picked folders", 30},
                                                {"whole sets", 10},
                                                {"watched runs", 10},
                                                {"pretended machines", 10},
                                                {"by -installerPath", 20},
                                                {"by ZEP_TALVOR_Installer", 20}};
};

TEST_P(Agreement, OfGeneratedRuns) {
    const unsigned cases = CasesOfATest();
    for (unsigned i = 0; i < cases && !HasFailure(); ++i)
        Compare(FirstSeed() + GetParam() * cases + i);
}

// Three suites, which can run side by side.
INSTANTIATE_TEST_SUITE_P(First, Agreement, testing::Range(0u, kTests));
INSTANTIATE_TEST_SUITE_P(Second, Agreement, testing::Range(kTests, 2 * kTests));
INSTANTIATE_TEST_SUITE_P(Third, Agreement, testing::Range(2 * kTests, 3 * kTests));

}  // namespace
}  // namespace launcher::test
