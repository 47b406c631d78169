// What the launcher meets in place of the machine: its answers, and the folders and files of a copy
// that is only pretended.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>

#include "fs/copied_file.h"
#include "fs/encoding.h"
#include "fs/file_type.h"
#include "fs/new_folder.h"
#include "fs/open_file.h"
#include "fs/owners.h"
#include "fs/path.h"
#include "launcher/base/message.h"
#include "launcher/base/message_output.h"
#include "media/volume_files.h"
#include "mediatool/base/files.h"
#include "mediatool/dry_run/environment.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"
#include "platform/administrator.h"
#include "platform/architecture.h"
#include "platform/module_path.h"
#include "platform/web_library.h"
#include "platform/windows_version.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/links.h"
#include "tests/support/temporary_folder.h"

namespace launcher::mediatool {
namespace {

using namespace std::string_literals;  // NOLINT(google-build-using-namespace)
using test::Hook;
using testing::ElementsAre;

// --- the environment

TEST(EnvironmentChanges, AreThoseOfNamesInAnyCase) {
    const std::vector<Change> changes =
        Changes({{"same", "1"}, {"Other", "1"}, {"gone", "2"}, {"b", "x"}},
                {{"SAME", "1"}, {"OTHER", "3"}, {"New", ""}, {"B", "X"}});
    std::vector<std::string> told;
    for (const Change& change : changes)
        told.push_back(change.name + ": " + change.before.value_or("-") + " > " +
                       change.after.value_or("-"));
    EXPECT_THAT(told, ElementsAre("b: x > X", "gone: 2 > -", "New: - > ", "Other: 1 > 3"));
    EXPECT_THAT(Changes({{"a", "1"}}, {{"A", "1"}}), testing::IsEmpty());
}

class EnvironmentTest : public test::IsolatedTest {};

TEST_F(EnvironmentTest, IsRestoredWholly) {
    SetEnvironmentVariableW(L"=Q:", L"Q:\\a=b");
    SetEnvironmentVariableW(L"TEST_EMPTY", L"");
    SetEnvironmentVariableW(L"TEST_OLD", L"old");
    const Environment before = CurrentEnvironment();
    EXPECT_EQ(before.at("=q:"), "Q:\\a=b");
    EXPECT_EQ(before.at("test_old"), "old");
    EXPECT_FALSE(before.contains(""));
    SetEnvironmentVariableW(L"=Q:", nullptr);
    SetEnvironmentVariableW(L"TEST_EMPTY", nullptr);
    SetEnvironmentVariableW(L"TEST_OLD", L"new");
    SetEnvironmentVariableW(L"TEST_NEW", L"x");
    EXPECT_EQ(Changes(before, CurrentEnvironment()).size(), 4u);
    RestoreEnvironment(before);
    EXPECT_EQ(CurrentEnvironment(), before);
    EXPECT_FALSE(CurrentEnvironment().contains("TEST_NEW"));
}

// --- the machine

class RehearsedMachineTest : public test::IsolatedTest {
  protected:
    Rehearsal rehearsal_;
    const RehearsalScope scope_{rehearsal_};
};

TEST_F(RehearsedMachineTest, AnswersAsItIsPretended) {
    for (const bool answer : {false, true}) {
        rehearsal_.machine.is64Bit = answer;
        rehearsal_.machine.isWindows8OrNewer = !answer;
        EXPECT_EQ(Is64BitWindows(), answer);
        EXPECT_EQ(IsWindows8OrNewer(), !answer);
        rehearsal_.machine.isAdministrator = answer;
        rehearsal_.isAdministrator.reset();
        EXPECT_EQ(IsAdministrator(), answer);
        rehearsal_.machine.isAdministrator = !answer;
        EXPECT_EQ(IsAdministrator(), answer);  // the first answer stays
    }
    rehearsal_.machine = {};
    EXPECT_EQ(Is64BitWindows(), Detect64BitWindows());
    EXPECT_EQ(IsWindows8OrNewer(), DetectWindows8());
    EXPECT_EQ(HasRequiredWebLibrary(), DetectRequiredWebLibrary());
    rehearsal_.machine.hasOldWebLibrary = true;
    EXPECT_FALSE(HasRequiredWebLibrary());
}

// On a share, each question costs as much as the reading.
TEST(Marker, IsReadWithoutAQuestionWhereNobodyWritesItDown) {
    const test::TemporaryFolder folder;
    const std::string file = folder.Write("1.txt", "MTBDIR=SET\r\n");
    const test::Hook<decltype(&GetFileAttributesW)> question("GetFileAttributesW",
                                                             [](auto real, LPCWSTR name) {
                                                                 ADD_FAILURE() << "asked";
                                                                 return real(name);
                                                             });
    EXPECT_EQ(ReadMtbDir(file), "SET");
}

TEST_F(RehearsedMachineTest, WritesDownWhatWasLookedFor) {
    const test::TemporaryFolder folder;
    const std::string file = folder.Write("1.txt", "MTBDIR=SET\r\n");
    EXPECT_TRUE(PathExists(folder.Text() + "\\x\\..\\1.txt"));
    EXPECT_FALSE(PathExists(folder.Text("none")));
    EXPECT_EQ(ReadMtbDir(file), "SET");
    EXPECT_EQ(ReadMtbDir(folder.Text("2.txt")), "");
    std::vector<std::string> told;
    for (const Lookup& lookup : rehearsal_.journal.lookups)
        told.push_back((lookup.found ? "found " : "missing ") + lookup.path);
    EXPECT_THAT(told, ElementsAre("found " + file, "missing " + folder.Text("none"),
                                  "found " + file, "missing " + folder.Text("2.txt")));
}

// As in a buffer of MAX_PATH characters.
TEST_F(RehearsedMachineTest, CutsThePathOfTheLauncher) {
    const std::string path = "C:\\" + std::string(252, 'x') + "\\abc";
    ASSERT_EQ(path.size(), 259u);
    rehearsal_.machine.launcherPath = path;
    EXPECT_EQ(GetModuleFileNameText(), path);
    EXPECT_EQ(GetModuleDirectory(), path.substr(0, 255));
    rehearsal_.machine.launcherPath = path + "d";
    EXPECT_EQ(GetModuleFileNameText(), path);
}

TEST_F(RehearsedMachineTest, WritesDownMessages) {
    ShowBox("seen\0unseen"s, Severity::Warning);
    WriteConsoleLine("a\0b"s, Severity::Info, true);
    WriteConsoleLine("c", Severity::Plain, false);
    std::vector<std::string> told;
    for (const Message& message : rehearsal_.journal.messages)
        told.push_back(message.text + (message.box ? " box" : "") +
                       (message.toErrors ? " errors" : "") + (message.dialog ? " dialog" : "") +
                       " " + std::to_string(static_cast<int>(message.severity)));
    EXPECT_THAT(told, ElementsAre("seen box 2", "a\0b errors 1"s, "c 0"));
}

// --- the copy

class PretendedCopyTest : public RehearsedMachineTest {
  protected:
    PretendedCopyTest() { rehearsal_.machine.longPaths = false; }

