#include "launcher/base/message_output.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <string>
#include <utility>

#include "launcher/base/message.h"
#include "tests/support/message_boxes.h"

namespace launcher {
namespace {

using testing::ElementsAre;

std::string WrittenLine(const std::string& text, Severity severity, bool toErrors = false) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    WriteConsoleLine(text, severity, toErrors);
    const std::string error = testing::internal::GetCapturedStderr();
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(toErrors ? output : error, "");
    return toErrors ? error : output;
}

TEST(MessageBox, HasTheBareTextAndTheErrorIconWhateverTheSeverity) {
    for (const Severity severity :
         {Severity::Plain, Severity::Info, Severity::Warning, Severity::Error}) {
        const test::MessageBoxes boxes;
        ShowBox("A\nB \xC3\xA4\xE2\x82\xAC %s", severity);
        EXPECT_THAT(boxes.texts, ElementsAre("A\nB \xC3\xA4\xE2\x82\xAC %s"));
    }
}

TEST(MessageBox, ThatFailsIsIgnored) {
    const test::MessageBoxes boxes(/*print=*/false, /*answer=*/0);
    ShowBox("text", Severity::Error);
    EXPECT_THAT(boxes.texts, ElementsAre("text"));
}

TEST(ConsoleLine, BeginsWithItsSeverity) {
    const std::pair<Severity, std::string> rows[] = {
        std::pair{Severity::Info, " INFO: "},
        std::pair{Severity::Warning, " WARN: "},
        std::pair{Severity::Error, "ERROR: "},
        std::pair{Severity::Plain, "       "},
        std::pair{static_cast<Severity>(4), "       "},
        std::pair{static_cast<Severity>(0xFFFFFFFF), "       "}};
    for (const auto& [severity, prefix] : rows)
        EXPECT_EQ(WrittenLine("text", severity), prefix + "text\n");
}

TEST(ConsoleLine, IndentsFurtherLinesBelowTheFirst) {
    const std::pair<const char*, std::string> rows[] = {
        std::pair{"", ""}, std::pair{"A\nB\nC", "A\n       B\n       C"},
        std::pair{"\n\nA", "\n       \n       A"}, std::pair{"A\n", "A\n       "},
        std::pair{"100 %s %n \xC3\xA4 \xE2\x82\xAC", "100 %s %n \xC3\xA4 \xE2\x82\xAC"}};
    for (const auto& [text, line] : rows)
        EXPECT_EQ(WrittenLine(text, Severity::Warning, /*toErrors=*/true), " WARN: " + line + "\n");
}

TEST(ConsoleLine, IsWrittenAtOnceAsALineOfText) {
    testing::internal::CaptureStdout();
    std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);  // whatever the runtime began with
    WriteConsoleLine("text", Severity::Info, /*toErrors=*/false);
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

TEST(ConsoleLine, ThatFailsIsIgnored) {
    std::fflush(stdout);
    {
        const BrokenStdout broken;
        WriteConsoleLine("lost", Severity::Info, /*toErrors=*/false);
        EXPECT_TRUE(std::ferror(stdout));
    }
    EXPECT_EQ(WrittenLine("found", Severity::Info), " INFO: found\n");
}

}  // namespace
}  // namespace launcher
