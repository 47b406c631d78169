#include "installer/folder_dialog.h"

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shobjidl.h>

#include <string>

#include "fs/owners.h"
#include "fs/path.h"
#include "fs/text.h"
#include "installer/folder_dialog_events.h"
#include "launcher/launch_options.h"

namespace launcher {
namespace {

ComPtr<IFileDialog> CreateFolderDialog() {
    ComPtr<IFileDialog> dialog;
    FILEOPENDIALOGOPTIONS dialogOptions = 0;
    if (FAILED(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_ALL, IID_IFileDialog,
                                reinterpret_cast<void**>(dialog.Put()))) ||
        FAILED(dialog->GetOptions(&dialogOptions)) ||
        FAILED(dialog->SetOptions(dialogOptions | FOS_PICKFOLDERS)))
        dialog.Reset();
    return dialog;
}

ComPtr<IFileDialogEvents> CreateEvents(LaunchOptions& options) {
    const ComPtr<FolderDialogEvents> creation(new FolderDialogEvents(options));
    ComPtr<IFileDialogEvents> events;
    creation->QueryInterface(IID_IFileDialogEvents, reinterpret_cast<void**>(events.Put()));
    return events;
}

// The start folder, two levels above the media; none for a media near a drive's root, where
// Windows chooses.
ComPtr<IShellItem> StartFolder(const LaunchOptions& options) {
    const std::string folder = Parent(Parent(options.mediaDir)).Text();
    ComPtr<IShellItem> item;
    if (folder.empty()) return item;  // which the shell may take for its desktop
    SHCreateItemFromParsingName(ToWide(folder).c_str(), nullptr, IID_IShellItem,
                                reinterpret_cast<void**>(item.Put()));
    return item;
}

// True when the confirmed folder has a file-system path. The path itself is not needed: the lookup
// has already stored what counts.
bool HasFolderResult(const ComPtr<IFileDialog>& dialog) {
    ComPtr<IShellItem> result;
    if (FAILED(dialog->GetResult(result.Put()))) return false;
    ComMemory<wchar_t> path;
    return SUCCEEDED(result->GetDisplayName(SIGDN_FILESYSPATH, path.Put()));
}

}  // namespace

bool SelectInstallerFolder(LaunchOptions& options) {
    const ComPtr<IFileDialog> dialog = CreateFolderDialog();
    if (!dialog) return false;
    const std::string title =
        "Select the folder of the separate media called QN_Installer for " + options.osFolder;
    dialog->SetTitle(ToWide(title).c_str());
    const ComPtr<IFileDialogEvents> events = CreateEvents(options);
    DWORD cookie = 0;
    dialog->Advise(events.Get(), &cookie);
    const ComPtr<IShellItem> startFolder = StartFolder(options);
    if (startFolder) dialog->SetDefaultFolder(startFolder.Get());
    // After a cancel the events stay advised until the dialog goes, which is right below.
    if (FAILED(dialog->Show(nullptr))) return false;
    const bool confirmed = HasFolderResult(dialog);
    dialog->Unadvise(cookie);
    return confirmed;
}

}  // namespace launcher
