// The lines of a run: the launcher's, as they come, and the installer's, apart from them.

#include "tests/mediatool/run/support/run_test.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

class Streams : public RunTest {};

TEST_F(Streams, OfTheLauncherAreReportedLineByLine) {
    const Media media = UsualMedia().MakeSplit(2, "SET");
    const WatchedOutcome outcome = Watched(media, {"-wait"});
    EXPECT_THAT(outcome.Lines("output"), Contains(" INFO: " + OsTrace()));
    EXPECT_THAT(outcome.Lines("errors"),
                Contains(" WARN: This media is composed of multiple volumes."));
    EXPECT_THAT(outcome.Lines("installer-output"), IsEmpty());
    EXPECT_THAT(outcome.Lines("installer-errors"), IsEmpty());
}

TEST_F(Streams, OfTheInstallerAreKeptApart) {
    const Media media = ActingMedia("print hello|complain bad|print  INFO: like the launcher's");
    const WatchedOutcome outcome = Watched(media, {"-wait"});
    EXPECT_THAT(outcome.Lines("installer-output"),
                ElementsAre("hello", " INFO: like the launcher's"));
    EXPECT_THAT(outcome.Lines("installer-errors"), ElementsAre("bad"));
    EXPECT_THAT(outcome.Lines("output"),
                ElementsAre(" INFO: " + OsTrace(), StartsWith(" INFO: Installer found")));
    EXPECT_THAT(outcome.Lines("errors"), IsEmpty());
    EXPECT_EQ(outcome.report["bytesLeftOut"], 0);
    EXPECT_EQ(outcome.run.errors, "");
}

TEST_F(Streams, OfAnInstallerThatWasSeenAreItsOwnWhateverTheySay) {
    const NamedEvent event;
    const Media media = ActingMedia("wait " + event.Name() + "|print  INFO: late|exit 5");
    const MediatoolProcess process = Started(media, {"-wait"}, {"--json"});
    for (int i = 0; i < 500 && RunningBelow(scratch.Dir()).size() < 2; ++i)
        Sleep(20);
    Sleep(500);
    event.Set();
    const WatchedOutcome outcome{process.Finish(), Json::parse(process.Output())};
    EXPECT_THAT(outcome.Lines("installer-output"), ElementsAre(" INFO: late"));
}

TEST_F(Streams, GiveTheLastLineOfAnInstallerThatHasEnded) {
    const Media media = ActingMedia("print one|piece two|mutter three");
    const WatchedOutcome outcome = Watched(media, {"-wait"});
    EXPECT_THAT(outcome.Lines("installer-output"), ElementsAre("one", "two"));
    EXPECT_THAT(outcome.Lines("installer-errors"), ElementsAre("three"));
}

TEST_F(Streams, GiveNoHalfLineOfAnInstallerThatGoesOn) {
    const NamedEvent event;
    const Media media = ActingMedia("print one|piece two|wait " + event.Name());
    const WatchedOutcome outcome = Watched(media, {"-wait"}, {"--time-limit", "4s"});
    EXPECT_THAT(outcome.Lines("installer-output"), ElementsAre("one"));
}

TEST_F(Streams, TakeTenMegabytes) {
    const Media media = ActingMedia("lines 100000|note " + scratch.Text("note"));
    const WatchedOutcome outcome = Watched(media, {"-wait"});
    EXPECT_EQ(outcome.run.exitCode, 0u);
    const std::vector<std::string> lines = outcome.Lines("installer-output");
    ASSERT_EQ(lines.size(), 100000u);
    for (std::size_t i = 0; i < lines.size(); ++i)
        ASSERT_THAT(lines[i], StartsWith("line " + std::to_string(i) + " ."));
    EXPECT_EQ(ReadFile(scratch.Dir() / "note"), "10000000");
}

// Long after the launcher and mediatool have ended.
TEST_F(Streams, NeverStopAnInstallerThatOutlivesEverybody) {
    const NamedEvent event;
    const Media media = ActingMedia("print early|wait " + event.Name() + "|lines 100000|note " +
                                    scratch.Text("note"));
    const WatchedOutcome outcome = Watched(media, {});
    EXPECT_EQ(outcome.run.exitCode, 0u);
    event.Set();
    EXPECT_TRUE(NoneRunsBelow(scratch.Dir()));
    EXPECT_EQ(ReadFile(scratch.Dir() / "note"), "10000007");
    EXPECT_TRUE(stdfs::is_empty(temp));
}

TEST_F(Streams, ReachTheCallerAsTheyCome) {
    const NamedEvent event;
    const Media media = ActingMedia("print early|wait " + event.Name());
    const MediatoolProcess process = Started(media, {"-wait"});
    for (int i = 0; i < 500 && process.Output().find("early") == std::string::npos; ++i)
        Sleep(20);
    EXPECT_THAT(process.Output(), HasSubstr("  installer  early\n"));
    EXPECT_FALSE(process.EndsWithin(0));
    event.Set();
    EXPECT_THAT(process.Finish().output, HasSubstr("\nExit code\n  0: The installer's own.\n"));
}

// A caller that waits for the end before it reads. An installer that is as quick as this one may
// have ended before it is seen, which the text says too.
TEST_F(Streams, NeedNobodyToReadThem) {
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    ASSERT_TRUE(CreatePipe(&readEnd, &writeEnd, &inheritable, 0));
    const Media media = ActingMedia("lines 5000|exit 21");
    {
        const MediatoolProcess process(LineOf(media, {"-wait"}, {"--log", scratch.Text("log.txt")}),
                                       scratch.Dir(), Variables(), writeEnd);
        EXPECT_EQ(process.Finish().exitCode, 21u);
    }
    CloseHandle(writeEnd);
    CloseHandle(readEnd);
    EXPECT_THAT(ReadFile(scratch.Dir() / "log.txt"),
                testing::ContainsRegex("\\d+  Exit code\r\n\\d+    21: The installer's own"));
}

TEST_F(Streams, AreToldWithTheTime) {
    const MediatoolRun run = Told(UsualMedia(), {"-wait"});
    EXPECT_THAT(run.output,
                testing::ContainsRegex("^\\d\\d:\\d\\d:\\d\\d  output      INFO: \\d\\d-bit OS"));
}

}  // namespace
}  // namespace launcher::test
