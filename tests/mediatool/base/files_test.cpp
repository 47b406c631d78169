// What mediatool asks Windows about files, and how it reads the answers.

#include "mediatool/base/files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;
using namespace mediatool;

TEST(FullPath, IsNormalised) {
    EXPECT_EQ(FullPath("").Text(), "");
    EXPECT_EQ(FullPath("C:\\a\\..\\b/c\\.").Text(), "C:\\b\\c");
    EXPECT_EQ(FullPath("C:").Text(), "C:");
    EXPECT_EQ(FullPath("C:\\").Text(), "C:");
    EXPECT_EQ(FullPath("\\\\server\\share\\x").Text(), "\\\\server\\share\\x");
    EXPECT_EQ(FullPath("a").Text(), ToUtf8(stdfs::current_path() / "a"));
    const std::string longName(300, 'n');
    EXPECT_EQ(FullPath("C:\\" + longName + "\\" + longName).Text(),
              "C:\\" + longName + "\\" + longName);
}

// The current folder of the drive is another.
TEST(FullPath, OfADriveIsItsRoot) {
    const std::string here = ToUtf8(stdfs::current_path());
    EXPECT_EQ(FullPath(here.substr(0, 2)).Text(), here.substr(0, 2));
}

TEST(FullPaths, BeginAtARoot) {
    for (const char* path :
         {"C:", "C:\\", "C:\\a", "c:/a", "\\\\server\\share", "\\\\server\\share\\a"})
        EXPECT_TRUE(IsFull(Path(path))) << path;
    for (const char* path : {"", "a", "\\a", "C:a", "..", "a\\b"})
        EXPECT_FALSE(IsFull(Path(path))) << path;
}

TEST(ExtendedPaths, HaveAPrefix) {
    EXPECT_EQ(Extended("C:\\a"), L"\\\\?\\C:\\a");
    EXPECT_EQ(Extended("C:"), L"\\\\?\\C:\\");
    EXPECT_EQ(Extended("\\\\server\\share\\a"), L"\\\\?\\UNC\\server\\share\\a");
    EXPECT_EQ(Extended("\\\\?\\C:\\a"), L"\\\\?\\C:\\a");
}

// Of a file of more than 4 GB, with both halves of every number.
TEST(Look, TellsAllThatWindowsSays) {
    WIN32_FILE_ATTRIBUTE_DATA answer{};
    answer.nFileSizeHigh = 3;
    answer.nFileSizeLow = 5;
    answer.ftLastWriteTime = {7, 9};
    const Hook<decltype(&GetFileAttributesExW)> ask(
        "GetFileAttributesExW", [&answer](auto, LPCWSTR, auto, LPVOID data) -> BOOL {
            *static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data) = answer;
            return TRUE;
        });
    answer.dwFileAttributes = FILE_ATTRIBUTE_HIDDEN;
    const auto file = Look(Path("C:\\a\\b"));
    ASSERT_TRUE(file);
    EXPECT_EQ(file->name, "b");
    EXPECT_FALSE(file->isFolder);
    EXPECT_FALSE(file->isLink);
    EXPECT_EQ(file->size, 0x3'0000'0005u);
    EXPECT_EQ(file->modified, 0x9'0000'0007u);
    EXPECT_EQ(file->attributes, static_cast<DWORD>(FILE_ATTRIBUTE_HIDDEN));
    EXPECT_TRUE(IsFile(Path("C:\\a")));
    EXPECT_FALSE(IsFolder(Path("C:\\a")));
    answer.dwFileAttributes = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    const auto folder = Look(Path("C:\\a"));
    ASSERT_TRUE(folder);
    EXPECT_TRUE(folder->isFolder);
    EXPECT_TRUE(folder->isLink);
    EXPECT_EQ(folder->size, 0u);
    EXPECT_FALSE(IsFile(Path("C:\\a")));
    EXPECT_TRUE(IsFolder(Path("C:\\a")));
    EXPECT_FALSE(Look(Path()));
}

