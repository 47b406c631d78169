// Windows calls of mediatool that fail on other machines only.

#include <windows.h>

#include "fs/encoding.h"
#include "mediatool/base/files.h"
#include "mediatool/commands.h"
#include "mediatool/dry_run/environment.h"
#include "tests/mediatool/creating.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/links.h"

namespace launcher::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

TEST_F(Creating, TakesBackWhatItMadeOnAFullDisk) {
    scratch.Write("out/1/there.bin");
    const Tree before = TreeBelow(scratch.Dir());
    std::string complaint;
    {
        const Hook<decltype(&::WriteFile)> write("WriteFile", FailsWith(ERROR_DISK_FULL, FALSE));
        complaint = Complaint();
    }
    EXPECT_THAT(complaint, StartsWith("refused: \"" + scratch.Text("out\\1\\")));
    EXPECT_THAT(complaint, HasSubstr(" cannot be written: "));
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
}

// A folder that cannot be made; volume 1 is made before volume 2.
class UnmadeFolder : public Creating {
  protected:
    const std::string folder = scratch.Text("out\\2");
    const Hook<decltype(&CreateDirectoryW)> make{
        "CreateDirectoryW", [this](auto real, LPCWSTR name, LPSECURITY_ATTRIBUTES security) {
            if (!ToNarrow(name).ends_with(folder)) return real(name, security);
            SetLastError(ERROR_ACCESS_DENIED);
            return FALSE;
        }};
};

TEST_F(UnmadeFolder, LeavesNothing) {
    EXPECT_THAT(Complaint(), StartsWith("refused: \"" + folder + "\" cannot be made: "));
    EXPECT_THAT(TreeBelow(scratch.Dir()), testing::IsEmpty());
}

TEST_F(UnmadeFolder, IsWhatIsToldWhenOthersCannotBeTakenBack) {
    const Hook<decltype(&RemoveDirectoryW)> remove("RemoveDirectoryW",
                                                   FailsWith(ERROR_SHARING_VIOLATION, FALSE));
    EXPECT_THAT(Complaint(), StartsWith("refused: \"" + folder + "\" cannot be made: "));
    EXPECT_TRUE(mediatool::IsFolder(Path(scratch.Text("out\\1"))));
}

// A folder that cannot be listed while the object lives.
class Unlisted {
  public:
    explicit Unlisted(const std::string& folder) : pattern_(ToWide(folder + "\\*")) {}

    std::string Complaint() const {
        return "cannot be listed: " + mediatool::ErrorText(ERROR_ACCESS_DENIED) + ".";
    }

    bool isSo = true;

  private:
    std::wstring pattern_;
    const Hook<decltype(&FindFirstFileW)> find_{
        "FindFirstFileW", [this](auto real, LPCWSTR pattern, auto data) -> HANDLE {
            if (!isSo || !std::wstring(pattern).ends_with(pattern_)) return real(pattern, data);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }};
};

// With content in a folder of each volume.
class UnlistedFolder : public Creating {
  protected:
    UnlistedFolder() {
        scratch.Write("one/data/a.bin", "1");
        scratch.Write("two/data/b.bin", "2");
        request.from = {scratch.Text("one"), scratch.Text("two")};
        request.checksums = true;
        before = TreeBelow(scratch.Dir());
    }

    Tree before;
};

TEST_F(UnlistedFolder, OfTheContentIsRefused) {
    std::string complaint;
    {
        const Unlisted folder(scratch.Text("two\\data"));
        complaint = Complaint();
        EXPECT_EQ(complaint,
                  "wrong use: \"" + scratch.Text("two\\data") + "\" " + folder.Complaint());
    }
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
}

// It was written a moment ago.
TEST_F(UnlistedFolder, OfTheNewSetHasAllTakenBack) {
    {
        Unlisted folder(scratch.Text("out\\2\\data"));
        folder.isSo = false;
        request.progress = [&folder](const mediatool::Amounts& amounts) {
            folder.isSo = amounts.files == 2 && std::string(amounts.what) == "Copying";
        };
        EXPECT_EQ(Complaint(),
                  "refused: \"" + scratch.Text("out\\2\\data") + "\" " + folder.Complaint());
    }
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
}

TEST(UnlistedFolders, OfAMediumAreNotValidated) {
    const SampleMedia media;
    const Unlisted folder(media.Text());
    mediatool::ValidateRequest request;
    request.folders = {media.Text()};
    try {
        mediatool::Validate(request);
        FAIL() << "it was";
    } catch (const BadInput& failure) {
        EXPECT_EQ(failure.what(), "\"" + media.Text() + "\" " + folder.Complaint());
    }
}

