// Mistakes in the tree below inst, and in what lies under locks.

#include <windows.h>

#include <functional>
#include <optional>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "tests/mediatool/validate/mistake_row.h"
#include "tests/support/hook.h"
#include "tests/support/links.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

constexpr char kExe[] = "inst/win_b64/code/bin/ZEPInsAppliGUI.exe";

// Nothing else is found but `others`, as Changes() tells them.
void ExpectFound(const Validation& validation, const std::string& id, Level level,
                 const std::string& others = {}, Layout layout = Layout::NotSplit) {
    const std::vector<Finding> findings = validation.findings.Sorted();
    const auto found = std::ranges::find(findings, id, &Finding::id);
    ASSERT_NE(found, findings.end()) << "found only: " << Ids(validation);
    EXPECT_EQ(found->level, level);
    EXPECT_EQ(ChangesBut(id, validation, layout), others);
}

// And all that is said is in the list.
void ExpectWhole(const Validation& validation, const std::string& id, Level level,
                 const std::string& others = {}, Layout layout = Layout::NotSplit) {
    ExpectFound(validation, id, level, others, layout);
    ExpectListed(validation, layout);
}

// A name that Windows itself does not give. Returns false where the system refuses it all the same.
bool WriteRaw(const std::string& path) {
    const FileHandle file(CreateFileW(mediatool::Extended(path).c_str(), GENERIC_WRITE, 0, nullptr,
                                      CREATE_ALWAYS, 0, nullptr));
    return static_cast<bool>(file);
}

void RemoveRaw(const std::string& path) {
    DeleteFileW(mediatool::Extended(path).c_str());
}

TEST(TreeMistakes, AReservedName) {
    SampleMedia media;
    const std::string file = media.Text("inst") + "\\aux.txt";
    ASSERT_TRUE(WriteRaw(file));
    const Validation validation = media.Validate();
    ExpectWhole(validation, "name-reserved", Level::Error);
    EXPECT_EQ(validation.findings.Sorted().front().why,
              "Before Windows 11 and Windows Server 2025, Windows opens the device in place of the "
              "file.");
    RemoveRaw(file);
    EXPECT_FALSE(Has(media.Validate(), "name-reserved"));
}

// Windows does not count the blanks.
TEST(TreeMistakes, AReservedNameWithBlanksBehindIt) {
    SampleMedia media;
    const std::string file = media.Text("inst") + "\\con .txt";
    ASSERT_TRUE(WriteRaw(file));
    ExpectWhole(media.Validate(), "name-reserved", Level::Error);
    RemoveRaw(file);
}

TEST(TreeMistakes, ANameThatEndsInADot) {
    SampleMedia media;
    const std::string file = media.Text("inst") + "\\readme.";
    ASSERT_TRUE(WriteRaw(file));
    ExpectWhole(media.Validate(), "name-ends-in-dot-or-blank", Level::Error);
    RemoveRaw(file);
}

TEST(TreeMistakes, ANameOutsideTheConsolesCodePage) {
    SampleMedia media;
    media.Write("inst/common/漢字.txt");
    ExpectWhole(media.Validate(), "name-outside-oem-code-page", Level::Note);
}

// 174 characters: in a copy for the user with the longest name, the file's path has the first
// length that is too long, 260. Here it can be opened, below a temporary folder of 41 characters at
// most.
std::string LongName() {
    return "inst/" + std::string(84, 'a') + "/" + std::string(80, 'b') + ".dll";
}

TEST(TreeMistakes, APathThatGetsTooLongInACopy) {
    SampleMedia media;
    media.Write(LongName(), "x");
    ExpectFound(media.Validate(), "path-too-long-in-copy", Level::Note);
    mediatool::ValidateRequest request;
    request.folders = {media.Text()};
    request.temp = "C:\\T";
    EXPECT_FALSE(Has(mediatool::Validate(request), "path-too-long-in-copy"));
}

