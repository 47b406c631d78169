#include "tests/support/links.h"

#include <windows.h>

#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string_view>

#include "fs/encoding.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

using UnixName = char*(CDECL*)(const wchar_t*);

// What Wine adds to kernel32; null on Windows.
UnixName WineUnixName() {
    return reinterpret_cast<UnixName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32"), "wine_get_unix_file_name")));
}

std::wstring OnHost(const stdfs::path& path) {
    char* const name = WineUnixName()(path.c_str());
    if (name == nullptr) throw std::runtime_error("no host name for " + path.string());
    const std::string text = name;
    HeapFree(GetProcessHeap(), 0, name);
    return ToWide(text);
}

// Wine's folder of drive letters and servers, on the host, with a slash at the end.
std::wstring DevicesOnHost() {
    const std::wstring root = OnHost(L"C:\\");
    return root.substr(0, root.rfind(L"c:"));
}

std::wstring DriveOnHost(const std::wstring& letter) {
    return DevicesOnHost() + letter;
}

constexpr int kPatience = 2000;  // times 5 milliseconds

bool IsThere(const stdfs::path& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Runs a program of the host. Wine gives no process to wait for: waits until `path` is there, or
// no longer is.
void RunOnHost(const std::wstring& program, const std::wstring& arguments, const stdfs::path& path,
               bool appears) {
    std::wstring command = program + L" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW((L"Z:\\bin\\" + program).c_str(), command.data(), nullptr, nullptr, FALSE,
                        0, nullptr, nullptr, &startup, &process))
        throw std::runtime_error("cannot run a program of the host");
    for (int i = 0; i < kPatience && IsThere(path) != appears; ++i)
        Sleep(5);
}

// Wine looks at its drives at a process's first question of each second, and takes a file's volume
// number from the nearest drive above it, which it knows by the number of its folder. Until it has
// looked, files below a new drive get that volume's number in the middle of a comparison; and a new
// folder that has the number of a removed one is taken for the drive that led there.
void WaitUntilWineLooks() {
    constexpr DWORD kClocksDiffer = 20;  // milliseconds, at most
    Sleep(kClocksDiffer);
    for (const std::time_t second = std::time(nullptr); std::time(nullptr) == second;)
        Sleep(5);
    Sleep(kClocksDiffer);
}

// In the place of a link that leads nowhere, which nobody here can see.
void LinkOnHost(const std::wstring& link, const std::wstring& target, const stdfs::path& path) {
    RunOnHost(L"ln", L"-sfn \"" + target + L"\" \"" + link + L"\"", path, true);
}

void UnlinkOnHost(const std::wstring& link, const stdfs::path& path) {
    RunOnHost(L"rm", L"\"" + link + L"\"", path, false);
}

// Whether a drive may be a test's, rather than this machine's own. Under Wine all are: its folder
// of drives is the tests' own, and nobody here asks for C: or Z:.
bool MayBeOfATest(const std::wstring& letter) {
    if (IsWine()) return true;
    wchar_t target[MAX_PATH] = {};
    return QueryDosDeviceW(letter.c_str(), target, MAX_PATH) != 0 &&
           std::wstring_view(target).find(kTemporaryFolderName) != std::wstring_view::npos;
}

void RemoveDrive(const std::wstring& letter) {
    if (IsWine())
        UnlinkOnHost(DriveOnHost(letter), letter + L"\\");
    else
        DefineDosDeviceW(DDD_REMOVE_DEFINITION, letter.c_str(), nullptr);
}

// Windows shares each drive, C: as C$.
stdfs::path AdministratorsShare(const stdfs::path& path) {
    std::wstring name = path.native();
    name.at(1) = L'$';
    return name;
}

std::string FreeDrive() {
    const DWORD used = GetLogicalDrives();
    for (char letter = 'y'; letter > 'd'; --letter) {
        const std::string drive = {letter, ':'};
        const std::wstring wide = ToWide(drive);
        if ((used & (DWORD{1} << (letter - 'a'))) == 0 ||
            (!Claim::Exists(wide) && MayBeOfATest(wide)))
            return drive;
    }
    throw std::runtime_error("no free drive letter");
}

}  // namespace

FolderLink::FolderLink(const stdfs::path& link, const stdfs::path& target) : link_(link) {
    if (IsWine())
        LinkOnHost(OnHost(link), OnHost(target), link);
    else
        _wsystem(
            (L"mklink /J \"" + link.wstring() + L"\" \"" + target.wstring() + L"\" >nul").c_str());
    const DWORD attributes = GetFileAttributesW(link.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        throw std::runtime_error("no link at " + link.string());
}

FolderLink::~FolderLink() {
    if (IsWine())
        UnlinkOnHost(OnHost(link_), link_);
    else
        RemoveDirectoryW(link_.c_str());
}

MappedDrive::MappedDrive(const stdfs::path& folder) : MappedDrive(FreeDrive(), folder) {}

MappedDrive::MappedDrive(const std::string& drive, const stdfs::path& folder)
    : letter_(ToWide(drive)), claim_(letter_) {
    // Left by a program that was killed: the claim says that none which runs has it.
    if (IsThere(Root()) && MayBeOfATest(letter_)) RemoveDrive(letter_);
    if (IsThere(Root())) throw std::runtime_error(drive + " is taken");
    if (IsWine())
        LinkOnHost(DriveOnHost(letter_), OnHost(folder), Root());
    else
        DefineDosDeviceW(0, letter_.c_str(), folder.c_str());
    if (!IsThere(Root())) throw std::runtime_error("no drive " + Root().string());
    if (IsWine()) WaitUntilWineLooks();
}

MappedDrive::~MappedDrive() {
    RemoveDrive(letter_);
    if (IsWine()) WaitUntilWineLooks();
}

SmallDisk::SmallDisk(const stdfs::path& folder) : folder_(folder), below_(folder / "below") {
    WriteFile(below_, "");
    if (!IsWine()) return;
    RunOnHost(L"mount", L"-t tmpfs -o size=256k launcher-test \"" + OnHost(folder_) + L"\"", below_,
              false);
}

SmallDisk::~SmallDisk() {
    if (IsThere()) RunOnHost(L"umount", L"\"" + OnHost(folder_) + L"\"", below_, true);
}

bool SmallDisk::IsThere() const {
    return !stdfs::exists(below_);
}

stdfs::path NetworkName(const stdfs::path& path) {
    const stdfs::path server = L"\\\\localhost\\";
    if (!IsWine()) return server / AdministratorsShare(path);
    const stdfs::path share = server / L"C$";
    if (!IsThere(share)) {
        const std::wstring folder = DevicesOnHost() + L"unc/localhost/";
        RunOnHost(L"mkdir", L"-p \"" + folder + L"\"", server, true);
        LinkOnHost(folder + L"C$", L"../../c:", share);
    }
    if (path.root_name() != L"C:") throw std::runtime_error("not on C: " + path.string());
    return share / path.relative_path();
}

stdfs::path NetworkFolder() {
    if (!IsWine()) return NetworkName(UsersTemp());
    stdfs::create_directories(
        BuiltFile(ToNarrow((DevicesOnHost() + L"unc/localhost/share").c_str()).c_str()));
    return L"\\\\localhost\\share";
}

}  // namespace launcher::test
