#include "fs/errno_code.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>
#include <windows.h>

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include "fs/owners.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

// The C runtime's own table, as far as files can bring up its codes; and the ends of its range of
// hardware and sharing errors.
TEST(ErrnoFromWindowsError, GivesTheRuntimesValue) {
    const std::pair<int, std::vector<DWORD>> rows[] = {
        std::pair{ENOENT, std::vector<DWORD>{2, 3, 15, 18, 53, 67, 161, 206}},
        std::pair{EMFILE, std::vector<DWORD>{4}},
        std::pair{EACCES, std::vector<DWORD>{5, 16, 19, 24, 36, 65, 82, 83, 108, 158, 167}},
        std::pair{EBADF, std::vector<DWORD>{6}},
        std::pair{ENOMEM, std::vector<DWORD>{7, 8, 9, 1816}},
        std::pair{EEXIST, std::vector<DWORD>{80, 183}},
        std::pair{EPIPE, std::vector<DWORD>{109}},
        std::pair{ENOSPC, std::vector<DWORD>{112}},
        std::pair{EINVAL, std::vector<DWORD>{0, 1, 37, 123, 0xFFFFFFFF}}};
    for (const auto& [value, codes] : rows)
        for (const DWORD code : codes)
            EXPECT_EQ(ErrnoFromWindowsError(code), value) << "error " << code;
}

// The same situation once through the C runtime and once through Windows.
class ErrnoAgreementTest : public testing::Test {
  protected:
    enum class Mode { Read, Write };

    static int ErrnoOfRuntime(const std::wstring& path, Mode mode) {
        const int flags = mode == Mode::Read ? _O_RDONLY : _O_WRONLY | _O_CREAT | _O_TRUNC;
        int file = -1;
        const int error =
            _wsopen_s(&file, path.c_str(), flags | _O_BINARY, _SH_DENYNO, _S_IREAD | _S_IWRITE);
        if (error == 0) _close(file);
        return error;
    }

    static int ErrnoOfWindows(const std::wstring& path, Mode mode) {
        const bool reads = mode == Mode::Read;
        const HANDLE file = CreateFileW(
            path.c_str(), reads ? GENERIC_READ : GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
            nullptr, reads ? OPEN_EXISTING : CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE) return ErrnoFromWindowsError(GetLastError());
        CloseHandle(file);
        return 0;
    }

    static void ExpectAgreement(const std::wstring& path, Mode mode) {
        const int expected = ErrnoOfRuntime(path, mode);
        EXPECT_NE(expected, 0);
        EXPECT_EQ(ErrnoOfWindows(path, mode), expected);
    }

    std::wstring PathOf(const char* name) const { return (folder_.Dir() / name).wstring(); }
    std::wstring NewFile(const char* name) const {
        folder_.Write(name, "content");
        return PathOf(name);
    }

    test::TemporaryFolder folder_;
};

TEST_F(ErrnoAgreementTest, OnWhatIsMissing) {
    ExpectAgreement(PathOf("missing"), Mode::Read);
    ExpectAgreement(PathOf("missing\\file"), Mode::Read);
    ExpectAgreement(PathOf("missing\\file"), Mode::Write);
}

TEST_F(ErrnoAgreementTest, OnAFolderAndBelowAFile) {
    folder_.MakeDir("folder");
    ExpectAgreement(PathOf("folder"), Mode::Read);
    ExpectAgreement(PathOf("folder"), Mode::Write);
    NewFile("file");
    ExpectAgreement(PathOf("file\\below"), Mode::Read);
    ExpectAgreement(PathOf("file\\below"), Mode::Write);
}

TEST_F(ErrnoAgreementTest, OnAReadOnlyFile) {
    const std::wstring path = NewFile("file");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    // Without an error there is nothing to compare. Runs on Windows, and on Wine for any other
    // user.
    if (ErrnoOfWindows(path, Mode::Write) == 0)
        GTEST_SKIP() << "Wine lets the host's root write read-only files";
    ExpectAgreement(path, Mode::Write);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(ErrnoAgreementTest, OnAFileInUse) {
    const std::wstring path = NewFile("file");
    const FileHandle user(
        CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ExpectAgreement(path, Mode::Read);
    ExpectAgreement(path, Mode::Write);
}

TEST_F(ErrnoAgreementTest, OnNamesThatCannotBe) {
    for (const char* const name : {"a<b", "a|b", "a?b", "a*b"}) {
        SCOPED_TRACE(name);
        ExpectAgreement(PathOf(name), Mode::Read);
        ExpectAgreement(PathOf(name), Mode::Write);
    }
    ExpectAgreement(PathOf(std::string(300, 'n').c_str()), Mode::Read);
}

TEST_F(ErrnoAgreementTest, OnADriveThatIsNotThere) {
    ASSERT_EQ(GetDriveTypeW(L"B:\\"), static_cast<UINT>(DRIVE_NO_ROOT_DIR));
    ExpectAgreement(L"B:\\file", Mode::Read);
    ExpectAgreement(L"B:\\file", Mode::Write);
}

}  // namespace
}  // namespace launcher