// A medium is for other machines as well: what this one takes is said, and changes nothing.
TEST(TreeMistakes, APathThatGetsTooLongInACopyOnAMachineThatTakesIt) {
    SampleMedia media;
    media.Write(LongName(), "x");
    for (const DWORD enabled : {DWORD{0}, DWORD{1}}) {
        const Hook<decltype(&RegGetValueW)> registry(
            "RegGetValueW", [enabled](auto, auto, auto, auto, auto, auto, PVOID value, auto) {
                *static_cast<DWORD*>(value) = enabled;
                return LSTATUS{ERROR_SUCCESS};
            });
        const Validation validation = media.Validate();
        ExpectFound(validation, "path-too-long-in-copy", Level::Note);
        const std::vector<Finding> findings = validation.findings.Sorted();
        const auto found = std::ranges::find(findings, "path-too-long-in-copy", &Finding::id);
        EXPECT_EQ(found->what,
                  std::string("In a copy, the path would have 260 characters; Windows takes 259 "
                              "unless long paths are enabled") +
                      (enabled == 1 ? ", as they are here." : "."));
    }
}

TEST(TreeMistakes, APathThatGetsTooLongInACopyThatMayBeMade) {
    SampleMedia media(Layout::Siblings);
    media.Write(LongName(), "x");
    ExpectFound(media.Validate(), "path-too-long-in-copy", Level::Warning, "", Layout::Siblings);
}

TEST(TreeMistakes, APathThatGetsTooLongInACopyThatWillBeMade) {
    SampleMedia media(Layout::Siblings);
    media.Write(LongName(), "x").Remove("../3");
    ExpectFound(media.Validate(), "path-too-long-in-copy", Level::Error, "volume-missing",
                Layout::Siblings);
}

TEST(TreeMistakes, ATemporaryFolderThatRemoveBatCannotName) {
    const SampleMedia media;
    mediatool::ValidateRequest request;
    request.folders = {media.Text()};
    request.temp = "C:\\Users\\José\\Temp";
    ExpectWhole(mediatool::Validate(request), "temp-outside-oem-code-page", Level::Warning);
    request.temp = "C:\\Users\\Jose\\Temp";
    EXPECT_FALSE(Has(mediatool::Validate(request), "temp-outside-oem-code-page"));
}

TEST(TreeMistakes, ATemporaryFolderThatIsNoFullPathIsRefused) {
    const SampleMedia media;
    mediatool::ValidateRequest request;
    request.folders = {media.Text()};
    for (const char* temp : {"", "Temp", "\\Temp", "C:Temp", ".."}) {
        request.temp = temp;
        EXPECT_THROW(mediatool::Validate(request), mediatool::BadInput) << temp;
    }
    for (const char* temp : {"C:\\Temp", "c:/Temp/", "D:", "\\\\server\\share"}) {
        request.temp = temp;
        EXPECT_NO_THROW(mediatool::Validate(request)) << temp;
    }
}

TEST(TreeMistakes, ALinkToAFolder) {
    SampleMedia media;
    media.MakeDir("../target");
    const FolderLink link(FromUtf8(media.Text("inst/link")), FromUtf8(media.Text("../target")));
    ExpectWhole(media.Validate(), "link", Level::Warning);
}

TEST(TreeMistakes, ALinkToAFolderThatItIsIn) {
    SampleMedia media;
    const FolderLink link(FromUtf8(media.Text("inst/link")), FromUtf8(media.Text("inst")));
    ExpectWhole(media.Validate(), "link-loop", Level::Error);
}

TEST(TreeMistakes, ALinkThatLeadsNowhere) {
    SampleMedia media;
    media.MakeDir("../target");
    const FolderLink link(FromUtf8(media.Text("inst/link")), FromUtf8(media.Text("../target")));
    std::optional<Hook<decltype(&CreateFileW)>> gone;
    if (!IsWine())
        media.Remove("../target");
    else  // it lists no link whose target is gone
        gone.emplace("CreateFileW", [](auto real, LPCWSTR name, auto... rest) -> HANDLE {
            if (!std::wstring(name).ends_with(L"\\inst\\link")) return real(name, rest...);
            SetLastError(ERROR_FILE_NOT_FOUND);
            return INVALID_HANDLE_VALUE;
        });
    ExpectWhole(media.Validate(), "link-broken", Level::Error);
}

