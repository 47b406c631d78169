// mediatool's output: terminals and files that hooks play.

#include "mediatool/base/console.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "mediatool/commands.h"
#include "tests/mediatool/support/sample_media.h"
#include "tests/support/hook.h"

namespace launcher::test {
namespace {

using mediatool::Colour;
using mediatool::Painted;
using mediatool::PrintOut;
using testing::ElementsAre;
using testing::HasSubstr;

// What a stream says when it is asked for the mode that only terminals have.
auto IsTerminal(bool terminal) {
    return [terminal](auto, HANDLE, DWORD* mode) -> BOOL {
        *mode = 0;
        return terminal;
    };
}

class TerminalTest : public testing::Test {
  protected:
    // Prints on a terminal that takes as many characters as this at a time.
    void Print(const std::string& text, DWORD most = MAXDWORD) {
        const Hook<decltype(&GetConsoleMode)> mode("GetConsoleMode", IsTerminal(true));
        const Hook<decltype(&WriteConsoleW)> write(
            "WriteConsoleW",
            [this, most](auto, HANDLE, const void* piece, DWORD length, DWORD* written, void*) {
                offered.push_back(length);
                *written = std::min(length, most);
                shown.emplace_back(static_cast<const wchar_t*>(piece), *written);
                return TRUE;
            });
        PrintOut(text);
    }
    std::wstring Shown() const {
        std::wstring all;
        for (const std::wstring& piece : shown)
            all += piece;
        return all;
    }

