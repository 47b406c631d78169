#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <concepts>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/e2e/support/launcher_run.h"
#include "tests/e2e/support/media.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

// Whether this process has an administrator's full rights, which what it starts then has too.
bool IsElevated();

// A test that starts the real launcher in media folders of its own.
class LauncherTest : public testing::Test {
  protected:
    // The launcher starts an installer for administrators only.
    void SetUp() override;

    // Starts the media's launcher with these arguments and `variables`, and waits for the end of
    // all it started.
    LauncherRun Run(const Media& media, const std::vector<std::string>& arguments = {}) const {
        return RunToEnd(StartOf(media, arguments));
    }
    LauncherStart StartOf(const Media& media, const std::vector<std::string>& arguments) const {
        return {media.Launcher(), arguments, variables, scratch.Dir()};
    }

    // A new medium, with an installer for this Windows.
    Media UsualMedia() const { return EmptyMedia().AddInstaller(UsualOs()); }
    // One without any installer.
    Media EmptyMedia() const { return Media(scratch.Dir() / "media"); }
    // One that is copied before its installer starts: a part of it cannot be found.
    Media MediaToCopy() const { return UsualMedia().MakeSplit(2, "SET"); }

    TemporaryFolder scratch;
    std::map<std::string, std::string> variables;
};

// A row of a table. The name names its test.
struct Row {
    const char* name;
};
template <std::derived_from<Row> Derived>
void PrintTo(const Derived& row, std::ostream* stream) {
    *stream << row.name;
}
inline constexpr auto RowName = [](const auto& row) { return std::string(row.param.name); };

// The same, once for each row of a table.
template <class Param>
class LauncherTableTest : public LauncherTest, public testing::WithParamInterface<Param> {};

// A run that ended in one message box, without an installer.
MATCHER_P(IsRefusedWith, text, "") {
    return arg.exitCode == 1 && arg.BoxTexts() == std::vector<std::string>{text} && !arg.report;
}

// A run that started its installer without showing anything.
MATCHER_P(EndsQuietlyWith, exitCode, "") {
    return arg.exitCode == static_cast<DWORD>(exitCode) && arg.boxes.empty() &&
           arg.dialogs.empty() && arg.report.has_value();
}

// What the launcher traces of this Windows.
std::string OsTrace();

// Lines as they stand in a file that a standard stream was sent to.
std::string Lines(const std::vector<std::string>& lines);

// The name of a test from a text: its letters and digits.
std::string TestName(const std::string& text);

}  // namespace launcher::test
