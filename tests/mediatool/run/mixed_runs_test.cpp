// Runs of all kinds, one after the other: none hangs, and none leaves a process or a file.

#include <cstdio>
#include <random>

#include "fs/environment.h"
#include "tests/mediatool/run/support/run_test.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

// MIXED_RUNS=200 takes some five minutes.
unsigned Runs() {
    const std::string runs = GetEnvVar("MIXED_RUNS");
    return runs.empty() ? 8u : static_cast<unsigned>(std::stoul(runs));
}

class MixedRuns : public RunTest {
  protected:
    unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }

    Media AnyMedia() {
        stdfs::remove_all(scratch.Dir() / "media");
        variables.clear();
        switch (Below(6)) {
            case 0:
                return EmptyMedia();
            case 1:
                return EmptyMedia().AddMarker(UsualOs());
            case 2:
                variables["ZEP_TraceMsgBox"] = "1";
                return UsualMedia();
            case 3:
                variables["STANDIN_EXIT"] = "0xC0000005";
                return UsualMedia().MakeSplit(3, "SET");
            case 4:
                return ActingMedia("lines 5000|exit 3010");
            default:
                return ActingMedia("child wait " + event_.Name() + "|complain waits|wait " +
                                   event_.Name());
        }
    }

    void RunOnce(unsigned number) {
        SCOPED_TRACE(number);
        const Media media = AnyMedia();
        Words arguments;
        if (Below(4) > 0) arguments = {"-wait"};
        if (Below(8) == 0) arguments.emplace_back("-env");
        const Words options = {"--time-limit", "5s", "--end-installer", "--json"};
        const bool interrupts = Below(4) == 0;
        const MediatoolRun run = interrupts ? Interrupted(media, arguments, options, Below(3000))
                                            : Started(media, arguments, options).Finish();
        ++ends_[run.exitCode];
        // Without -wait the installer goes on: it is let go.
        event_.Set();
        EXPECT_TRUE(NoneRunsBelow(scratch.Dir()));
        event_.Reset();
        for (const auto& entry : stdfs::directory_iterator(temp)) {
            const std::string name = ToUtf8(entry.path().filename());
            EXPECT_FALSE(name.starts_with("mediatool")) << name;
        }
        stdfs::remove_all(temp);
        stdfs::create_directories(temp);
    }

    std::mt19937 random_{2027};
    NamedEvent event_;
    std::map<DWORD, unsigned> ends_;
};

TEST_F(MixedRuns, EndAndLeaveNothing) {
    for (unsigned i = 0; i < Runs(); ++i)
        RunOnce(i);
    for (const auto& [code, count] : ends_)
        std::printf("exit code %lu: %u\n", code, count);
}

}  // namespace
}  // namespace launcher::test
