#include "tests/support/wine.h"

#include <algorithm>

#include "fs/encoding.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

namespace {

template <class Function>
Function* FromKernel32(const char* name) {
    const auto address = GetProcAddress(GetModuleHandleW(L"kernel32"), name);
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(address));
}

void WriteString(const std::wstring& key, const wchar_t* name, const std::wstring& value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, key.c_str(), name, REG_SZ, value.c_str(),
                    static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

stdfs::path SystemFile(const std::string& name) {
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    return stdfs::path(folder) / name;
}

stdfs::path SavedName(const stdfs::path& file) {
    return file.native() + L".saved";
}

void PutBack(const stdfs::path& file) {
    std::error_code ignored;  // when there is nothing to put back
    stdfs::rename(SavedName(file), file, ignored);
}

}  // namespace

bool IsWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll"), "wine_get_version") != nullptr;
}

bool StumbledOverWine(const std::vector<std::string>& messages) {
    return IsWine() && std::ranges::any_of(messages, [](const std::string& text) {
               return text.find("Setup failed to create process\n") != std::string::npos &&
                      text.find("\nrc=1359") != std::string::npos;
           });
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
    : key_(L"Software\\Wine\\AppDefaults\\" + ToWide(exeName)) {
    RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str());  // left by a program that was killed
}

WineSettings::~WineSettings() {
    RegDeleteTreeW(HKEY_CURRENT_USER, key_.c_str());
}

void WineSettings::PoseAs(const std::string& version) {
    if (IsWine()) WriteString(key_, L"Version", ToWide(version));
}

void WineSettings::OverrideDll(const std::string& dll, const std::string& order) {
    if (!IsWine()) return;
    const std::string file = dll + ".dll";
    if (!Claim::Exists(ToWide(file))) PutBack(SystemFile(file));
    WriteString(key_ + L"\\DllOverrides", ToWide(dll).c_str(), ToWide(order));
}

SystemDll::SystemDll(const std::string& name, const stdfs::path& replacement)
    : claim_(ToWide(name)), path_(SystemFile(name)) {
    PutBack(path_);
    stdfs::rename(path_, SavedName(path_));
    stdfs::copy_file(replacement, path_);
}

SystemDll::~SystemDll() {
    PutBack(path_);
}

}  // namespace launcher::test