// The folder of a drive that was pulled out: what is said of its root is said all the same.
TEST(FailingCalls, OfTheCurrentFolderLeaveItWhereItWas) {
    SampleMedia media;
    const MappedDrive drive(FromUtf8(media.Text()));
    mediatool::ValidateRequest request;
    request.folders = {ToUtf8(drive.Root())};
    const std::string usual = Ids(mediatool::Validate(request));
    const Hook<decltype(&SetCurrentDirectoryW)> change("SetCurrentDirectoryW",
                                                       FailsWith(ERROR_NOT_READY, FALSE));
    EXPECT_EQ(Ids(mediatool::Validate(request)), usual);
}

class FailingVariables : public IsolatedTest {};

TEST_F(FailingVariables, StayAsTheyAre) {
    const mediatool::Environment before = mediatool::CurrentEnvironment();
    SetEnvironmentVariableW(L"ZEP_NEW", L"1");
    {
        const Hook<decltype(&SetEnvironmentVariableW)> set(
            "SetEnvironmentVariableW", FailsWith(ERROR_NOT_ENOUGH_MEMORY, FALSE));
        mediatool::RestoreEnvironment(before);
    }
    EXPECT_TRUE(mediatool::CurrentEnvironment().contains("ZEP_NEW"));
    mediatool::RestoreEnvironment(before);
    EXPECT_FALSE(mediatool::CurrentEnvironment().contains("ZEP_NEW"));
}

// A disc with a scratch: what was read up to there is not taken for all there is.
TEST(Listing, ThatBreaksOffIsNone) {
    const TemporaryFolder scratch;
    scratch.Write("a.bin");
    scratch.Write("b.bin");
    ASSERT_EQ(mediatool::EntriesOf(Path(scratch.Text())).size(), 2u);
    const Hook<decltype(&FindNextFileW)> next("FindNextFileW", FailsWith(ERROR_CRC, FALSE));
    const Hook<decltype(&FindClose)> close("FindClose", [](auto real, HANDLE search) {
        const BOOL isClosed = real(search);
        SetLastError(ERROR_INVALID_HANDLE);
        return isClosed;
    });
    EXPECT_FALSE(mediatool::List(Path(scratch.Text())));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CRC));
}

// Other folders have "." and "..".
TEST(Listing, OfAnEmptyDriveIsEmpty) {
    std::wstring asked;
    const Hook<decltype(&FindFirstFileW)> first("FindFirstFileW",
                                                [&asked](auto, LPCWSTR pattern, auto) {
                                                    asked = pattern;
                                                    SetLastError(ERROR_FILE_NOT_FOUND);
                                                    return INVALID_HANDLE_VALUE;
                                                });
    const auto entries = mediatool::List(Path("C:"));
    ASSERT_TRUE(entries);
    EXPECT_TRUE(entries->empty());
    EXPECT_EQ(asked, L"\\\\?\\C:\\*");
}

// The same disc: nothing of the file is not an empty file.
TEST(ReadingTheStart, OfWhatCannotBeReadGivesNothing) {
    const TemporaryFolder scratch;
    scratch.Write("a.bin", "text");
    const Path file(scratch.Text("a.bin"));
    ASSERT_EQ(mediatool::ReadStart(file, 4), "text");
    const Hook<decltype(&::ReadFile)> read("ReadFile", FailsWith(ERROR_CRC, FALSE));
    EXPECT_FALSE(mediatool::ReadStart(file, 4));
}

// As Windows names it in full, behind a prefix of its own.
TEST(FinalPath, OfAShareIsTheOneThatPeopleWrite) {
    const TemporaryFolder scratch;
    const Hook<decltype(&GetFinalPathNameByHandleW)> name(
        "GetFinalPathNameByHandleW", [](auto, HANDLE, LPWSTR path, DWORD size, DWORD) -> DWORD {
            const std::wstring full = L"\\\\?\\UNC\\server\\share\\x";
            return static_cast<DWORD>(full.copy(path, size));
        });
    EXPECT_EQ(mediatool::FinalPath(Path(scratch.Text())).Text(), "\\\\server\\share\\x");
}

// A box of Windows would wait for a disc where nobody is. What is started must not inherit that.
TEST(DriveWithoutADisc, IsAskedForInNoBox) {
    const DWORD mode = GetThreadErrorMode();
    const UINT ofTheProcess = GetErrorMode();
    SetThreadErrorMode(0, nullptr);
    mediatool::RunMediatool({"validate", "Z:\\no such folder"});
    EXPECT_EQ(GetThreadErrorMode(), static_cast<DWORD>(SEM_FAILCRITICALERRORS));
    EXPECT_EQ(GetErrorMode(), ofTheProcess);
    SetThreadErrorMode(mode, nullptr);
}

}  // namespace
}  // namespace launcher::test