TEST(Look, AtWhatIsNotThere) {
    const TemporaryFolder scratch;
    const Path missing(scratch.Text("missing"));
    EXPECT_FALSE(Look(missing));
    EXPECT_FALSE(LookThrough(missing));
    EXPECT_FALSE(IsFile(missing));
    EXPECT_FALSE(IsFolder(missing));
    EXPECT_FALSE(List(missing));
    EXPECT_TRUE(EntriesOf(missing).empty());
    EXPECT_FALSE(ReadStart(missing, 1));
    EXPECT_FALSE(CanBeRead(missing.Text()));
    EXPECT_FALSE(CanBeOverwritten(missing.Text()));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_FALSE(IdentityOf(missing.Text()));
}

TEST(List, HasTheEntriesByTheirNames) {
    const TemporaryFolder scratch;
    scratch.Write("b.bin", "12345");
    scratch.Write("a/x.bin");
    const auto entries = List(Path(scratch.Text()));
    ASSERT_TRUE(entries);
    ASSERT_EQ(entries->size(), 2u);
    EXPECT_EQ(entries->front().name, "a");
    EXPECT_TRUE(entries->front().isFolder);
    EXPECT_EQ(entries->back().name, "b.bin");
    EXPECT_EQ(entries->back().size, 5u);
}

// Windows sorts by other rules, and some disks do not at all.
TEST(List, IsSorted) {
    const TemporaryFolder scratch;
    for (const char* name : {"a", "b", "c"})
        scratch.Write(name);
    const Hook<decltype(&FindNextFileW)> next(
        "FindNextFileW", [](auto real, HANDLE search, LPWIN32_FIND_DATAW data) -> BOOL {
            const BOOL found = real(search, data);
            if (data->cFileName[0] == L'a') data->cFileName[0] = L'z';
            return found;
        });
    const auto entries = List(Path(scratch.Text()));
    ASSERT_TRUE(entries);
    EXPECT_THAT(*entries, testing::ElementsAre(testing::Field(&Entry::name, "b"),
                                               testing::Field(&Entry::name, "c"),
                                               testing::Field(&Entry::name, "z")));
}

TEST(ReadStart, GivesNoMoreThanIsAskedFor) {
    const TemporaryFolder scratch;
    const Path file(scratch.Write("a.bin", "12345"));
    EXPECT_EQ(ReadStart(file, 3), "123");
    EXPECT_EQ(ReadStart(file, 9), "12345");
    EXPECT_FALSE(ReadStart(Path(scratch.Text()), 9));
}

