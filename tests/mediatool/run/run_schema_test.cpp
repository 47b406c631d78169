// The JSON of mediatool run, against its schema.

#include "tests/mediatool/command.h"
#include "tests/mediatool/run/support/run_test.h"

namespace launcher::test {
namespace {

class RunSchema : public RunTest {};

TEST_F(RunSchema, FitsARunWithLinesAndAnInstaller) {
    const WatchedOutcome outcome = Watched(ActingMedia("print hello|complain bad"), {"-wait"});
    EXPECT_EQ(SchemaComplaints(outcome.report), "");
    EXPECT_GE(outcome.report["lines"].size(), 4u);
}

TEST_F(RunSchema, FitsARunWithBoxes) {
    const WatchedOutcome outcome = Watched(EmptyMedia().AddMarker(UsualOs()), {"-wait"});
    EXPECT_EQ(SchemaComplaints(outcome.report), "");
    EXPECT_EQ(outcome.report["boxes"].size(), 2u);
}

TEST_F(RunSchema, FitsARunThatIsEnded) {
    const NamedEvent event;
    const Media media = ActingMedia("wait " + event.Name());
    EXPECT_EQ(SchemaComplaints(Watched(media, {"-wait"}, {"--time-limit", "4s"}).report), "");
}

TEST_F(RunSchema, FitsTheLargestCode) {
    variables["STANDIN_EXIT"] = "0xFFFFFFFF";
    EXPECT_EQ(SchemaComplaints(Watched(StandInAsLauncher(), {"-wait"}).report), "");
}

TEST_F(RunSchema, FitsOneThatWasNotStarted) {
    const Media media = EmptyMedia();
    std::filesystem::remove(media.Root() / "setup.exe");
    EXPECT_EQ(SchemaComplaints(Watched(media, {"--wait"}).report), "");
}

TEST_F(RunSchema, RefusesOtherMembers) {
    Json report = Watched(UsualMedia(), {"-wait"}).report;
    report["more"] = 1;
    EXPECT_NE(SchemaComplaints(report), "");
}

}  // namespace
}  // namespace launcher::test