    // The error of making it; 0 when it is made.
    static DWORD ErrorOf(const std::string& path) {
        SetLastError(ERROR_SUCCESS);
        const bool isMade = MakeFolder(ToWide(path));
        const DWORD error = GetLastError();
        EXPECT_EQ(isMade, error == ERROR_SUCCESS) << path;
        return error;
    }
    static std::optional<FileType> At(const std::string& path) { return WhatIsAt(ToWide(path)); }

    // A file of this many bytes, copied to there; whether it has room.
    bool Copy(std::size_t bytes, const std::string& to) const {
        SourceFile source;
        source.path =
            ToWide(temp_.Write("source " + std::to_string(bytes), std::string(bytes, 'x')));
        source.handle = OpenSharedFile(source.path, GENERIC_READ, OPEN_EXISTING);
        CopiedFile copied(ToWide(to));
        EXPECT_TRUE(copied.Open(CREATE_ALWAYS));
        const bool fits = copied.Fill(source);
        EXPECT_EQ(GetLastError(), fits ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_DISK_FULL});
        EXPECT_TRUE(copied.SetTimes({}, {}));
        return fits;
    }

    const test::TemporaryFolder temp_;
};

TEST_F(PretendedCopyTest, HasTheFoldersThatWereMade) {
    const std::string folder = temp_.Text("new");
    EXPECT_EQ(ErrorOf(folder + "\\sub"), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(At(folder), std::nullopt);
    EXPECT_EQ(ErrorOf(folder), 0u);
    EXPECT_EQ(At(folder), FileType::Directory);
    EXPECT_EQ(At(temp_.Text("NEW")), FileType::Directory);
    EXPECT_EQ(ErrorOf(folder), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_EQ(ErrorOf(temp_.Text("New")), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_EQ(ErrorOf(folder + "\\sub"), 0u);
    EXPECT_EQ(ErrorOf(folder + "\\sub\\a:b"), DWORD{ERROR_INVALID_NAME});
    EXPECT_EQ(ErrorOf(temp_.Write("file") + "\\sub"), DWORD{ERROR_PATH_NOT_FOUND});
    EXPECT_EQ(At(temp_.Text("file")), FileType::File);
    EXPECT_FALSE(std::filesystem::exists(temp_.Dir() / "new"));
}

TEST_F(PretendedCopyTest, HasNoFoldersWithForbiddenNames) {
    EXPECT_EQ(ErrorOf(temp_.Text("new")), 0u);
    for (const std::string parent : {"", "new\\", "none\\"})
        for (const char c : std::string("<>\"|?*")) {
            EXPECT_EQ(ErrorOf(temp_.Text() + "\\" + parent + "a" + c), DWORD{ERROR_INVALID_NAME})
                << parent << c;
            EXPECT_EQ(ErrorOf(temp_.Text() + "\\" + c + "\\a"), DWORD{ERROR_INVALID_NAME}) << c;
        }
}

// Of which a drive's name alone is another folder.
TEST_F(PretendedCopyTest, HasFoldersAtTheRootOfADrive) {
    const test::MappedDrive drive(temp_.Dir());
    std::vector<std::wstring> asked;
    const Hook<decltype(&CreateFileW)> open(
        "CreateFileW", [&asked](auto real, LPCWSTR name, DWORD access, auto... rest) {
            if (access == FILE_ADD_SUBDIRECTORY) asked.emplace_back(name);
            return real(name, access, rest...);
        });
    EXPECT_EQ(ErrorOf(test::ToUtf8(drive.Root()) + "new"), 0u);
    EXPECT_EQ(ErrorOf(temp_.Text("new")), 0u);
    EXPECT_THAT(asked, ElementsAre(drive.Root().wstring(), temp_.Dir().wstring()));
}

TEST_F(PretendedCopyTest, HasFoldersWhereOthersAreAtWork) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    for (const DWORD access : {DWORD{GENERIC_READ}, DWORD{GENERIC_WRITE}, DWORD{DELETE}}) {
        const FileHandle other(CreateFileW(temp_.Dir().c_str(), access, kShareAll, nullptr,
                                           OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        ASSERT_TRUE(other);
        EXPECT_EQ(ErrorOf(temp_.Text("new " + std::to_string(access))), 0u);
    }
}

TEST_F(PretendedCopyTest, HasNoNamesThatAreTooLong) {
    const std::string base = temp_.Text() + "\\";
    EXPECT_EQ(ErrorOf(base + std::string(247 - base.size(), 'a')), 0u);
    EXPECT_FALSE(rehearsal_.journal.metLongPaths);
    EXPECT_EQ(ErrorOf(base + std::string(248 - base.size(), 'b')),
              DWORD{ERROR_FILENAME_EXCED_RANGE});
    EXPECT_TRUE(rehearsal_.journal.metLongPaths);
    EXPECT_TRUE(CopiedFile(ToWide(base + std::string(259 - base.size(), 'c'))).Open(0));
    EXPECT_FALSE(CopiedFile(ToWide(base + std::string(260 - base.size(), 'c'))).Open(0));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PATH_NOT_FOUND});
    rehearsal_.machine.longPaths = true;
    EXPECT_EQ(ErrorOf(base + std::string(248 - base.size(), 'b')), 0u);
    EXPECT_TRUE(CopiedFile(ToWide(base + std::string(260 - base.size(), 'c'))).Open(0));
}

TEST_F(PretendedCopyTest, TakesTheRoomOfItsFiles) {
    std::vector<std::wstring> asked;
    const Hook<decltype(&GetDiskFreeSpaceExW)> room(
        "GetDiskFreeSpaceExW", [&asked](auto, LPCWSTR name, PULARGE_INTEGER free, auto...) {
            asked.emplace_back(name);
            if (asked.size() == 1) return FALSE;  // it is not there yet
            free->QuadPart = 100;
            return TRUE;
        });
    const std::string file = temp_.Text("file");
    EXPECT_TRUE(Copy(60, file));
    EXPECT_THAT(asked, ElementsAre(ToWide(file) + L"\\", ToWide(temp_.Text()) + L"\\"));
    const PretendedCopy& copy = rehearsal_.journal.copy;
    EXPECT_EQ(copy.room, 100u);
    EXPECT_EQ(copy.bytes, 60u);
    EXPECT_TRUE(Copy(30, temp_.Text("FILE")));  // the same one
    EXPECT_EQ(copy.bytes, 30u);
    EXPECT_TRUE(Copy(70, temp_.Text("other")));
    EXPECT_EQ(copy.bytes, 100u);
    EXPECT_FALSE(Copy(1, temp_.Text("last")));
    EXPECT_EQ(copy.bytes, 101u);
    ASSERT_EQ(copy.contents.size(), 3u);
    const PretendedFile& copied = copy.contents.at(CopyKey(Path(file)));
    EXPECT_EQ(copied.path, temp_.Text("FILE"));
    EXPECT_EQ(copied.source, temp_.Text("source 30"));
    EXPECT_EQ(copied.bytes, 30u);
    EXPECT_EQ(At(file), FileType::File);
    EXPECT_EQ(ErrorOf(temp_.Text("folder")), 0u);
    CopiedFile inPlaceOfFolder(ToWide(temp_.Text("folder")));
    EXPECT_FALSE(inPlaceOfFolder.Open(CREATE_ALWAYS));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(PretendedCopyTest, HasAnyRoomWhereNobodyKnows) {
    const Hook<decltype(&GetDiskFreeSpaceExW)> unknown("GetDiskFreeSpaceExW",
                                                       test::FailsWith(ERROR_NOT_READY, FALSE));
    EXPECT_TRUE(Copy(60, temp_.Text("file")));
    EXPECT_EQ(rehearsal_.journal.copy.room, std::nullopt);
}

}  // namespace
}  // namespace launcher::mediatool
