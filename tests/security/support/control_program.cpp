// A program that does what its arguments say, one after the other: what is loaded into it is the
// measure for what may be loaded into the launcher. It has the launcher's own imports.
//
//   restrict  restricts the search for libraries, as the launcher does first of all
//   map       looks at a web library as the launcher does; without one the exit code is 1
//   box       shows a message box
//   dialog    shows the dialog for folders

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shellapi.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <cwchar>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "fs/path.h"
#include "installer/com.h"
#include "platform/libraries.h"
#include "platform/module_path.h"
#include "platform/owners.h"

namespace {

using launcher::ComPtr;
using launcher::Library;
using launcher::LocalMemory;

// Like the launcher, this program does without the library of COM until it needs a dialog.
template <class Function>
Function FromCom(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"ole32.dll"), name)));
}

// The launcher's start folder, if it stood in this program's place.
ComPtr<IShellItem> StartFolder() {
    const launcher::Path programs(launcher::GetModuleDirectory());
    ComPtr<IShellItem> item;
    SHCreateItemFromParsingName(
        launcher::ToWide(launcher::Parent(launcher::Parent(programs)).Text()).c_str(), nullptr,
        IID_PPV_ARGS(item.Put()));
    return item;
}

// Like the launcher's: what a dialog draws decides what Wine loads.
void ShowDialog() {
    FromCom<decltype(&CoInitializeEx)>("CoInitializeEx")(
        nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    ComPtr<IFileDialog> dialog;
    FromCom<decltype(&CoCreateInstance)>("CoCreateInstance")(
        CLSID_FileOpenDialog, nullptr, CLSCTX_ALL, IID_IFileDialog,
        reinterpret_cast<void**>(dialog.Put()));
    if (!dialog) return;
    FILEOPENDIALOGOPTIONS options = 0;
    dialog->GetOptions(&options);
    dialog->SetOptions(options | FOS_PICKFOLDERS);
    if (const ComPtr<IShellItem> folder = StartFolder()) dialog->SetDefaultFolder(folder.Get());
    dialog->Show(nullptr);
}

// Imports that the launcher has and this program does not need.
void KeepImports() {
    [[maybe_unused]] const volatile auto advapi32 = &OpenProcessToken;
    [[maybe_unused]] const volatile auto shlwapi = &PathIsRelativeW;
}

bool FindsWebLibrary() {
    return bool(Library(LoadLibraryExW(L"wininet.dll", nullptr, DONT_RESOLVE_DLL_REFERENCES)));
}

int Do(const wchar_t* action) {
    if (std::wcscmp(action, L"restrict") == 0) launcher::RestrictDllSearch();
    if (std::wcscmp(action, L"map") == 0 && !FindsWebLibrary()) return 1;
    if (std::wcscmp(action, L"box") == 0) MessageBoxW(nullptr, action, nullptr, MB_ICONERROR);
    if (std::wcscmp(action, L"dialog") == 0) ShowDialog();
    return 0;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    KeepImports();
    int count = 0;
    const LocalMemory<wchar_t*> arguments(CommandLineToArgvW(GetCommandLineW(), &count));
    int result = 0;
    for (int i = 1; i < count; ++i)
        result |= Do(arguments.Get()[i]);
    return result;
}
