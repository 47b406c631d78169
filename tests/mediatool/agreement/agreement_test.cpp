// The dry run and the watched run against the launcher itself: all get the same media, command line
// and environment, made from a number, and have to come to the same end.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>
// windows.h first: the shell headers need it.
#include <shlobj.h>

#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "tests/e2e/support/environment_block.h"
#include "tests/e2e/support/launcher_run.h"
#include "tests/e2e/support/media.h"
#include "tests/mediatool/agreement/case.h"
#include "tests/mediatool/support/mediatool_run.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;
using Json = nlohmann::json;

// Of each of the 15 tests; CI asks for 20, which take some minutes.
unsigned CasesOfATest() {
    const std::string cases = GetEnvVar("AGREEMENT_CASES");
    return cases.empty() ? 2u : static_cast<unsigned>(std::stoul(cases));
}

constexpr unsigned kTests = 5;
constexpr unsigned kFirstSeed = 1000;

// The random name of the temporary folder stands as it does in the dry run.
std::string WithoutUuid(const std::string& text) {
    static const std::regex uuid(
        "[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
    return std::regex_replace(text, uuid, "{UUID}");
}

std::vector<std::string> WithoutUuid(std::vector<std::string> texts) {
    for (std::string& text : texts)
        text = WithoutUuid(text);
    return texts;
}

std::string ConsoleLine(const Json& message) {
    static const std::map<std::string, std::string> prefixes = {
        {"info", " INFO: "}, {"warning", " WARN: "}, {"error", "ERROR: "}, {"plain", "       "}};
    std::string line = prefixes.at(message["severity"]) + message["text"].get<std::string>();
    for (std::size_t at = line.find('\n'); at != std::string::npos; at = line.find('\n', at + 1))
        line.insert(at + 1, "       ");
    return line + "\n";
}

// What the messages of a dry run come to on one of the streams.
std::string Stream(const Json& dry, const std::string& name) {
    std::string text;
    for (const Json& message : dry["messages"])
        if (message["stream"] == name) text += ConsoleLine(message);
    return text;
}

std::vector<std::string> Boxes(const Json& dry, bool dialogs) {
    std::vector<std::string> texts;
    for (const Json& message : dry["messages"])
        if (message["box"] && message["dialog"] == dialogs) texts.push_back(message["text"]);
    return texts;
}

std::string WithoutCr(std::string text) {
    std::erase(text, '\r');
    return text;
}

std::vector<std::string> Lines(const std::string& text) {
    std::istringstream input(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);)
        lines.push_back(line);
    return lines;
}