// The launcher, empty and with an empty inst beside it, at a path of this length.
Validation WithALauncherAt(std::size_t length) {
    const TemporaryFolder folder;
    const std::string parent = folder.Text() + "\\" + std::string(120, 'm');
    const std::string name = "\\setup.exe";
    const std::string media =
        parent + "\\" + std::string(length - parent.size() - 1 - name.size(), 'n');
    CreateDirectoryW(mediatool::Extended(parent).c_str(), nullptr);
    CreateDirectoryW(mediatool::Extended(media).c_str(), nullptr);
    EXPECT_TRUE(WriteRaw(media + name));
    CreateDirectoryW(mediatool::Extended(media + "\\inst").c_str(), nullptr);
    mediatool::ValidateRequest request;
    request.folders = {media};
    const Validation validation = mediatool::Validate(request);
    RemoveRaw(media + name);
    RemoveDirectoryW(mediatool::Extended(media + "\\inst").c_str());
    RemoveDirectoryW(mediatool::Extended(media).c_str());
    return validation;
}

TEST(PlaceMistakes, ALauncherWhosePathIsCut) {
    const std::string others =
        "launcher-empty not-for-windows root-entry-missing -launcher-not-signed "
        "-not-for-32-bit-windows";
    const Validation validation = WithALauncherAt(260);
    ExpectFound(validation, "launcher-path-cut", Level::Error, others);
    const std::vector<Finding> findings = validation.findings.Sorted();
    const auto found = std::ranges::find(findings, "launcher-path-cut", &Finding::id);
    ASSERT_NE(found, findings.end());
    EXPECT_EQ(found->what,
              "The path of setup.exe has 260 characters; the launcher reads its own up to 259.");
    EXPECT_EQ(Changes(WithALauncherAt(259)), others);
}

TEST(PlaceMistakes, AnInstallerWhosePathIsTooLong) {
    SampleMedia media;
    // 259 characters can be started.
    const std::string deep = media.Text() + "\\";
    const std::string tail = "\\inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe";
    const std::string folder = deep + std::string(260 - deep.size() - tail.size(), 'm');
    const auto findings = [&folder](const std::string& to) {
        MoveFileW(ToWide(folder).c_str(), ToWide(to).c_str());
        mediatool::ValidateRequest request;
        request.folders = {to};
        return mediatool::Validate(request);
    };
    CreateDirectoryW(ToWide(folder).c_str(), nullptr);
    for (const char* name : {"setup.exe", "meta.TOCxml", "media.xml", "media.db", "StartTUI.exe",
                             "setup_noUAC.exe", "inst"})
        media.Rename(name, folder.substr(deep.size()) + "/" + name);
    const Validation tooLong = findings(folder);
    ExpectFound(tooLong, "installer-path-too-long", Level::Error);
    EXPECT_EQ(tooLong.findings.Sorted().front().what,
              "The path of the installer has 260 characters.");
    EXPECT_EQ(tooLong.findings.Sorted().front().why,
              "Windows starts programs whose paths have up to 259.");
    const std::string fits = folder.substr(0, folder.size() - 1);
    EXPECT_EQ(Changes(findings(fits)), "");
}

TEST(PlaceMistakes, AnOuterVolumeAtTheRootOfADrive) {
    SampleMedia media(Layout::Outer);
    const MappedDrive drive(FromUtf8(media.Text("../..")));
    mediatool::ValidateRequest request;
    request.folders = {ToUtf8(drive.Root() / "media" / "1")};
    ExpectFound(mediatool::Validate(request), "outer-volume-at-drive-root", Level::Error, "",
                Layout::Outer);
}

TEST(PlaceMistakes, EachVolumeOnADriveOfItsOwn) {
    SampleMedia media(Layout::Siblings, 2);
    media.Rename("../2", "../../elsewhere");
    const MappedDrive first("n:", FromUtf8(media.Text()));
    const MappedDrive second("o:", FromUtf8(media.Text("../../elsewhere")));
    mediatool::ValidateRequest request;
    request.folders = {ToUtf8(first.Root()), ToUtf8(second.Root())};
    ExpectWhole(mediatool::Validate(request), "volumes-on-other-drives", Level::Warning);
}

