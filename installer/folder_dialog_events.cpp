#include "installer/folder_dialog_events.h"

#include <shlwapi.h>

#include "fs/encoding.h"
#include "media/installer_media.h"

namespace launcher {
namespace {

// The dialog's OK button; null when the dialog does not show its window.
HWND OkButton(const ComPtr<IOleWindow>& dialog) {
    HWND window = nullptr;
    dialog->GetWindow(&window);
    return GetDlgItem(window, IDOK);
}

}  // namespace

ComMemory<wchar_t> FileSystemPath(IShellItem* folder) {
    wchar_t* path = nullptr;
    // Owned after success only: a shell may leave there what it has released already (Wine's does).
    if (FAILED(folder->GetDisplayName(SIGDN_FILESYSPATH, &path))) return {};
    return ComMemory<wchar_t>(path);
}

IFACEMETHODIMP FolderDialogEvents::QueryInterface(REFIID iid, void** object) {
    static const QITAB interfaces[] = {{&IID_IFileDialogEvents, 0}, {nullptr, 0}};
    return QISearch(this, interfaces, iid, object);
}

IFACEMETHODIMP_(ULONG) FolderDialogEvents::AddRef() {
    return static_cast<ULONG>(InterlockedIncrement(&references_));
}

IFACEMETHODIMP_(ULONG) FolderDialogEvents::Release() {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
}

IFACEMETHODIMP FolderDialogEvents::OnFolderChanging(IFileDialog* dialog, IShellItem* folder) {
    const ComMemory<wchar_t> path = FileSystemPath(folder);
    if (!path) return S_OK;  // a virtual folder changes nothing
    ComPtr<IOleWindow> window;
    if (FAILED(dialog->QueryInterface(IID_PPV_ARGS(window.Put())))) return S_OK;
    const HWND button = OkButton(window);
    const bool found = LocateInstaller(*options_, ToNarrow(path.Get()), /*quiet=*/true);
    ShowWindow(button, found ? SW_SHOW : SW_HIDE);
    return S_OK;
}

IFACEMETHODIMP FolderDialogEvents::OnFileOk(IFileDialog*) {
    return S_OK;
}
IFACEMETHODIMP FolderDialogEvents::OnFolderChange(IFileDialog*) {
    return S_OK;
}
IFACEMETHODIMP FolderDialogEvents::OnSelectionChange(IFileDialog*) {
    return S_OK;
}
IFACEMETHODIMP FolderDialogEvents::OnShareViolation(IFileDialog*, IShellItem*,
                                                    FDE_SHAREVIOLATION_RESPONSE*) {
    return S_OK;
}
IFACEMETHODIMP FolderDialogEvents::OnTypeChange(IFileDialog*) {
    return S_OK;
}
IFACEMETHODIMP FolderDialogEvents::OnOverwrite(IFileDialog*, IShellItem*, FDE_OVERWRITE_RESPONSE*) {
    return S_OK;
}

}  // namespace launcher
