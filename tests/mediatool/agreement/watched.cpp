#include "tests/mediatool/agreement/watched.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/mediatool/agreement/messages.h"
#include "tests/mediatool/support/mediatool_run.h"
#include "tests/support/repeats.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

std::vector<std::string> Boxes(const Json& watched, bool dialogs) {
    std::vector<std::string> texts;
    for (const Json& box : watched["boxes"])
        if (box["dialog"] == dialogs) texts.push_back(box["text"]);
    return WithoutUuid(texts);
}

// Those of one of the streams, as they were in it.
std::string Lines(const Json& watched, const std::string& stream) {
    std::string text;
    for (const Json& line : watched["lines"])
        if (line["stream"] == stream) text += line["text"].get<std::string>() + "\n";
    return WithoutUuid(text);
}

Json Watched(const Case& made, const std::map<std::string, std::string>& variables,
             const std::filesystem::path& folder) {
    std::vector<std::string> line = {"run", ToUtf8(made.launcher.parent_path()), "--json", "--"};
    line.insert(line.end(), made.arguments.begin(), made.arguments.end());
    for (Repeats repeats;;) {
        const MediatoolRun run = RunMediatool(line, folder, variables);
        const Json watched = Json::parse(run.output);
        EXPECT_EQ(run.exitCode, watched["exitCode"]);
        if (!repeats.AreWorthIt(StumbledOverWine(Boxes(watched, false)))) return watched;
    }
}

}  // namespace

bool CanBeWatched(const Case& made) {
    return !made.picked && made.machine.empty() && made.launcher.filename() == "setup.exe";
}

void CompareWatched(const Case& made, const std::map<std::string, std::string>& variables,
                    const std::filesystem::path& folder, const LauncherRun& real) {
    const Json watched = Watched(made, variables, folder);
    EXPECT_EQ(watched["endedBy"], "launcher");
    EXPECT_EQ(watched["exitCode"], real.exitCode);
    EXPECT_EQ(Boxes(watched, true).size(), real.dialogs.size());
    EXPECT_EQ(Boxes(watched, false), WithoutUuid(real.BoxTexts()));
    EXPECT_EQ(Lines(watched, "output"), WithoutUuid(WithoutCr(real.output)));
    EXPECT_EQ(Lines(watched, "errors"), WithoutUuid(WithoutCr(real.errors)));
}

}  // namespace launcher::test
