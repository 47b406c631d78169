// The files that the launcher's streams lead to, and whose lines are whose.

#include "mediatool/run/stream_file.h"

#include <windows.h>

#include "fs/environment.h"
#include "mediatool/run/streams.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/temporary_folder.h"

namespace launcher::mediatool {
namespace {

namespace stdfs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

void WriteTo(HANDLE file, const std::string& bytes) {
    DWORD written = 0;
    ::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

class StreamFileTest : public test::IsolatedTest {
  protected:
    StreamFileTest() { SetEnvVar("TMP", test::ToUtf8(folder_.Dir())); }
    std::size_t FilesLeft() const {
        return static_cast<std::size_t>(
            std::distance(stdfs::directory_iterator(folder_.Dir()), stdfs::directory_iterator()));
    }
    // Of a stream's file.
    std::wstring Name(int number) const {
        return (folder_.Dir() / L"mediatool-").wstring() + std::to_wstring(GetCurrentProcessId()) +
               L"-" + std::to_wstring(number) + L".tmp";
    }

    test::TemporaryFolder folder_;
};

TEST_F(StreamFileTest, GivesCompleteLinesOnly) {
    StreamFile file;
    WriteTo(file.Writer(), "one\r\ntwo\nthr");
    EXPECT_THAT(file.TakeLines(), ElementsAre("one", "two"));
    EXPECT_THAT(file.TakeLines(), IsEmpty());
    WriteTo(file.Writer(), "ee\r");
    EXPECT_THAT(file.TakeLines(), IsEmpty());
    WriteTo(file.Writer(), "\n\nrest");
    EXPECT_THAT(file.TakeLines(), ElementsAre("three", ""));
    EXPECT_EQ(file.TakeRest(), "rest");
    EXPECT_EQ(file.TakeRest(), "");
}

// Each state of a line that is written over, as it comes.
TEST_F(StreamFileTest, EndsALineAtALoneReturn) {
    StreamFile file;
    WriteTo(file.Writer(), "\r10%\r20%");
    EXPECT_THAT(file.TakeLines(), ElementsAre("10%"));
    WriteTo(file.Writer(), "\r");
    EXPECT_THAT(file.TakeLines(), IsEmpty());
    WriteTo(file.Writer(), "100%\r\r\nnext\r\n\r\n");
    EXPECT_THAT(file.TakeLines(), ElementsAre("20%", "100%", "next", ""));
}

TEST_F(StreamFileTest, EndsALineWithoutAnEndAfterAMegabyte) {
    StreamFile file;
    const std::string megabyte(1 << 20, 'x');
    WriteTo(file.Writer(), megabyte + "y");
    EXPECT_THAT(file.TakeLines(), ElementsAre(megabyte));
    WriteTo(file.Writer(), "\n");
    EXPECT_THAT(file.TakeLines(), ElementsAre("y"));
    // Not within a character.
    for (const std::string character : {"\u00E9", "\U0001F4BF"}) {
        WriteTo(file.Writer(), megabyte.substr(1) + character + "\n");
        EXPECT_THAT(file.TakeLines(), ElementsAre(megabyte.substr(1) + character));
    }
    // But none is longer than four bytes.
    WriteTo(file.Writer(), megabyte + std::string(4, '\x80') + "\n");
    EXPECT_THAT(file.TakeLines(), ElementsAre(megabyte + "\uFFFD\uFFFD\uFFFD", "\uFFFD"));
}

TEST_F(StreamFileTest, TakesNoMoreThanTwoMegabytesAtOnce) {
    StreamFile file;
    const std::string line = std::string((1 << 20) - 1, 'x') + "\n";
    for (int i = 0; i < 3; ++i)
        WriteTo(file.Writer(), line);
    EXPECT_EQ(file.TakeLines().size(), 2u);
    EXPECT_EQ(file.Taken(), 2u << 20);
    EXPECT_EQ(file.Size(), 3u << 20);
    EXPECT_EQ(file.TakeLines().size(), 1u);
}

// Two megabytes of them would be two million.
TEST_F(StreamFileTest, TakesNotManyEmptyLinesAtOnce) {
    StreamFile file;
    WriteTo(file.Writer(), std::string(100'000, '\n'));
    std::size_t lines = file.TakeLines().size();
    EXPECT_GE(lines, 10'000u);
    EXPECT_LT(lines, 30'000u);
    EXPECT_EQ(file.Taken(), lines);
    while (file.Taken() < file.Size())
        lines += file.TakeLines().size();
    EXPECT_EQ(lines, 100'000u);
}

TEST_F(StreamFileTest, GivesLinesLongerThanItsPieces) {
    StreamFile file;
    const std::string line(200'000, 'x');
    WriteTo(file.Writer(), line + "\n" + line);
    EXPECT_THAT(file.TakeLines(), ElementsAre(line));
    EXPECT_EQ(file.TakeRest(), line);
}

TEST_F(StreamFileTest, ReplacesWhatIsNoText) {
    StreamFile file;
    constexpr char kBytes[] = "a\0b\xE9z Größe\n";
    WriteTo(file.Writer(), std::string(kBytes, sizeof kBytes - 1));
    EXPECT_THAT(file.TakeLines(), ElementsAre("a\xEF\xBF\xBD"
                                              "b\xEF\xBF\xBDz Größe"));
}

TEST_F(StreamFileTest, LeavesNothingBehind) {
    {
        StreamFile file;
        EXPECT_EQ(FilesLeft(), 1u);
        file.CloseWriter();
    }
    EXPECT_EQ(FilesLeft(), 0u);
}

// As long as somebody has the other end, as an installer that goes on.
TEST_F(StreamFileTest, TakesWhatIsWrittenAfterItsEnd) {
    HANDLE installers = INVALID_HANDLE_VALUE;
    {
        const StreamFile file;
        DuplicateHandle(GetCurrentProcess(), file.Writer(), GetCurrentProcess(), &installers, 0,
                        FALSE, DUPLICATE_SAME_ACCESS);
    }
    DWORD written = 0;
    EXPECT_TRUE(::WriteFile(installers, "more\n", 5, &written, nullptr));
    EXPECT_EQ(written, 5u);
    CloseHandle(installers);
    EXPECT_EQ(FilesLeft(), 0u);
}

TEST_F(StreamFileTest, IsMadeForAUserWhoseFolderLeadsNowhere) {
    SetEnvVar("TMP", test::ToUtf8(folder_.Dir() / "gone"));
    StreamFile file;
    WriteTo(file.Writer(), "one\n");
    EXPECT_THAT(file.TakeLines(), ElementsAre("one"));
}

TEST_F(StreamFileTest, IsRefusedWhereThereIsNoFolderAtAll) {
    std::string complaint;
    {
        const test::Hook<decltype(&CreateFileW)> hook(
            "CreateFileW", test::FailsWith(ERROR_ACCESS_DENIED, INVALID_HANDLE_VALUE));
        try {
            const StreamFile file;
        } catch (const std::runtime_error& failure) {
            complaint = failure.what();
        }
    }
    EXPECT_EQ(complaint, "There is no temporary folder to follow the launcher's output in.");
}

class Attribution : public StreamFileTest {
  protected:
    // The lines that these bytes come to, with those of the installer in front of a ">".
    std::vector<std::string> Attributed(const std::string& bytes, bool installerIsThere) {
        WriteTo(stream_.ForLauncher(), bytes);
        std::vector<std::string> texts;
        for (const SeenLine& line : stream_.TakeLines(installerIsThere))
            texts.push_back((line.origin == Origin::InstallerOutput ? ">" : "") + line.text);
        return texts;
    }

    WatchedStream stream_{Origin::LauncherOutput, Origin::InstallerOutput};
};

TEST_F(Attribution, IsByTheFormUntilTheInstallerIsThere) {
    EXPECT_THAT(Attributed(" INFO: a\n       b\nERROR: c\n", false),
                ElementsAre(" INFO: a", "       b", "ERROR: c"));
}

TEST_F(Attribution, GivesAllAfterALineOfTheInstallersToIt) {
    EXPECT_THAT(Attributed(" INFO: a\nhello\n INFO: b\n", false),
                ElementsAre(" INFO: a", ">hello", "> INFO: b"));
    EXPECT_THAT(Attributed(" INFO: c\n", false), ElementsAre("> INFO: c"));
}

TEST_F(Attribution, GivesAllToTheInstallerThatWasThere) {
    EXPECT_THAT(Attributed(" INFO: a\n", true), ElementsAre("> INFO: a"));
}

// A run that was killed may have left the one, another stream still uses the other.
TEST_F(StreamFileTest, PassesOverNamesThatAreTaken) {
    std::vector<std::wstring> names;
    const auto firstFail = [&names](auto real, LPCWSTR name, auto... rest) -> HANDLE {
        names.push_back(name);
        if (names.size() > 2) return real(name, rest...);
        SetLastError(names.size() == 1 ? ERROR_FILE_EXISTS : ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    };
    const test::Hook<decltype(&CreateFileW)> hook("CreateFileW", firstFail);
    const StreamFile file;
    EXPECT_THAT(names, ElementsAre(Name(1), Name(2), Name(3), Name(3))) << "the last one to read";
}

TEST_F(StreamFileTest, LeavesWhatIsThereAsItIs) {
    test::WriteFile(Name(1), "of another run");
    {
        const StreamFile file;
        EXPECT_EQ(FilesLeft(), 2u);
    }
    EXPECT_EQ(test::ReadFile(Name(1)), "of another run");
}

// Wine has no such attribute.
TEST_F(StreamFileTest, IsKeptInMemoryWherePossible) {
    DWORD flags = 0;
    const test::Hook<decltype(&CreateFileW)> hook(
        "CreateFileW", [&flags](auto real, LPCWSTR name, DWORD access, DWORD share, auto* security,
                                DWORD disposition, DWORD asked, HANDLE model) {
            flags |= asked;
            return real(name, access, share, security, disposition, asked, model);
        });
    const StreamFile file;
    EXPECT_NE(flags & FILE_ATTRIBUTE_TEMPORARY, 0u);
}

TEST_F(StreamFileTest, IsGivenUpAfterAThousandNamesInEachFolder) {
    int asked = 0;
    const test::Hook<decltype(&CreateFileW)> hook("CreateFileW", [&asked](auto&&...) {
        ++asked;
        SetLastError(ERROR_FILE_EXISTS);
        return INVALID_HANDLE_VALUE;
    });
    EXPECT_THROW(StreamFile(), std::runtime_error);
    EXPECT_EQ(asked, 2000);
}

}  // namespace
}  // namespace launcher::mediatool