// All of the first, in their order, with others between them.
bool AreAmong(const std::vector<std::string>& some, const std::vector<std::string>& all) {
    auto next = some.begin();
    for (const std::string& text : all)
        if (next != some.end() && *next == text) ++next;
    return next == some.end();
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

struct Tree {
    std::size_t files = 0;
    std::uint64_t bytes = 0;
};
Tree TreeBelow(const stdfs::path& folder) {
    Tree tree;
    for (const auto& entry : stdfs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && entry.path().filename() != "remove.bat") {
            ++tree.files;
            tree.bytes += entry.file_size();
        }
    return tree;
}

class Agreement : public testing::TestWithParam<unsigned> {
  protected:
    void SetUp() override {
        if (!IsUserAnAdmin()) GTEST_SKIP() << "needs a console that runs as administrator";
    }

    static void TearDownTestSuite() {
        std::printf(
            "%zu runs: %zu installers started, %zu could not be; %zu copies, %zu failed; "
            "%zu boxes, %zu dialogs\n",
            compared, started, failedStarts, copies, failedCopies, boxes, dialogs);
        if (compared >= 10) {
            EXPECT_GT(started, 0u);
        }
    }

    void Compare(unsigned seed) {
        ++compared;
        const TemporaryFolder files;
        const TemporaryFolder work;
        const Case made = MakeCase(seed, files.Dir());
        std::string trace =
            "seed " + std::to_string(seed) + ": setup.exe " + QuoteArguments(made.arguments);
        for (const std::string& feature : made.features)
            trace += "; " + feature;
        for (const auto& [name, value] : made.variables)
            trace += "; " + name + "=" + value;
        SCOPED_TRACE(trace);

        const LauncherRun real =
            RunToEnd({made.launcher, made.arguments, made.variables, work.Dir()});
        std::map<std::string, std::string> variables = made.variables;
        variables.insert({{"TEMP", ToUtf8(real.temp)},
                          {"TMP", ToUtf8(real.temp)},
                          {"STANDIN_REPORT", ToUtf8(work.Dir() / "report")}});
        std::vector<std::string> line = {"dry-run", ToUtf8(made.launcher.parent_path()), "--json",
                                         "--"};
        line.insert(line.end(), made.arguments.begin(), made.arguments.end());
        const Tree copied = TreeBelow(real.temp);
        const Tree elsewhere = stdfs::exists(files.Dir() / "other temp")
                                   ? TreeBelow(files.Dir() / "other temp")
                                   : Tree{};
        const MediatoolRun dryRun = RunMediatool(line, work.Dir(), variables);
        ASSERT_EQ(dryRun.exitCode, 0u) << dryRun.errors;
        const Json dry = Json::parse(dryRun.output);

        CompareEnd(real, dry, made);
        CompareMessages(real, dry);
        if (real.report) CompareInstaller(*real.report, dry, variables);
        if (dry["temporaryCopy"]["made"]) {
            EXPECT_EQ(dry["temporaryCopy"]["files"], copied.files + elsewhere.files);
            EXPECT_EQ(dry["temporaryCopy"]["bytes"], copied.bytes + elsewhere.bytes);
            ++copies;
        }
        // Nothing is left of the dry run.
        EXPECT_EQ(TreeBelow(real.temp).files, copied.files);

        line[0] = "run";
        CompareWatched(Watched(line, work.Dir(), variables), real, dry);
    }

    static Json Watched(const std::vector<std::string>& line, const stdfs::path& folder,
                        const std::map<std::string, std::string>& variables) {
        for (int repeats = 0;; ++repeats) {
            const MediatoolRun run = RunMediatool(line, folder, variables);
            const Json watched = Json::parse(run.output);
            EXPECT_EQ(run.exitCode, watched["exitCode"]);
            if (repeats == 3 || !StumbledOverWine(WatchedBoxes(watched, false))) return watched;
        }
    }

    static std::vector<std::string> WatchedBoxes(const Json& watched, bool dialogs) {
        std::vector<std::string> texts;
        for (const Json& box : watched["boxes"])
            if (box["dialog"] == dialogs) texts.push_back(box["text"]);
        return WithoutUuid(texts);
    }

    // Those of one of the streams, as they were in it.
    static std::string WatchedLines(const Json& watched, const std::string& name) {
        std::string text;
        for (const Json& line : watched["lines"])
            if (line["stream"] == name) text += line["text"].get<std::string>() + "\n";
        return WithoutUuid(text);
    }

    static void CompareWatched(const Json& watched, const LauncherRun& real, const Json& dry) {
        EXPECT_EQ(watched["endedBy"], "launcher");
        EXPECT_EQ(watched["exitCode"], real.exitCode);
        EXPECT_EQ(WatchedBoxes(watched, true).size(), Boxes(dry, true).size());
        EXPECT_EQ(WatchedBoxes(watched, false), WithoutUuid(real.BoxTexts()));
        EXPECT_EQ(WatchedLines(watched, "output"), WithoutUuid(WithoutCr(real.output)));
        EXPECT_EQ(WatchedLines(watched, "errors"), WithoutUuid(WithoutCr(real.errors)));
    }

    static void CompareEnd(const LauncherRun& real, const Json& dry, const Case& made) {
        EXPECT_EQ(dry["started"], real.report.has_value());
        const bool installers = dry["exitCodeIsInstallers"];
        EXPECT_EQ(std::to_string(real.exitCode),
                  installers ? made.variables.at("STANDIN_EXIT") : dry["exitCode"].dump());
        if (real.report) ++started;
    }

    static void CompareMessages(const LauncherRun& real, const Json& dry) {
        EXPECT_EQ(Boxes(dry, true).size(), real.dialogs.size());
        boxes += real.boxes.size();
        dialogs += real.dialogs.size();
        const std::vector<std::string> realBoxes = WithoutUuid(real.BoxTexts());
        for (const std::string& text : realBoxes) {
            failedStarts += text.starts_with("Setup failed to create process\n");
            failedCopies += text.starts_with("Cannot copy the installer ");
        }
        const std::string output = WithoutUuid(WithoutCr(real.output));
        const std::string errors = WithoutUuid(WithoutCr(real.errors));
        if (real.dialogs.empty()) {
            EXPECT_EQ(Boxes(dry, false), realBoxes);
            EXPECT_EQ(Stream(dry, "output"), output);
            EXPECT_EQ(Stream(dry, "errors"), errors);
            return;
        }
        // The real dialog looks at the folders that it opens on, each with a message of its own.
        EXPECT_TRUE(AreAmong(Boxes(dry, false), realBoxes));
        EXPECT_TRUE(AreAmong(Lines(Stream(dry, "output")), Lines(output)));
        EXPECT_EQ(Stream(dry, "errors"), errors);
    }

    static void CompareInstaller(const InstallerReport& seen, const Json& dry,
                                 const std::map<std::string, std::string>& variables) {
        EXPECT_EQ(dry["commandLine"], WithoutUuid(seen.commandLine));
        EXPECT_EQ(dry["arguments"].get<std::vector<std::string>>(), WithoutUuid(seen.Arguments()));
        EXPECT_EQ(Expected(Variables(EnvironmentBlock(variables)), dry),
                  Variables(seen.environment));
    }

    // What the cases came to, all of them together.
    static inline std::size_t compared = 0;
    static inline std::size_t started = 0;
    static inline std::size_t boxes = 0;
    static inline std::size_t dialogs = 0;
    static inline std::size_t copies = 0;
    static inline std::size_t failedStarts = 0;
    static inline std::size_t failedCopies = 0;
};

TEST_P(Agreement, OfGeneratedRuns) {
    const unsigned cases = CasesOfATest();
    for (unsigned i = 0; i < cases && !HasFailure(); ++i)
        Compare(kFirstSeed + GetParam() * cases + i);
}

// What the options of the pretended machine say, against a launcher on such a machine.
class OtherMachines : public testing::Test {
  protected:
    void SetUp() override {
        if (!IsUserAnAdmin()) GTEST_SKIP() << "needs a console that runs as administrator";
        media_.AddInstaller("win_b64");
    }

    std::vector<std::string> DryBoxes(const std::vector<std::string>& options) {
        std::vector<std::string> line = {"dry-run", media_.Text(), "--json"};
        line.insert(line.end(), options.begin(), options.end());
        const Json dry = Json::parse(RunMediatool(line, scratch_.Dir()).output);
        dryStarted_ = dry["started"];
        return Boxes(dry, false);
    }

    TemporaryFolder scratch_;
    Media media_{scratch_.Dir() / "media", "posing.exe"};
    bool dryStarted_ = false;
};

TEST_F(OtherMachines, Windows7) {
    if (!IsWine()) GTEST_SKIP() << "needs Wine, which can pose as another Windows";
    WineSettings settings("posing.exe");
    settings.PoseAs("win7");
    const LauncherRun real = RunToEnd({media_.Launcher(), {"-wait"}, {}, scratch_.Dir()});
    EXPECT_EQ(DryBoxes({"--windows", "7", "--", "-wait"}), real.BoxTexts());
    EXPECT_EQ(real.boxes.size(), 1u);
    EXPECT_EQ(dryStarted_, real.report.has_value());
}

TEST_F(OtherMachines, NoAdministrator) {
    const LauncherRun real =
        RunToEnd({media_.Launcher(), {}, {{"ZEPProcessNotAdmin", "1"}}, scratch_.Dir()});
    EXPECT_EQ(DryBoxes({"--admin", "no"}), real.BoxTexts());
    EXPECT_EQ(real.boxes.size(), 1u);
    EXPECT_FALSE(dryStarted_);
}

TEST_F(OtherMachines, OldWebLibraryAnd32Bits) {
    EXPECT_THAT(DryBoxes({"--old-web-library"}),
                testing::ElementsAre(testing::StartsWith("Internet Explorer 10 or later")));
    EXPECT_THAT(DryBoxes({"--bits", "32"}),
                testing::ElementsAre(
                    "This media cannot be installed on a 32-bit Windows operating system."));
    EXPECT_FALSE(dryStarted_);
}

// Three suites, which can run side by side.
INSTANTIATE_TEST_SUITE_P(First, Agreement, testing::Range(0u, kTests));
INSTANTIATE_TEST_SUITE_P(Second, Agreement, testing::Range(kTests, 2 * kTests));
INSTANTIATE_TEST_SUITE_P(Third, Agreement, testing::Range(2 * kTests, 3 * kTests));

}  // namespace
}  // namespace launcher::test
