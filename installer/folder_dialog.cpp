#include "installer/folder_dialog.h"

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shobjidl.h>

#include <string>

#include "fs/encoding.h"
#include "fs/path.h"
#include "installer/com.h"
#include "installer/folder_dialog_events.h"
#include "launcher/base/launch_options.h"

namespace launcher {
namespace {

ComPtr<IFileDialog> CreateFolderDialog(const ComApartment& com) {
    ComPtr<IFileDialog> dialog;
    FILEOPENDIALOGOPTIONS dialogOptions = 0;
    if (FAILED(com.CreateInstance(CLSID_FileOpenDialog, IID_PPV_ARGS(dialog.Put()))) ||
        FAILED(dialog->GetOptions(&dialogOptions)) ||
        FAILED(dialog->SetOptions(dialogOptions | FOS_PICKFOLDERS)))
        dialog.Reset();
    return dialog;
}

ComPtr<IFileDialogEvents> CreateEvents(LaunchOptions& options) {
    const ComPtr<FolderDialogEvents> creation(new FolderDialogEvents(options));
    ComPtr<IFileDialogEvents> events;
    creation->QueryInterface(IID_PPV_ARGS(events.Put()));
    return events;
}

// The start folder, two levels above the media; none for a medium near a drive's root, where
// Windows chooses.
ComPtr<IShellItem> StartFolder(const LaunchOptions& options) {
    const std::string folder = Parent(Parent(options.mediaDir)).Text();
    ComPtr<IShellItem> item;
    if (folder.empty()) return item;  // the shell may take an empty name for the desktop
    SHCreateItemFromParsingName(ToWide(folder).c_str(), nullptr, IID_PPV_ARGS(item.Put()));
    return item;
}

// True when the confirmed folder has a file-system path. The path itself is not needed: the lookup
// has already stored what counts.
bool HasFolderResult(const ComPtr<IFileDialog>& dialog) {
    ComPtr<IShellItem> result;
    return SUCCEEDED(dialog->GetResult(result.Put())) && FileSystemPath(result.Get());
}

}  // namespace

bool SelectInstallerFolder(LaunchOptions& options) {
    const ComApartment com;
    const ComPtr<IFileDialog> dialog = CreateFolderDialog(com);
    if (!dialog) return false;
    const std::string title =
        "Select the folder of the separate media called QN_Installer for " + options.osFolder;
    dialog->SetTitle(ToWide(title).c_str());
    const ComPtr<IFileDialogEvents> events = CreateEvents(options);
    DWORD cookie = 0;
    dialog->Advise(events.Get(), &cookie);
    const ComPtr<IShellItem> startFolder = StartFolder(options);
    if (startFolder) dialog->SetDefaultFolder(startFolder.Get());
    // After a cancel the events stay registered until the dialog is released, on return.
    if (FAILED(dialog->Show(nullptr))) return false;
    const bool confirmed = HasFolderResult(dialog);
    dialog->Unadvise(cookie);
    return confirmed;
}

}  // namespace launcher