TEST(TreeMistakes, AFolderThatCannotBeListed) {
    SampleMedia media;
    media.Write("inst/closed/part.bin");
    const Hook<decltype(&FindFirstFileW)> denied(
        "FindFirstFileW", [](auto real, LPCWSTR pattern, auto data) -> HANDLE {
            if (!std::wstring(pattern).ends_with(L"\\closed\\*")) return real(pattern, data);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
    ExpectWhole(media.Validate(), "folder-unreadable", Level::Error);
}

// On a disc that tells capitals apart.
constexpr auto kQIsPart = [](auto real, HANDLE search, auto data) -> BOOL {
    const BOOL found = real(search, data);
    if (found && std::wstring(data->cFileName) == L"Q.bin")
        std::wstring(L"PART.BIN").copy(data->cFileName, 9);
    return found;
};

TEST(TreeMistakes, NamesThatDifferInCapitals) {
    SampleMedia media;
    media.Write("inst/data/Part.bin", "x").Write("inst/data/Q.bin", "x");
    const Hook<decltype(&FindNextFileW)> twice("FindNextFileW", kQIsPart);
    const Validation validation = media.Validate();
    ExpectWhole(validation, "name-differs-in-case", Level::Error);
    EXPECT_EQ(validation.findings.Sorted().front().what,
              "The name differs from PART.BIN, beside it, only in its capitals.");
}

TEST(TreeMistakes, NamesAtTheRootThatDifferInCapitals) {
    SampleMedia media;
    media.Write("Part.bin", "x").Write("Q.bin", "x");
    const Hook<decltype(&FindNextFileW)> twice("FindNextFileW", kQIsPart);
    ExpectWhole(media.Validate(), "name-differs-in-case", Level::Error);
}

// What a link leads to has its own name and size.
TEST(TreeMistakes, LinksToFiles) {
    SampleMedia media;
    media.Write("inst/data/x.tmp", "x").Write("inst/data/x.exe");
    const Hook<decltype(&FindNextFileW)> links(
        "FindNextFileW", [](auto real, HANDLE search, auto data) -> BOOL {
            const BOOL found = real(search, data);
            if (found && std::wstring(data->cFileName).starts_with(L"x."))
                data->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
            return found;
        });
    ExpectWhole(media.Validate(), "link", Level::Warning);
}

// Batch scripts see them there.
TEST(TreeMistakes, NoNameIsOutsideTheCodePageOfUtf8) {
    SampleMedia media;
    media.Write("inst/common/漢字.txt");
    const Hook<decltype(&GetOEMCP)> utf8("GetOEMCP", [](auto) -> UINT { return CP_UTF8; });
    EXPECT_EQ(Changes(media.Validate()), "");
}

TEST(TreeMistakes, AVolumeThatCannotBeListed) {
    const SampleMedia media(Layout::Siblings);
    const Hook<decltype(&FindFirstFileW)> denied(
        "FindFirstFileW", [](auto real, LPCWSTR pattern, auto data) -> HANDLE {
            if (!std::wstring(pattern).ends_with(L"\\set\\2\\*")) return real(pattern, data);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
    ExpectWhole(media.Validate(), "folder-unreadable", Level::Error, "", Layout::Siblings);
}

// It has a count file, in a folder that cannot be listed.
TEST(TreeMistakes, VolumeOneIsNotSaidToBeEmpty) {
    SampleMedia media(Layout::Siblings);
    for (const char* name :
         {"setup.exe", "meta.TOCxml", "media.xml", "media.db", "StartTUI.exe", "setup_noUAC.exe"})
        media.Remove(name);
    media.Write("1.txt", "notes of a meeting");
    const Hook<decltype(&FindFirstFileW)> denied(
        "FindFirstFileW", [](auto real, LPCWSTR pattern, auto data) -> HANDLE {
            if (!std::wstring(pattern).ends_with(L"\\inst\\*")) return real(pattern, data);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
    ExpectFound(media.Validate(), "volume-marker-no-id", Level::Error,
                "folder-unreadable launcher-missing root-entry-missing -launcher-not-signed",
                Layout::Siblings);
}

TEST(TreeMistakes, AListingThatBreaksOff) {
    SampleMedia media;
    media.Write("inst/data/part.bin", "x").Write("inst/data/rest.bin", "x");
    const Hook<decltype(&FindNextFileW)> broken(
        "FindNextFileW", [](auto real, HANDLE search, auto data) -> BOOL {
            const BOOL found = real(search, data);
            if (!found || std::wstring(data->cFileName) != L"rest.bin") return found;
            SetLastError(ERROR_CRC);
            return FALSE;
        });
    ExpectWhole(media.Validate(), "folder-unreadable", Level::Error);
}

// The launcher's own search did not find the volume, and a moment later it was there.
TEST(PlaceMistakes, AVolumeThatComesAndGoes) {
    const SampleMedia media(Layout::Siblings);
    bool isThere = false;
    const Hook<decltype(&CreateFileW)> comesAndGoes(
        "CreateFileW", [&isThere](auto real, LPCWSTR name, auto... rest) -> HANDLE {
            if (isThere || !std::wstring(name).ends_with(L"\\3\\3.txt")) return real(name, rest...);
            isThere = true;
            SetLastError(ERROR_NOT_READY);
            return INVALID_HANDLE_VALUE;
        });
    ExpectWhole(media.Validate(), "volumes-not-found", Level::Error, "", Layout::Siblings);
}

// A file that another program has open for itself alone.
class LockedFile {
  public:
    explicit LockedFile(const std::string& path)
        : file_(CreateFileW(ToWide(path).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0,
                            nullptr)) {}

  private:
    FileHandle file_;
};

TEST(LockedFiles, ARootEntry) {
    const SampleMedia media;
    const LockedFile lock(media.Text("media.db"));
    ExpectWhole(media.Validate(), "root-entry-unreadable", Level::Warning);
}

TEST(LockedFiles, AnInstaller) {
    const SampleMedia media;
    const LockedFile lock(media.Text(kExe));
    const Validation validation = media.Validate();
    ExpectWhole(validation, "installer-unreadable", Level::Error);
    EXPECT_FALSE(Has(validation, "file-unreadable"));
}

// It can be opened, as on a damaged disc.
TEST(UnreadableFiles, AnInstaller) {
    constexpr LONGLONG kSize = 1000;
    SampleMedia media;
    std::string program = ProgramBytes(kX64);
    program.resize(kSize);
    media.Write(kExe, program);
    const Hook<decltype(&::ReadFile)> broken(
        "ReadFile", [](auto real, HANDLE file, LPVOID data, DWORD size, auto... rest) {
            LARGE_INTEGER length{};
            GetFileSizeEx(file, &length);
            if (length.QuadPart != kSize || size == 0) return real(file, data, size, rest...);
            SetLastError(ERROR_CRC);
            return FALSE;
        });
    ExpectFound(media.Validate(), "installer-unreadable", Level::Error);
}

TEST(LockedFiles, AnyFileBelowInst) {
    SampleMedia media;
    media.Write("inst/data/part.bin", "part");
    EXPECT_FALSE(Has(media.Validate(), "file-unreadable"));
    const LockedFile lock(media.Text("inst/data/part.bin"));
    const Validation validation = media.Validate();
    ExpectWhole(validation, "file-unreadable", Level::Error);
    EXPECT_EQ(validation.findings.Sorted().front().file, media.Text("inst\\data\\part.bin"));
}

TEST(LockedFiles, TheCountFile) {
    const SampleMedia media(Layout::Siblings);
    const LockedFile lock(media.Text("inst/volumes.txt"));
    ExpectWhole(media.Validate(), "count-file-unreadable", Level::Error);
}

TEST(LockedFiles, AVolumeMarker) {
    const SampleMedia media(Layout::Siblings);
    const LockedFile lock(media.Text("../2/2.txt"));
    ExpectWhole(media.Validate(), "volume-marker-unreadable", Level::Error);
}

}  // namespace
}  // namespace launcher::test