TEST(ReadWhole, GivesAllInPieces) {
    const TemporaryFolder scratch;
    std::string content;
    for (int i = 0; i < 100'000; ++i)
        content += std::to_string(i);
    const Path file(scratch.Write("a.bin", content));
    std::string read;
    std::vector<std::size_t> pieces;
    ReadWhole(
        file,
        [&](std::string_view bytes) {
            read += bytes;
            pieces.push_back(bytes.size());
        },
        "read");
    EXPECT_TRUE(read == content);
    EXPECT_THAT(pieces, testing::ElementsAre(262'144u, content.size() - 262'144));
}

TEST(ReadWhole, SaysWhatCannotBeReadToItsEnd) {
    const TemporaryFolder scratch;
    const auto complaint = [&scratch](const char* name) -> std::string {
        try {
            ReadWhole(
                Path(scratch.Text(name)), [](std::string_view) {}, "copied");
        } catch (const Refused& failure) {
            return failure.what();
        }
        return "none";
    };
    const auto expected = [&scratch](const char* name, DWORD error) {
        return "\"" + scratch.Text(name) + "\" cannot be copied: " + ErrorText(error) + ".";
    };
    EXPECT_EQ(complaint("b.bin"), expected("b.bin", ERROR_FILE_NOT_FOUND));
    scratch.Write("a.bin", "x");
    const Hook<decltype(&::ReadFile)> broken("ReadFile", FailsWith(ERROR_CRC, FALSE));
    EXPECT_EQ(complaint("a.bin"), expected("a.bin", ERROR_CRC));
}

// A hint to the cache, for media that answer slowly.
TEST(ReadWhole, SaysThatItReadsFromTheStartToTheEnd) {
    const TemporaryFolder scratch;
    const Path file(scratch.Write("a.bin", "x"));
    DWORD asked = 0;
    const Hook<decltype(&CreateFileW)> open(
        "CreateFileW", [&asked](auto real, auto name, auto access, auto share, auto security,
                                auto disposition, DWORD flags, HANDLE like) {
            asked = flags;
            return real(name, access, share, security, disposition, flags, like);
        });
    ReadWhole(
        file, [](std::string_view) {}, "read");
    EXPECT_EQ(asked, static_cast<DWORD>(FILE_FLAG_SEQUENTIAL_SCAN));
}

// A file that others have open, in ways that do and do not keep it from them.
TEST(OpenFiles, CanBeReadWhereTheyAreShared) {
    const TemporaryFolder scratch;
    const std::string file = scratch.Write("a.bin", "x");
    EXPECT_TRUE(CanBeRead(file));
    EXPECT_TRUE(CanBeOverwritten(file));
    const auto opened = [&file](DWORD access, DWORD share) {
        return FileHandle(
            CreateFileW(ToWide(file).c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr));
    };
    {
        const FileHandle writer = opened(GENERIC_WRITE | DELETE, FILE_SHARE_READ);
        EXPECT_TRUE(CanBeRead(file));
        EXPECT_FALSE(CanBeOverwritten(file));
    }
    {
        const FileHandle reader =
            opened(GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
        EXPECT_TRUE(CanBeRead(file));
        EXPECT_FALSE(CanBeOverwritten(file));
    }
    const FileHandle alone = opened(GENERIC_READ, 0);
    EXPECT_FALSE(CanBeRead(file));
}

TEST(OpenFiles, ThatAreRunningProgramsAreNotOverwritten) {
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    EXPECT_TRUE(CanBeRead(ToNarrow(program)));
    EXPECT_FALSE(CanBeOverwritten(ToNarrow(program)));
}

TEST(ProtectedFiles, AreNotOverwritten) {
    const TemporaryFolder scratch;
    const std::string file = scratch.Write("a.bin", "x");
    for (const DWORD attribute : {DWORD{FILE_ATTRIBUTE_READONLY}, DWORD{FILE_ATTRIBUTE_HIDDEN},
                                  DWORD{FILE_ATTRIBUTE_SYSTEM}}) {
        const Hook<decltype(&GetFileAttributesW)> ask(
            "GetFileAttributesW",
            [attribute](auto, LPCWSTR) { return attribute | FILE_ATTRIBUTE_ARCHIVE; });
        SetLastError(0);
        EXPECT_FALSE(CanBeOverwritten(file)) << attribute;
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
    }
    const Hook<decltype(&GetFileAttributesW)> ask(
        "GetFileAttributesW", [](auto, LPCWSTR) -> DWORD { return FILE_ATTRIBUTE_ARCHIVE; });
    EXPECT_TRUE(CanBeOverwritten(file));
}

TEST(Identity, IsTheDisksAndItsOwn) {
    const TemporaryFolder scratch;
    const std::string file = scratch.Write("a.bin", "x");
    ASSERT_TRUE(IdentityOf(file));
    EXPECT_EQ(IdentityOf(file), IdentityOf(file));
    EXPECT_NE(IdentityOf(file), IdentityOf(scratch.Write("b.bin")));
    BY_HANDLE_FILE_INFORMATION answer{};
    const Hook<decltype(&GetFileInformationByHandle)> ask(
        "GetFileInformationByHandle", [&answer](auto, HANDLE, auto data) -> BOOL {
            *data = answer;
            return TRUE;
        });
    answer.dwVolumeSerialNumber = 4;
    EXPECT_FALSE(IdentityOf(file)) << "a disk that does not tell";
    answer.nFileIndexHigh = 3;
    answer.nFileIndexLow = 5;
    ASSERT_TRUE(IdentityOf(file));
    EXPECT_EQ(IdentityOf(file)->volume, 4u);
    EXPECT_EQ(IdentityOf(file)->index, 0x3'0000'0005u);
    answer.nFileSizeLow = 6;
    const auto seen = LookThrough(Path(file));
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->name, "a.bin");
    EXPECT_EQ(seen->size, 6u);
}

TEST(Identity, IsNoneWhereItCannotBeAskedFor) {
    const TemporaryFolder scratch;
    const std::string file = scratch.Write("a.bin", "x");
    const Hook<decltype(&GetFileInformationByHandle)> ask("GetFileInformationByHandle",
                                                          [](auto, HANDLE, auto data) {
                                                              data->nFileIndexLow = 5;
                                                              return FALSE;
                                                          });
    EXPECT_FALSE(IdentityOf(file));
    EXPECT_FALSE(LookThrough(Path(file)));
}

TEST(FinalPath, HasNoPrefixOfWindows) {
    const TemporaryFolder scratch;
    std::wstring full;
    const Hook<decltype(&GetFinalPathNameByHandleW)> name(
        "GetFinalPathNameByHandleW", [&full](auto, HANDLE, LPWSTR path, DWORD size, DWORD how) {
            EXPECT_EQ(how, DWORD{VOLUME_NAME_DOS});
            return static_cast<DWORD>(full.copy(path, size));
        });
    const auto path = [&](const wchar_t* answer) {
        full = answer;
        return FinalPath(Path(scratch.Text())).Text();
    };
    EXPECT_EQ(path(L"\\\\?\\C:\\a\\b"), "C:\\a\\b");
    EXPECT_EQ(path(L"\\\\?\\UNC\\server\\share"), "\\\\server\\share");
    EXPECT_EQ(path(L"\\\\?\\Volume{1}\\a"), Path("\\\\?\\Volume{1}\\a").Text());
    EXPECT_EQ(path(L""), scratch.Text());
    full = L"\\\\?\\C:\\a";
    EXPECT_EQ(FinalPath(Path(scratch.Text("missing\\too"))).Text(), "C:\\a\\missing\\too");
}

TEST(ErrorText, EndsWithoutAFullStop) {
    for (const DWORD error : {DWORD{ERROR_FILE_NOT_FOUND}, DWORD{ERROR_ACCESS_DENIED}}) {
        const std::string text = ErrorText(error);
        EXPECT_FALSE(text.empty());
        EXPECT_FALSE(text.ends_with('.') || text.ends_with(' ')) << text;
    }
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(LastErrorText(), ErrorText(ERROR_ACCESS_DENIED));
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(WhyNot(Path("C:\\a"), "made"),
              "\"C:\\a\" cannot be made: " + ErrorText(ERROR_ACCESS_DENIED) + ".");
}

TEST(LongPaths, AreEnabledByOneValueOfTheRegistry) {
    DWORD value = 0;
    LSTATUS status = ERROR_SUCCESS;
    std::wstring asked;
    const Hook<decltype(&RegGetValueW)> registry(
        "RegGetValueW",
        [&](auto, HKEY key, LPCWSTR path, LPCWSTR name, DWORD flags, auto, PVOID data, auto) {
            asked = std::wstring(path) + L"|" + name;
            EXPECT_EQ(key, HKEY_LOCAL_MACHINE);
            EXPECT_EQ(flags, static_cast<DWORD>(RRF_RT_REG_DWORD));
            *static_cast<DWORD*>(data) = value;
            return status;
        });
    EXPECT_FALSE(AreLongPathsEnabled());
    value = 2;
    EXPECT_FALSE(AreLongPathsEnabled());
    value = 1;
    EXPECT_TRUE(AreLongPathsEnabled());
    EXPECT_EQ(asked, L"SYSTEM\\CurrentControlSet\\Control\\FileSystem|LongPathsEnabled");
    status = ERROR_FILE_NOT_FOUND;
    EXPECT_FALSE(AreLongPathsEnabled());
}

TEST(Names, AreComparedAsWindowsDoes) {
    EXPECT_TRUE(
        SameName("Gr\xC3\x96\xC3\x9F"
                 "E",
                 "gr\xC3\xB6\xC3\x9F"
                 "e"));
    EXPECT_FALSE(SameName("a", "ab"));
    EXPECT_TRUE(SameName(Path("C:\\a"), Path("c:\\A")));
    EXPECT_TRUE(IsAmong(Path("B"), {Path("a"), Path("b")}));
    EXPECT_FALSE(IsAmong(Path("c"), {Path("a"), Path("b")}));
    EXPECT_TRUE(IsWithin(Path("C:\\A\\b"), Path("c:\\a")));
    EXPECT_TRUE(IsWithin(Path("C:\\a"), Path("C:\\a")));
    EXPECT_FALSE(IsWithin(Path("C:\\ab"), Path("C:\\a")));
    EXPECT_FALSE(IsWithin(Path("C:\\a"), Path("C:\\a\\b")));
    EXPECT_EQ(InLowerCase("AB\xC3\x96"), "ab\xC3\xB6");
    EXPECT_EQ(WideLength("a\xC3\xB6\xF0\x9F\x92\xBF"), 4u);
}

}  // namespace
}  // namespace launcher::test
