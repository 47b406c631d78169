#include "tests/mediatool/agreement/comparison.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <utility>

#include "fs/encoding.h"
#include "tests/dialog/support/dialog_driver.h"
#include "tests/e2e/support/environment_block.h"
#include "tests/mediatool/agreement/new_files.h"
#include "tests/mediatool/agreement/watched.h"
#include "tests/mediatool/support/mediatool_run.h"
#include "tests/support/repeats.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

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

}  // namespace

Comparison::Comparison(const Case& made, const stdfs::path& files, const stdfs::path& work,
                       bool oneStream)
    : made_(made), files_(files), work_(work), oneStream_(oneStream), variables_(made.variables) {
    variables_.insert({{"TEMP", ToUtf8(work / "temp")},
                       {"TMP", ToUtf8(work / "temp")},
                       {"STANDIN_REPORT", ToUtf8(work / "report")}});
    stdfs::create_directory(work / "temp");
}

std::set<std::string> Comparison::Run() {
    const std::vector<stdfs::path> folders = {files_, work_};
    const Snapshot before = TakeSnapshot(folders);
    dry_ = RunDry();
    EXPECT_THAT(NewFiles(before, TakeSnapshot(folders)), testing::IsEmpty()) << "after a dry run";
    const LauncherRun real = RunReal();
    const Snapshot after = TakeSnapshot(folders);
    CompareEnd(real);
    CompareMessages(real);
    CompareCopy(NewFiles(before, after));
    CompareInstallersPlace(real);
    CompareVolumes(real);
    if (real.report) CompareInstaller(*real.report);
    if (!oneStream_ && CanBeWatched(made_)) {
        Note("watched runs");
        CompareWatched(made_, variables_, work_, real);
    }
    return seen_;
}

void Comparison::Note(const std::string& what, bool happened) {
    if (happened) seen_.insert(what);
}

Json Comparison::RunDry() const {
    std::vector<std::string> line = {"dry-run", ToUtf8(made_.launcher.parent_path()), "--json"};
    if (made_.picked) line.insert(line.end(), {"--pick", ToUtf8(*made_.picked)});
    line.insert(line.end(), made_.machine.begin(), made_.machine.end());
    line.push_back("--");
    line.insert(line.end(), made_.arguments.begin(), made_.arguments.end());
    const MediatoolRun run = RunMediatool(line, work_, variables_);
    EXPECT_EQ(run.exitCode, 0u) << run.errors;
    return Json::parse(run.output);
}

// The folder is picked in the dialog when the dry run says that there is one.
LauncherRun Comparison::RunReal() const {
    LauncherStart start{made_.launcher, made_.arguments, made_.variables, work_};
    start.oneStream = oneStream_;
    if (made_.pretendsNoAdministrator) start.variables["ZEPProcessNotAdmin"] = "1";
    if (!made_.picked || Dialogs(dry_) == 0) return RunToEnd(start);
    for (Repeats repeats;;) {
        LauncherProcess process(start);
        DialogDriver dialog;
        dialog.Confirm(ToUtf8(*made_.picked));
        LauncherRun run = process.Finish();
        run.dialogs = {"confirmed"};
        if (!repeats.AreWorthIt(StumbledOverWine(run.BoxTexts()))) return run;
    }
}

void Comparison::CompareEnd(const LauncherRun& real) {
    EXPECT_EQ(dry_["started"], real.report.has_value());
    const bool installers = dry_["exitCodeIsInstallers"];
    EXPECT_EQ(std::to_string(real.exitCode),
              installers ? made_.variables.at("STANDIN_EXIT") : dry_["exitCode"].dump());
    Note(real.report ? "started" : "refused");
    Note("pretended machines", !made_.machine.empty());
    Note("picked folders", made_.picked && !real.dialogs.empty());
}