    std::vector<DWORD> offered;
    std::vector<std::wstring> shown;
};

// Windows 7 refuses a write of 64 KB altogether.
TEST_F(TerminalTest, GetsALongTextInSmallPieces) {
    const std::string text(100'000, 'x');
    Print(text);
    EXPECT_EQ(Shown(), ToWide(text));
    std::vector<DWORD> pieces(12, 8192);
    pieces.push_back(1696);
    EXPECT_EQ(offered, pieces);
}

// Characters of two halves, at even and at odd places.
TEST_F(TerminalTest, GetsWholeCharacters) {
    for (std::string text : {"", "x"}) {
        for (int i = 0; i < 20'000; ++i)
            text += "\xF0\x9F\x92\xBF";
        shown.clear();
        Print(text);
        EXPECT_EQ(Shown(), ToWide(text));
        for (const std::wstring& piece : shown)
            EXPECT_FALSE(IS_HIGH_SURROGATE(piece.back()));
    }
}

TEST_F(TerminalTest, GetsTheRestOfWhatItTookInPart) {
    Print("Größe 漢字", 3);
    EXPECT_EQ(Shown(), ToWide("Größe 漢字"));
    EXPECT_THAT(offered, ElementsAre(8u, 5u, 2u));
}

TEST_F(TerminalTest, ThatTakesNothingIsNotAskedAgain) {
    Print("text", 0);
    EXPECT_THAT(offered, ElementsAre(4u));
}

TEST_F(TerminalTest, ThatFailsIsNotAskedAgain) {
    const Hook<decltype(&GetConsoleMode)> mode("GetConsoleMode", IsTerminal(true));
    int asked = 0;
    const Hook<decltype(&WriteConsoleW)> write(
        "WriteConsoleW", [&asked](auto, HANDLE, auto, DWORD, DWORD* written, void*) {
            ++asked;
            *written = 1;
            return FALSE;
        });
    PrintOut("text");
    EXPECT_EQ(asked, 1);
}

// In a file nobody would see that it is written over.
TEST(ProgressLine, IsForTerminalsOnly) {
    int writes = 0;
    {
        ULONGLONG now = 0;
        const Hook<decltype(&GetConsoleMode)> mode("GetConsoleMode", IsTerminal(false));
        const Hook<decltype(&GetTickCount64)> clock("GetTickCount64",
                                                    [&now](auto) { return now += 1000; });
        const Hook<decltype(&::WriteFile)> write("WriteFile", [&writes](auto&&...) {
            ++writes;
            return FALSE;
        });
        mediatool::Progress line;
        line.Show("first");
        line.Show("second");
    }
    EXPECT_EQ(writes, 0);
}

// The report would begin behind it.
TEST(ProgressLine, IsTakenAwayBeforeTheReport) {
    const SampleMedia media;
    const TemporaryFolder scratch;
    const std::vector<std::pair<const wchar_t*, std::vector<std::string>>> commands = {
        {L"\rEntries looked at: 2\r", {"validate", media.Text()}},
        {L"\rCopying: ",
         {"create", "--id", "SET", "--layout", "siblings", "--volumes", "1", "--from", media.Text(),
          "--checksums", scratch.Text("out")}},
        {L"\rChecksums: ", {"checksum", media.Text()}},
        {L"\rChecksums: ", {"validate", media.Text()}}};
    for (const auto& [line, command] : commands) {
        std::wstring shown;
        ULONGLONG now = 0;
        {
            const Hook<decltype(&GetConsoleMode)> mode("GetConsoleMode", IsTerminal(true));
            const Hook<decltype(&SetConsoleMode)> plain("SetConsoleMode",
                                                        [](auto&&...) { return FALSE; });
            const Hook<decltype(&GetTickCount64)> clock("GetTickCount64",
                                                        [&now](auto) { return now += 1000; });
            const Hook<decltype(&WriteConsoleW)> write(
                "WriteConsoleW",
                [&shown](auto, HANDLE, const void* text, DWORD length, DWORD* written, void*) {
                    shown.append(static_cast<const wchar_t*>(text), *written = length);
                    return TRUE;
                });
            EXPECT_EQ(mediatool::RunMediatool(command), 0);
        }
        EXPECT_NE(shown.find(line), std::wstring::npos) << ToNarrow(shown.c_str());
        const std::size_t end = shown.rfind(L'\r');
        ASSERT_NE(end, std::wstring::npos) << "nothing was shown during " << command.front();
        const std::size_t start = shown.rfind(L'\r', end - 1) + 1;
        EXPECT_EQ(shown.substr(start, end - start), std::wstring(end - start, L' '));
        EXPECT_GT(shown.size(), end + 1) << "the report of " << command.front() << " came before";
    }
}

// What the line does on the stream for errors, by a clock that stands still between the calls.
class ProgressLineTest : public testing::Test {
  protected:
    ~ProgressLineTest() override {
        SetStdHandle(STD_OUTPUT_HANDLE, output_);
        SetStdHandle(STD_ERROR_HANDLE, errors_);
    }

    ULONGLONG now = 1000;
    std::string shown;

  private:
    const HANDLE output_ = GetStdHandle(STD_OUTPUT_HANDLE);
    const HANDLE errors_ = GetStdHandle(STD_ERROR_HANDLE);
    const BOOL areOthers_ = SetStdHandle(STD_OUTPUT_HANDLE, reinterpret_cast<HANDLE>(0x11)) &&
                            SetStdHandle(STD_ERROR_HANDLE, reinterpret_cast<HANDLE>(0x22));
    const Hook<decltype(&GetConsoleMode)> mode_{"GetConsoleMode",
                                                [](auto, HANDLE stream, DWORD*) -> BOOL {
                                                    return stream == reinterpret_cast<HANDLE>(0x22);
                                                }};
    const Hook<decltype(&GetTickCount64)> clock_{"GetTickCount64", [this](auto) { return now; }};
    const Hook<decltype(&WriteConsoleW)> write_{
        "WriteConsoleW",
        [this](auto, HANDLE stream, const void* text, DWORD length, DWORD* written, void*) {
            if (stream != reinterpret_cast<HANDLE>(0x22)) shown += "elsewhere: ";
            shown += ToNarrow(
                std::wstring(static_cast<const wchar_t*>(text), *written = length).c_str());
            return TRUE;
        }};
};

TEST_F(ProgressLineTest, IsShownFiveTimesASecond) {
    mediatool::Progress line;
    line.Show("at once");
    now += 199;
    line.Show("too early");
    EXPECT_EQ(shown, "");
    line.Clear();
    EXPECT_EQ(shown, "") << "nothing is there";
    now += 1;
    line.Show("first");
    EXPECT_EQ(shown, "\rfirst");
    now += 199;
    line.Show("too early");
    EXPECT_EQ(shown, "\rfirst");
    now += 1;
    line.Show("1st");
    EXPECT_EQ(shown, "\rfirst\r1st  ");
    now += 200;
    line.Show("first of all");
    EXPECT_EQ(shown, "\rfirst\r1st  \rfirst of all");
    shown.clear();
    line.Clear();
    EXPECT_EQ(shown, "\r            \r");
    line.Clear();
    EXPECT_EQ(shown, "\r            \r") << "it is gone";
}

TEST_F(ProgressLineTest, IsTakenAwayAtItsEnd) {
    {
        mediatool::Progress line;
        for (const char* text : {"", "", "abc"}) {
            line.Show(text);
            now += 200;
        }
    }
    EXPECT_EQ(shown, "\r\rabc\r   \r");
}

// Each work has a beginning of its own.
TEST_F(ProgressLineTest, HasTheRateOfEachWork) {
    mediatool::Progress line;
    const mediatool::TellAmounts tell = mediatool::ShownOn(line);
    tell({"A", 0, 2, 0, 9000});
    now += 1000;
    tell({"A", 1, 2, 3000, 9000});
    EXPECT_EQ(shown, "\rA: 1 of 2 files, 3.0 KB of 9.0 KB, 3.0 KB/s");
    shown.clear();
    now += 1000;
    tell({"B", 0, 1, 0, 8000});
    now += 2000;
    tell({"B", 1, 1, 8000, 8000});
    EXPECT_THAT(shown, testing::EndsWith("\rB: 1 of 1 file, 8.0 KB of 8.0 KB, 4.0 KB/s  "));
}

TEST_F(ProgressLineTest, IsWhereErrorsAre) {
    mediatool::PrintError("text");
    EXPECT_EQ(shown, "text");
}

// A file or a pipe, which takes bytes.
class StreamTest : public testing::Test {
  protected:
    // Prints on one whose writes succeed or not, and take as many bytes as this at a time.
    void Print(const std::string& text, BOOL success, DWORD most) {
        const Hook<decltype(&GetConsoleMode)> mode("GetConsoleMode", IsTerminal(false));
        const Hook<decltype(&::WriteFile)> write(
            "WriteFile", [&](auto, HANDLE, const void* piece, DWORD length, DWORD* written, auto*) {
                ++asked;
                *written = std::min(length, most);
                taken.append(static_cast<const char*>(piece), *written);
                return success;
            });
        PrintOut(text);
    }

    int asked = 0;
    std::string taken;
};

TEST_F(StreamTest, GetsTheRestOfWhatItTookInPart) {
    Print("Größe 漢字", TRUE, 4);
    EXPECT_EQ(taken, "Größe 漢字");
}

TEST_F(StreamTest, ThatTakesNothingIsNotAskedAgain) {
    Print("text", TRUE, 0);
    EXPECT_EQ(asked, 1);
}

TEST_F(StreamTest, ThatFailsIsNotAskedAgain) {
    Print("text", FALSE, 1);
    EXPECT_EQ(asked, 1);
}

// A text in each colour, on a terminal that does this with colours.
std::string InAllColours(BOOL understands, LPCWSTR noColour) {
    SetEnvironmentVariableW(L"NO_COLOR", noColour);
    const Hook<decltype(&GetConsoleMode)> mode("GetConsoleMode", [](auto, HANDLE, DWORD* now) {
        *now = ENABLE_PROCESSED_OUTPUT;
        return TRUE;
    });
    const Hook<decltype(&SetConsoleMode)> colours(
        "SetConsoleMode",
        [=](auto, HANDLE, DWORD wanted) -> BOOL { return understands && wanted == 5; });
    return Painted(Colour::Plain, "plain ") + Painted(Colour::Bold, "bold") +
           Painted(Colour::Dim, "dim") + Painted(Colour::Red, "red") +
           Painted(Colour::Yellow, "yellow") + Painted(Colour::Green, "green") +
           Painted(Colour::Cyan, "cyan");
}

// A process finds out once whether there are colours.
void EndWithColours(BOOL understands, LPCWSTR noColour = nullptr) {
    std::fputs(InAllColours(understands, noColour).c_str(), stderr);
    std::exit(0);
}

TEST(ColoursDeathTest, AreForTerminalsThatUnderstandThem) {
    EXPECT_EXIT(EndWithColours(TRUE), testing::ExitedWithCode(0),
                HasSubstr("plain \x1b[1mbold\x1b[0m\x1b[2mdim\x1b[0m\x1b[1;31mred\x1b[0m"
                          "\x1b[33myellow\x1b[0m\x1b[32mgreen\x1b[0m\x1b[36mcyan\x1b[0m"));
    EXPECT_EXIT(EndWithColours(FALSE), testing::ExitedWithCode(0),
                HasSubstr("plain bolddimredyellowgreencyan"));
    EXPECT_EXIT(EndWithColours(TRUE, L"1"), testing::ExitedWithCode(0),
                HasSubstr("plain bolddimredyellowgreencyan"));
    EXPECT_EXIT(EndWithColours(TRUE, L""), testing::ExitedWithCode(0),
                HasSubstr("plain \x1b[1mbold"));
}

}  // namespace
}  // namespace launcher::test
