// The log of a run.

#include <sstream>

#include "tests/mediatool/run/support/run_test.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Log : public RunTest {
  protected:
    std::string Text() const { return ReadFile(scratch.Dir() / "log.txt"); }
    std::size_t Headings() const {
        std::size_t count = 0;
        for (std::size_t at = 0; (at = Text().find("==== ", at)) != std::string::npos; ++at)
            ++count;
        return count;
    }
    // That of the process in the first heading.
    static std::string NumberIn(const std::string& log) {
        const std::size_t start = log.find("  process ") + 10;
        return log.substr(start, log.find(' ', start) - start);
    }
    // The lines of that process, its number taken away, as on the screen.
    std::string LinesOf(const std::string& number) const {
        std::istringstream input(Text());
        std::string lines;
        for (std::string line; std::getline(input, line);)
            if (line.starts_with(number + "  ")) lines += line.substr(number.size() + 2) + "\n";
        std::erase(lines, '\r');
        return lines;
    }
    Words Option() const { return {"--log", scratch.Text("log.txt")}; }
};

TEST_F(Log, HoldsWhatTheScreenShows) {
    variables["ZEPProcessNotAdmin"] = "1";
    const MediatoolRun run = Told(UsualMedia(), {"-wait"}, Option());
    const std::string log = Text();
    EXPECT_THAT(log, StartsWith("==== 2"));
    EXPECT_THAT(log, HasSubstr("\\setup.exe\" \"-wait\"\r\n"));
    EXPECT_EQ(std::ranges::count(log, '\r'), std::ranges::count(log, '\n'));
    EXPECT_EQ(LinesOf(NumberIn(log)), run.output);
}

// Each line names its process, as the heading does: two runs at a time can be told apart.
TEST_F(Log, HasAHeadingWithProcessAndTime) {
    Told(UsualMedia(), {"-wait"}, Option());
    EXPECT_THAT(Text(),
                testing::ContainsRegex("^==== \\d\\d\\d\\d-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d "
                                       ".\\d\\d:\\d\\d  process \\d+  "));
    const std::string first = NumberIn(Text());
    Told(UsualMedia(), {"-wait"}, Option());
    const std::string second = NumberIn(Text().substr(Text().rfind("==== ")));
    EXPECT_NE(first, second);
    EXPECT_THAT(LinesOf(first), HasSubstr("\nExit code\n  0: "));
    EXPECT_THAT(LinesOf(second), HasSubstr("\nExit code\n  0: "));
}

TEST_F(Log, IsWrittenWithJsonToo) {
    Watched(ActingMedia("print Größe"), {"-wait"}, Option());
    EXPECT_THAT(Text(), HasSubstr("  installer  Größe\r\n"));
    EXPECT_THAT(Text(), HasSubstr("  Exit code\r\n"));
}

TEST_F(Log, IsAddedTo) {
    WriteFile(scratch.Dir() / "log.txt", "of others\r\n");
    Told(UsualMedia(), {"-wait"}, Option());
    Told(UsualMedia(), {"-wait"}, Option());
    EXPECT_THAT(Text(), StartsWith("of others\r\n==== 2"));
    EXPECT_EQ(Headings(), 2u);
}

// As with ">NUL": in a script that has a variable for it, for instance.
TEST_F(Log, IsNoneWithTheNameOfTheDeviceThatKeepsNothing) {
    for (const std::string name : {"NUL", "nul:"}) {
        const MediatoolRun run = Told(UsualMedia(), {"-wait"}, {"--log", name});
        EXPECT_EQ(run.exitCode, 0u);
        EXPECT_EQ(run.errors, "");
        EXPECT_THAT(run.output, HasSubstr("\nExit code\n  0: "));
    }
}

TEST_F(Log, HoldsWhyNothingWasStarted) {
    const Media media = EmptyMedia();
    WriteFile(media.Root() / "setup.exe", "text");
    Told(media, {"-wait"}, Option());
    EXPECT_THAT(Text(), HasSubstr("  mediatool  Windows cannot start \""));
}

TEST_F(Log, HoldsThatTheMediumCannotBeReached) {
    RunMediatool({"run", "no such folder", "--log", scratch.Text("log.txt")}, scratch.Dir(), {});
    EXPECT_THAT(Text(), HasSubstr("  mediatool  There is no folder \"no such folder\".\r\n"));
}

TEST_F(Log, HoldsWhatWasWrittenBeforeMediatoolEnded) {
    const NamedEvent event;
    const Media media = ActingMedia("print early|wait " + event.Name());
    const MediatoolProcess process = Started(media, {"-wait"}, Option());
    for (int i = 0; i < 500 && process.Output().find("early") == std::string::npos; ++i)
        Sleep(20);
    EXPECT_THAT(Text(), HasSubstr("  installer  early\r\n"));
    process.Kill();
}

TEST_F(Log, OfTwoRunsAtATimeHoldsBoth) {
    if (IsWine()) GTEST_SKIP() << "needs Windows: Wine looks for a file's end before it adds to it";
    const Media media = ActingMedia("lines 1000|exit 21");
    const MediatoolProcess first = Started(media, {"-wait"}, Option());
    const MediatoolProcess second = Started(media, {"-wait"}, Option());
    EXPECT_EQ(first.Finish().exitCode, 21u);
    EXPECT_EQ(second.Finish().exitCode, 21u);
    EXPECT_EQ(Headings(), 2u);
    std::size_t lines = 0;
    const std::string text = Text();
    for (std::size_t at = 0; (at = text.find("  installer  line ", at)) != std::string::npos; ++at)
        ++lines;
    EXPECT_EQ(lines, 2000u);
}

}  // namespace
}  // namespace launcher::test
