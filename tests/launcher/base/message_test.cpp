#include "launcher/base/message.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <io.h>

#include <cstdio>

#include "tests/launcher/base/message_boxes.h"
#include "tests/launcher/base/options_fields.h"

namespace launcher {
namespace {

using test::LauncherBox;
using testing::ElementsAre;
using testing::StrEq;

// What was written to the two console streams.
struct Console {
    std::string out;
    std::string err;

    bool operator==(const Console&) const = default;
};

void PrintTo(const Console& console, std::ostream* out) {
    *out << "out " << testing::PrintToString(console.out) << ", err "
         << testing::PrintToString(console.err);
}

template <class Action>
Console Capture(Action action) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    action();
    return {testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

Console CaptureReport(LaunchOptions& options, const std::string& text, Severity severity) {
    return Capture([&] { ReportMessage(options, text, severity, true); });
}

constexpr auto kFour = static_cast<Severity>(4);
constexpr auto kLargest = static_cast<Severity>(0xFFFFFFFF);

// The prefix of each severity, and whether its message is a problem after one that was none and
// after one that was.
struct SeverityCase {
    Severity severity;
    std::string prefix;
    bool isProblemAfterNone;
    bool isProblemAfterOne;
};

void PrintTo(const SeverityCase& row, std::ostream* out) {
    *out << static_cast<std::uint32_t>(row.severity);
}

class MessageSeverity : public testing::TestWithParam<SeverityCase> {};

TEST_P(MessageSeverity, ChoosesPrefixAndStream) {
    for (const bool problemBefore : {false, true}) {
        const bool problem =
            problemBefore ? GetParam().isProblemAfterOne : GetParam().isProblemAfterNone;
        LaunchOptions options = test::ParseOptions({});
        options.lastMessageWasProblem = problemBefore;
        const std::string line = GetParam().prefix + "text\n";
        EXPECT_EQ(CaptureReport(options, "text", GetParam().severity),
                  (problem ? Console{"", line} : Console{line, ""}));
        EXPECT_EQ(options.lastMessageWasProblem, problem);
    }
}

const SeverityCase kSeverities[] = {
    {Severity::Info, " INFO: ", false, false}, {Severity::Warning, " WARN: ", true, true},
    {Severity::Error, "ERROR: ", true, true},  {Severity::Plain, "       ", false, true},
    {kFour, "       ", false, true},           {kLargest, "       ", false, true},
};

INSTANTIATE_TEST_SUITE_P(All, MessageSeverity, testing::ValuesIn(kSeverities));

TEST(Message, GoesBackToTheOutputStreamWithTheNextInfo) {
    LaunchOptions options = test::ParseOptions({});
    EXPECT_EQ(CaptureReport(options, "bad", Severity::Error), (Console{"", "ERROR: bad\n"}));
    EXPECT_EQ(CaptureReport(options, "more", Severity::Plain), (Console{"", "       more\n"}));
    EXPECT_EQ(CaptureReport(options, "fine", Severity::Info), (Console{" INFO: fine\n", ""}));
    EXPECT_EQ(CaptureReport(options, "more", Severity::Plain), (Console{"       more\n", ""}));
}

// A text and its line, without the prefix " WARN: " and the line end.
struct LineCase {
    std::string text;
    std::string line;
};

void PrintTo(const LineCase& row, std::ostream* out) {
    *out << testing::PrintToString(row.text);
}

class MessageLines : public testing::TestWithParam<LineCase> {};

TEST_P(MessageLines, AreIndentedBelowTheFirst) {
    LaunchOptions options = test::ParseOptions({});
    EXPECT_EQ(CaptureReport(options, GetParam().text, Severity::Warning),
              (Console{"", " WARN: " + GetParam().line + "\n"}));
}

const LineCase kLines[] = {
    {"", ""},
    {"A\nB", "A\n       B"},
    {"A\nB\nC", "A\n       B\n       C"},
    {"\n\nA", "\n       \n       A"},
    {"A\n", "A\n       "},
    {"100 %s %n", "100 %s %n"},
    {"\xC3\xA4 \xE2\x82\xAC", "\xC3\xA4 \xE2\x82\xAC"},
};

INSTANTIATE_TEST_SUITE_P(All, MessageLines, testing::ValuesIn(kLines));

TEST(Message, IsALineWhereBoxesAreOff) {
    const test::MessageBoxRecorder recorder;
    LaunchOptions options = test::ParseOptions({}, false);
    EXPECT_EQ(Capture([&] { ReportMessage(options, "text", Severity::Error, false); }),
              (Console{"", "ERROR: text\n"}));
    EXPECT_THAT(recorder.Boxes(), ElementsAre());
}

TEST(Message, IsALineWhereTheCallerWantsNoBox) {
    const test::MessageBoxRecorder recorder;
    LaunchOptions options = test::ParseOptions({}, true);
    EXPECT_EQ(CaptureReport(options, "text", Severity::Error), (Console{"", "ERROR: text\n"}));
    EXPECT_THAT(recorder.Boxes(), ElementsAre());
}

TEST(Message, ShowsTheBareTextInABoxWithTheErrorIconWhateverTheSeverity) {
    for (const Severity severity :
         {Severity::Plain, Severity::Info, Severity::Warning, Severity::Error, kFour}) {
        const test::MessageBoxRecorder recorder;
        LaunchOptions options = test::ParseOptions({});
        const Console console = Capture(
            [&] { ReportMessage(options, "A\nB \xC3\xA4\xE2\x82\xAC %s", severity, false); });
        EXPECT_THAT(recorder.Boxes(), ElementsAre(LauncherBox(L"A\nB \u00E4\u20AC %s")));
        EXPECT_EQ(console, Console{});
        EXPECT_FALSE(options.lastMessageWasProblem);
    }
}

TEST(Message, LeavesTheStreamAsItWasAfterABox) {
    const test::MessageBoxRecorder recorder;
    LaunchOptions options = test::ParseOptions({});
    options.lastMessageWasProblem = true;
    ReportMessage(options, "text", Severity::Info, false);
    EXPECT_TRUE(options.lastMessageWasProblem);
}

TEST(Message, TakesNoNoticeOfABoxThatFails) {
    test::MessageBoxRecorder recorder;
    recorder.Answer(0);
    LaunchOptions options = test::ParseOptions({});
    EXPECT_EQ(Capture([&] { ReportMessage(options, "text", Severity::Error, false); }), Console{});
    EXPECT_THAT(recorder.Boxes(), ElementsAre(LauncherBox(L"text")));
}

TEST(Message, IsWrittenAtOnceAsALineOfText) {
    LaunchOptions options = test::ParseOptions({});
    testing::internal::CaptureStdout();
    std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);  // whatever the runtime began with
    ReportMessage(options, "text", Severity::Info, true);
    const long written = _filelength(1);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), " INFO: text\n");
    EXPECT_EQ(written, 13);  // CR and LF
}

// While it lives, every write to the standard output stream fails.
class BrokenStdout {
  public:
    BrokenStdout() : saved_(_dup(1)) {
        const int readOnly = _open("NUL", _O_RDONLY);
        _dup2(readOnly, 1);
        _close(readOnly);
    }
    BrokenStdout(const BrokenStdout&) = delete;
    BrokenStdout& operator=(const BrokenStdout&) = delete;
    ~BrokenStdout() {
        _dup2(saved_, 1);
        _close(saved_);
        std::clearerr(stdout);
    }

  private:
    int saved_;
};

TEST(Message, TakesNoNoticeOfAStreamThatFails) {
    LaunchOptions options = test::ParseOptions({});
    std::fflush(stdout);
    {
        const BrokenStdout broken;
        ReportMessage(options, "lost", Severity::Info, true);
        EXPECT_TRUE(std::ferror(stdout));
    }
    EXPECT_EQ(CaptureReport(options, "found", Severity::Info).out, " INFO: found\n");
}

}  // namespace
}  // namespace launcher