void Comparison::CompareMessages(const LauncherRun& real) {
    EXPECT_EQ(Dialogs(dry_), real.dialogs.size());
    Note("dialogs", !real.dialogs.empty());
    for (const std::string& text : real.BoxTexts()) {
        Note("failed starts", text.starts_with("Setup failed to create process\n"));
        Note("failed copies", text.starts_with("Cannot copy the installer "));
    }
    const std::vector<std::string> expected = Told(dry_, oneStream_);
    const std::vector<std::string> said = Said(real);
    const std::string errors = WithoutUuid(WithoutCr(real.errors));
    EXPECT_EQ(oneStream_ ? "" : Stream(dry_, "errors"), errors);
    // The real dialog looks at the folders that it opens on, each with a message of its own.
    if (!real.dialogs.empty())
        EXPECT_TRUE(AreAmong(expected, said)) << testing::PrintToString(said);
    else
        EXPECT_EQ(expected, said);
}

// All that was written anywhere, the temporary folder wherever it is: names and contents.
void Comparison::CompareCopy(const std::vector<std::string>& written) {
    const Json& copy = dry_["temporaryCopy"];
    std::map<std::string, std::string> real;  // by names without the temporary folder's own
    for (const std::string& name : written)
        if (stdfs::path(FromUtf8(name)).parent_path() != FromUtf8(SnapshotName(ToUtf8(work_))))
            real[SnapshotName(WithoutUuid(name))] = name;
    std::vector<std::string> expected;
    for (const Json& told : copy["contents"]) {
        expected.push_back(SnapshotName(FullPath(told["path"], work_)));
        const auto file = real.find(expected.back());
        if (file == real.end()) continue;
        const std::string content = ReadFile(FromUtf8(FullPath(told["source"], work_)));
        EXPECT_TRUE(content == ReadFile(FromUtf8(file->second))) << told;
        EXPECT_EQ(told["bytes"], content.size()) << told;
    }
    std::vector<std::string> names;
    bool script = false;
    for (const auto& [name, file] : real)
        if (name.ends_with("}\\remove.bat"))
            script = true;
        else
            names.push_back(name);
    EXPECT_THAT(names, testing::UnorderedElementsAreArray(expected));
    EXPECT_EQ(copy["removeScript"], script);
    EXPECT_EQ(copy["made"], script);
    EXPECT_EQ(copy["files"], copy["contents"].size());
    Note("copies", script);
}

// What the launcher itself says: where the installer was found, and by which lookup.
void Comparison::CompareInstallersPlace(const LauncherRun& real) {
    const FoundInstaller found = FoundIn(real);
    Note("by " + found.by);
    if (dry_["installer"].is_null()) {
        EXPECT_FALSE(real.report.has_value());
        return;
    }
    EXPECT_EQ(dry_["installer"]["foundAt"], found.at);
    EXPECT_EQ(dry_["installer"]["foundBy"], found.by);
}

void Comparison::CompareVolumes(const LauncherRun& real) {
    const FoundVolumes found = VolumesIn(real);
    EXPECT_TRUE(!found.isSplit || !dry_["volumes"].is_null());
    if (dry_["volumes"].is_null()) return;
    const std::string layout = dry_["volumes"]["layout"];
    EXPECT_EQ(layout == "one-folder", found.areInOneFolder);
    Note("whole sets", layout == "one-folder" || layout == "siblings" || layout == "outer");
    if (layout != "siblings" && layout != "outer") return;
    EXPECT_EQ(dry_["volumes"]["folders"].get<std::vector<std::string>>(), found.folders);
    EXPECT_EQ(layout == "outer", found.areInOuterVolumes);
}

void Comparison::CompareInstaller(const InstallerReport& seen) const {
    EXPECT_EQ(dry_["commandLine"], WithoutUuid(seen.commandLine));
    EXPECT_EQ(dry_["arguments"].get<std::vector<std::string>>(), WithoutUuid(seen.Arguments()));
    EXPECT_EQ(dry_["workingFolder"], seen.folder);
    std::string module = WithoutUuid(seen.module);
    if (IsWine() && module.starts_with("UNC\\")) module.replace(0, 3, "\\");
    if (!made_.variables.contains("DEBUGCMD_INSTALLK7")) {
        EXPECT_EQ(SnapshotName(FullPath(dry_["installer"]["path"], work_)), SnapshotName(module));
    }
    std::map<std::wstring, std::string> real = Variables(seen.environment);
    if (made_.pretendsNoAdministrator) real.erase(L"zepprocessnotadmin");
    EXPECT_EQ(Expected(Variables(EnvironmentBlock(variables_)), dry_), real);
}

}  // namespace launcher::test
