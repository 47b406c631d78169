// Runs of create that do not come to their end, and the next one.

#include <windows.h>

#include <filesystem>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/files.h"
#include "tests/mediatool/creating.h"
#include "tests/support/hook.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

bool IsCopying(const mediatool::Amounts& amounts) {
    return std::string_view(amounts.what) == "Copying";
}

// In units of 100 ns.
void SetModified(const std::string& file, std::uint64_t time) {
    const FileHandle handle(CreateFileW(ToWide(file).c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr,
                                        OPEN_EXISTING, 0, nullptr));
    const FILETIME modified{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
    ASSERT_TRUE(SetFileTime(handle.Get(), nullptr, nullptr, &modified));
}

// Over an older set of two volumes, the first of which is changed before anything goes wrong.
class Unfinished : public Replacing {
  protected:
    Unfinished() {
        scratch.Write("out/1/inst/volumes.txt", "2\r\n");
        scratch.Write("out/1/1.txt", "MTBDIR=SET\r\n");
        scratch.Write("out/2/2.txt", "MTBDIR=SET\r\n");
        scratch.Write("two/c.bin", "new");
    }

    std::string Mark() const { return scratch.Text("out\\1\\mediatool-unfinished.txt"); }
    bool IsThere(const std::string& name) const {
        return stdfs::exists(FromUtf8(scratch.Text(name)));
    }

    std::string IdsOfErrors() const {
        mediatool::ValidateRequest check;
        check.folders = {scratch.Text("out\\1")};
        std::string ids;
        for (const Finding& finding : mediatool::Validate(check).findings.Sorted())
            if (finding.level == Level::Error) ids += finding.id + " ";
        return ids;
    }

    // Presses Ctrl+C when the file with this number is being copied.
    std::string ComplaintOfInterruptedRun(std::size_t files) {
        PHANDLER_ROUTINE handler = nullptr;
        const Hook<decltype(&SetConsoleCtrlHandler)> hook(
            "SetConsoleCtrlHandler", [&](auto, PHANDLER_ROUTINE routine, BOOL adds) {
                handler = adds ? routine : nullptr;
                return TRUE;
            });
        request.progress = [&](const mediatool::Amounts& progress) {
            if (IsCopying(progress) && progress.files == files) {
                EXPECT_TRUE(handler(CTRL_C_EVENT));
            }
        };
        std::string complaint = Complaint();
        request.progress = [](const mediatool::Amounts&) {};
        EXPECT_EQ(handler, nullptr) << "it stays installed";
        return complaint;
    }
};

TEST_F(Unfinished, NewSetIsTakenBackAfterCtrlC) {
    stdfs::remove_all(FromUtf8(scratch.Text("out")));
    const Tree before = TreeBelow(scratch.Dir());
    EXPECT_EQ(ComplaintOfInterruptedRun(2), "refused: Interrupted; what was new is taken back.");
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
}

TEST_F(Unfinished, OlderSetStaysMarkedAfterCtrlC) {
    EXPECT_EQ(ComplaintOfInterruptedRun(2),
              "refused: Interrupted; what was new is taken back. 1 file written over before "
              "stays so. \"" +
                  Mark() + "\" stays until the same create has run to its end.");
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\1\\a.bin"))), "new");
    EXPECT_FALSE(IsThere("out\\2\\b.bin"));
    EXPECT_THAT(IdsOfErrors(), testing::HasSubstr("set-unfinished"));
}

TEST_F(Unfinished, OlderSetTellsHowManyFilesStay) {
    scratch.Write("out/2/b.bin", "old");
    EXPECT_EQ(ComplaintOfInterruptedRun(2),
              "refused: Interrupted; what was new is taken back. 2 files written over before "
              "stay so. \"" +
                  Mark() + "\" stays until the same create has run to its end.");
}

TEST_F(Unfinished, OlderSetIsAsItWasWhenNothingWasWrittenOver) {
    const Tree before = TreeBelow(scratch.Dir());
    EXPECT_EQ(ComplaintOfInterruptedRun(0), "refused: Interrupted; what was new is taken back.");
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
}

TEST_F(Unfinished, TheNextRunGoesOn) {
    ComplaintOfInterruptedRun(1);
    EXPECT_EQ(ReadFile(FromUtf8(Mark())),
              "mediatool create has not written this set to its end. Run it again, with the same "
              "arguments: it goes on where it stopped.\r\n");
    scratch.Write("out/1/mediatool-unfinished.txt", "of the first");
    ComplaintOfInterruptedRun(1);
    EXPECT_EQ(ReadFile(FromUtf8(Mark())), "of the first");
    scratch.Write("out/1/mediatool-unfinished.tmp", "n");
    std::vector<std::size_t> all;
    request.progress = [&](const mediatool::Amounts& progress) {
        if (IsCopying(progress)) all.push_back(progress.allFiles);
    };
    const Creation creation = Create(request);
    EXPECT_EQ(creation.copiedFiles, 2u);
    EXPECT_EQ(creation.keptFiles, 4u) << "a.bin, the count file and the markers";
    EXPECT_THAT(TextOf(creation), testing::HasSubstr("\n4 files of the unfinished set kept\n"));
    EXPECT_THAT(all, testing::Each(2u));
    EXPECT_FALSE(IsThere("out\\1\\mediatool-unfinished.txt"));
    EXPECT_FALSE(IsThere("out\\1\\mediatool-unfinished.tmp")) << "where nothing is written";
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\2\\c.bin"))), "new");
    EXPECT_THAT(IdsOfErrors(), testing::Not(testing::HasSubstr("set-unfinished")));
}

// FAT keeps times to two seconds. A kill leaves the file that is being written.
TEST_F(Unfinished, WhatIsNotOfTheSameSizeAndTimeIsCopiedAgain) {
    scratch.Write("out/2/mediatool-unfinished.tmp", "n");
    const std::string file = scratch.Text("out\\1\\a.bin");
    constexpr std::uint64_t kTime = 134'596'373'480'000'000;
    constexpr std::uint64_t kTwoSeconds = 20'000'000;
    SetModified(scratch.Text("one\\a.bin"), kTime);
    const auto after = [&](const std::string& content, std::uint64_t time) {
        scratch.Write("out/1/mediatool-unfinished.txt");
        scratch.Write("out/1/a.bin", content);
        SetModified(file, time);
        Create(request);
        return ReadFile(FromUtf8(file));
    };
    EXPECT_EQ(after("odd", kTime + kTwoSeconds), "odd");
    EXPECT_EQ(after("odd", kTime - kTwoSeconds), "odd");
    EXPECT_EQ(after("odd", kTime + kTwoSeconds + 1), "new");
    EXPECT_EQ(after("odd", kTime - kTwoSeconds - 1), "new");
    EXPECT_EQ(after("longer", kTime), "new");
    EXPECT_FALSE(IsThere("out\\2\\mediatool-unfinished.tmp"));
}

// With checksums the content counts.
TEST_F(Unfinished, TheSameTimeIsNotEnoughWithChecksums) {
    for (const bool checksums : {false, true}) {
        request.checksums = checksums;
        scratch.Write("out/1/mediatool-unfinished.txt");
        const std::string file = scratch.Write("out/1/a.bin", "odd");
        stdfs::last_write_time(FromUtf8(file),
                               stdfs::last_write_time(FromUtf8(scratch.Text("one\\a.bin"))));
        Create(request);
        EXPECT_EQ(ReadFile(FromUtf8(file)), checksums ? "new" : "odd");
    }
}

// The set is marked before it is changed, and a file has its name when it is whole.
TEST_F(Unfinished, EveryFileIsWrittenUnderAnotherNameInAMarkedSet) {
    std::size_t seen = 0;
    request.progress = [&](const mediatool::Amounts& progress) {
        if (!IsCopying(progress)) return;
        EXPECT_TRUE(IsThere("out\\1\\mediatool-unfinished.txt"));
        if (progress.files == 0) {
            EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\1\\a.bin"))), "old");
        }
        if (progress.bytes == 3 && progress.files == 0) {
            EXPECT_TRUE(IsThere("out\\1\\mediatool-unfinished.tmp"));
            EXPECT_FALSE(mediatool::CanBeRead(scratch.Text("out\\1\\mediatool-unfinished.tmp")));
            EXPECT_TRUE(mediatool::CanBeRead(Mark())) << "people may look what it says";
            ++seen;
        }
    };
    Create(request);
    EXPECT_EQ(seen, 1u);
    EXPECT_FALSE(IsThere("out\\1\\mediatool-unfinished.tmp"));
}

TEST_F(Unfinished, SetIsAnErrorOfValidate) {
    scratch.Write("out/1/setup.exe", "x");
    EXPECT_THAT(IdsOfErrors(), testing::Not(testing::HasSubstr("set-unfinished")));
    scratch.Write("out/1/mediatool-unfinished.txt");
    EXPECT_THAT(IdsOfErrors(), testing::HasSubstr("set-unfinished"));
}

TEST_F(Unfinished, SetIsNoContentOfAnother) {
    for (const char* name : {"two/mediatool-unfinished.txt", "two/data/mediatool-unfinished.tmp"}) {
        const std::string left = scratch.Write(name);
        EXPECT_EQ(Complaint(), "wrong use: \"" + left +
                                   "\" is left from a set that was not written to its end; finish "
                                   "that set, or remove the file.");
        stdfs::remove(FromUtf8(left));
    }
}

// A new set, while one of Windows' functions fails.
class FailingCall : public Unfinished {
  protected:
    FailingCall() {
        stdfs::remove_all(FromUtf8(scratch.Text("out")));
        before = TreeBelow(scratch.Dir());
    }

    // The function says that the disk is full.
    template <class Function>
    std::string ComplaintWithout(const char* name) {
        const Hook<Function> fails(name, [](auto...) {
            SetLastError(ERROR_DISK_FULL);
            return FALSE;
        });
        return Complaint();
    }
    void ExpectTakenBack(const std::string& complaint, const std::string& file,
                         const std::string& what) {
        EXPECT_THAT(complaint, testing::StartsWith("refused: \"" + scratch.Text(file) +
                                                   "\" cannot be " + what + ": "));
        EXPECT_EQ(TreeBelow(scratch.Dir()), before);
    }

    Tree before;
};

TEST_F(FailingCall, ForTheBytesOfACopy) {
    std::string complaint;
    {
        int writes = 0;
        const Hook<decltype(&::WriteFile)> full("WriteFile",
                                                [&writes](auto real, auto... arguments) {
                                                    if (++writes == 1) return real(arguments...);
                                                    SetLastError(ERROR_DISK_FULL);
                                                    return FALSE;
                                                });
        complaint = Complaint();
    }
    ExpectTakenBack(complaint, "one\\a.bin", "copied");
}

TEST_F(FailingCall, ForTheTextOfTheMark) {
    std::string complaint;
    {
        const Hook<decltype(&::WriteFile)> full("WriteFile", FailsWith(ERROR_DISK_FULL, FALSE));
        complaint = Complaint();
    }
    ExpectTakenBack(complaint, "out\\1\\mediatool-unfinished.txt", "written");
}

TEST_F(FailingCall, ForTheMark) {
    std::string complaint;
    {
        const Hook<decltype(&CreateFileW)> refused(
            "CreateFileW", [](auto real, LPCWSTR name, auto... rest) -> HANDLE {
                if (!std::wstring(name).ends_with(L"-unfinished.txt")) return real(name, rest...);
                SetLastError(ERROR_WRITE_PROTECT);
                return INVALID_HANDLE_VALUE;
            });
        complaint = Complaint();
    }
    ExpectTakenBack(complaint, "out\\1\\mediatool-unfinished.txt", "written");
}

TEST_F(FailingCall, ForADriveThatIsPulledOut) {
    bool isGone = false;
    request.progress = [&isGone](const mediatool::Amounts& amounts) {
        isGone = std::string(amounts.what) == "Comparing" && amounts.files == amounts.allFiles;
    };
    const Hook<decltype(&GetFileAttributesExW)> look(
        "GetFileAttributesExW", [&isGone](auto real, auto... arguments) -> BOOL {
            if (!isGone) return real(arguments...);
            SetLastError(ERROR_NOT_READY);
            return FALSE;
        });
    const Hook<decltype(&CreateDirectoryW)> make("CreateDirectoryW",
                                                 FailsWith(ERROR_NOT_READY, FALSE));
    EXPECT_EQ(Complaint(), "refused: \"" + scratch.Text().substr(0, 2) +
                               "\" cannot be made: " + mediatool::ErrorText(ERROR_NOT_READY) + ".");
}

TEST_F(FailingCall, ForTheNewFile) {
    std::string complaint;
    {
        const Hook<decltype(&CreateFileW)> full(
            "CreateFileW", [](auto real, LPCWSTR name, auto... rest) -> HANDLE {
                if (!std::wstring(name).ends_with(L".tmp")) return real(name, rest...);
                SetLastError(ERROR_DISK_FULL);
                return INVALID_HANDLE_VALUE;
            });
        complaint = Complaint();
    }
    ExpectTakenBack(complaint, "one\\a.bin", "copied");
}

TEST_F(FailingCall, ForTheTimeOfACopy) {
    const auto complaint = ComplaintWithout<decltype(&SetFileTime)>("SetFileTime");
    ExpectTakenBack(complaint, "one\\a.bin", "copied");
}

// FAT keeps none before 1980.
TEST_F(FailingCall, ForATimeThatTheDiskCannotKeepIsPassedOver) {
    const Hook<decltype(&SetFileTime)> unkept("SetFileTime",
                                              FailsWith(ERROR_INVALID_PARAMETER, FALSE));
    EXPECT_EQ(Complaint(), "none");
}

TEST_F(FailingCall, ForTheNameOfACopy) {
    const auto complaint =
        ComplaintWithout<decltype(&SetFileInformationByHandle)>("SetFileInformationByHandle");
    ExpectTakenBack(complaint, "one\\a.bin", "copied");
}

TEST_F(FailingCall, ForTheNameOfAMarker) {
    request.from.clear();
    const auto complaint =
        ComplaintWithout<decltype(&SetFileInformationByHandle)>("SetFileInformationByHandle");
    ExpectTakenBack(complaint, "out\\1\\inst\\volumes.txt", "written");
}

// A virus scanner holds a file for a moment.
TEST_F(FailingCall, ForAMomentIsTriedAgain) {
    const auto failsAtFirst = [](DWORD error, int& calls) {
        return [error, &calls](auto real, auto... arguments) {
            if (++calls > 1) return real(arguments...);
            SetLastError(error);
            return FALSE;
        };
    };
    int renames = 0;
    int removals = 0;
    const Hook<decltype(&SetFileInformationByHandle)> rename(
        "SetFileInformationByHandle", failsAtFirst(ERROR_ACCESS_DENIED, renames));
    const Hook<decltype(&DeleteFileW)> remove("DeleteFileW",
                                              failsAtFirst(ERROR_SHARING_VIOLATION, removals));
    EXPECT_EQ(Complaint(), "none");
    EXPECT_EQ(removals, 2);
    EXPECT_FALSE(IsThere("out\\1\\mediatool-unfinished.txt"));
}

// All is written: it stays, and the next run has nothing to do but this.
TEST_F(FailingCall, ForTheEndOfTheMark) {
    scratch.Write("out/1/a.bin", "old");
    std::string complaint;
    std::vector<DWORD> waited;
    {
        const Hook<decltype(&DeleteFileW)> held("DeleteFileW", [](auto real, LPCWSTR name) {
            if (!std::wstring(name).ends_with(L"unfinished.txt")) return real(name);
            SetLastError(ERROR_SHARING_VIOLATION);
            return FALSE;
        });
        const Hook<decltype(&Sleep)> wait("Sleep",
                                          [&waited](auto, DWORD time) { waited.push_back(time); });
        complaint = Complaint();
    }
    EXPECT_EQ(waited, std::vector<DWORD>(19, 100));
    EXPECT_EQ(complaint, "refused: \"" + Mark() + "\" cannot be removed: " +
                             mediatool::ErrorText(ERROR_SHARING_VIOLATION) + ".");
    EXPECT_TRUE(IsThere("out\\2\\c.bin"));
    request.force = false;
    EXPECT_EQ(Create(request).copiedFiles, 0u);
    EXPECT_FALSE(IsThere("out\\1\\mediatool-unfinished.txt"));
}

// Wine 10 forgets that a file is read-only when it gets a time.
bool KeepsReadOnlyWithATime(const std::wstring& file) {
    const FileHandle handle(CreateFileW(file.c_str(), FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ,
                                        nullptr, OPEN_EXISTING, 0, nullptr));
    const FILETIME time{0, 0x01D00000};
    SetFileTime(handle.Get(), nullptr, nullptr, &time);
    return (GetFileAttributesW(file.c_str()) & FILE_ATTRIBUTE_READONLY) != 0;
}

TEST_F(Unfinished, ReadOnlyFilesAreTakenBackToo) {
    stdfs::remove_all(FromUtf8(scratch.Text("out")));
    const std::wstring source = ToWide(scratch.Text("one\\a.bin"));
    SetFileAttributesW(source.c_str(), FILE_ATTRIBUTE_READONLY);
    ComplaintOfInterruptedRun(1);
    EXPECT_FALSE(IsThere("out"));
    Create(request);
    const DWORD attributes = GetFileAttributesW(ToWide(scratch.Text("out\\1\\a.bin")).c_str());
    EXPECT_EQ((attributes & FILE_ATTRIBUTE_READONLY) != 0, KeepsReadOnlyWithATime(source));
    for (const std::wstring& file : {source, ToWide(scratch.Text("out\\1\\a.bin"))})
        SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
}

}  // namespace
}  // namespace launcher::test
