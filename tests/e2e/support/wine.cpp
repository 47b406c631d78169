#include "tests/e2e/support/wine.h"

#include <cstdlib>
#include <stdexcept>

#include "fs/encoding.h"
#include "installer/installer_process.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

namespace {

template <class Function>
Function* FromKernel32(const char* name) {
    const auto address = GetProcAddress(GetModuleHandleW(L"kernel32"), name);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
}

// The name that the system below Wine has for a path.
std::string UnixText(const stdfs::path& path) {
    using GetUnixFileName = char* CDECL(const wchar_t*);
    auto* const getUnixFileName = FromKernel32<GetUnixFileName>("wine_get_unix_file_name");
    char* const text = getUnixFileName(path.c_str());
    const std::string result = text == nullptr ? "" : text;
    HeapFree(GetProcessHeap(), 0, text);
    return result;
}

// The folder of links in which Wine finds its drives, as the system below it names it.
std::string DrivesFolder() {
    return ToNarrow(_wgetenv(L"WINEPREFIX")) + "/dosdevices";
}

// Starts a program of the system below Wine. Its end cannot be waited for.
void StartUnix(const std::string& commandLine) {
    std::wstring buffer = ToWide(commandLine);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    ProcessInformation process;
    CreateProcessW(nullptr, buffer.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                   &process);
}

bool Exists(const std::string& path) {
    return GetFileAttributesW(ToWide(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

void WriteString(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), name, REG_SZ, value.c_str(),
                    static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

bool IsWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll"), "wine_get_version") != nullptr;
}

stdfs::path BuiltFile(const char* path) {
    using GetDosFileName = wchar_t* CDECL(const char*);
    auto* const getDosFileName = FromKernel32<GetDosFileName>("wine_get_dos_file_name");
    if (getDosFileName == nullptr || *path != '/') return FromUtf8(path);
    wchar_t* const text = getDosFileName(path);
    const stdfs::path result = text;
    HeapFree(GetProcessHeap(), 0, text);
    return result;
}

WineSettings::WineSettings(const std::string& exeName)
    : key_(L"Software\\Wine\\AppDefaults\\" + ToWide(exeName)) {}

WineSettings::~WineSettings() {
    RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str());
}

void WineSettings::PoseAs(const std::string& version) {
    WriteString(key_, L"Version", ToWide(version));
}

void WineSettings::OverrideDll(const std::string& dll, const std::string& order) {
    WriteString(key_ + L"\\DllOverrides", ToWide(dll).c_str(), ToWide(order));
}

MappedDrive::MappedDrive(std::string drive, const stdfs::path& folder)
    : drive_(std::move(drive)), target_(folder.native()) {
    if (Exists(drive_ + "\\")) throw std::runtime_error(drive_ + " is taken");
    if (IsWine())
        StartUnix("Z:\\bin\\ln -s \"" + UnixText(folder) + "\" " + DrivesFolder() + "/" + drive_);
    else
        DefineDosDeviceW(0, ToWide(drive_).c_str(), target_.c_str());
    for (int i = 0; i < 100 && !Exists(drive_ + "\\"); ++i)
        Sleep(20);
    if (!Exists(drive_ + "\\")) throw std::runtime_error(drive_ + " cannot be mapped");
}

MappedDrive::~MappedDrive() {
    if (IsWine())
        StartUnix("Z:\\bin\\rm " + DrivesFolder() + "/" + drive_);
    else
        DefineDosDeviceW(DDD_REMOVE_DEFINITION | DDD_EXACT_MATCH_ON_REMOVE, ToWide(drive_).c_str(),
                         target_.c_str());
}

stdfs::path NetworkFolder() {
    const stdfs::path share = L"\\\\localhost\\share";
    if (!IsWine()) {
        std::wstring temp = stdfs::temp_directory_path().native();
        temp[1] = L'$';  // the administrators' share of a drive
        return L"\\\\localhost\\" + temp;
    }
    stdfs::create_directories(BuiltFile((DrivesFolder() + "/unc/localhost/share").c_str()));
    return share;
}

SystemDll::SystemDll(const std::string& name, const stdfs::path& replacement) {
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    path_ = stdfs::path(folder) / name;
    saved_ = path_.native() + L".saved";
    stdfs::rename(path_, saved_);
    stdfs::copy_file(replacement, path_);
}

SystemDll::~SystemDll() {
    std::error_code ignored;
    stdfs::rename(saved_, path_, ignored);
}

}  // namespace launcher::test
