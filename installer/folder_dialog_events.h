#pragma once

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shobjidl.h>

#include "installer/com.h"

namespace launcher {

class LaunchOptions;

// The path of a shell folder, UTF-16; none for a virtual one, such as This PC. Needs an apartment.
// https://learn.microsoft.com/windows/win32/api/shobjidl_core/nf-shobjidl_core-ishellitem-getdisplayname
ComMemory<wchar_t> FileSystemPath(IShellItem* folder);

// Handles the events of the folder dialog: each time the dialog is about to enter a folder, the
// installer is looked for in it, quietly, and the OK button is shown when it is there and hidden
// when it is not. It never refuses a folder and ignores all other events.
//
// A COM object on the heap: its creator holds the first reference, and the last Release destroys
// it. It does not own the record that the lookup fills.
class FolderDialogEvents final : public IFileDialogEvents {
  public:
    explicit FolderDialogEvents(LaunchOptions& options) : options_(&options) {}
    FolderDialogEvents(const FolderDialogEvents&) = delete;
    FolderDialogEvents& operator=(const FolderDialogEvents&) = delete;

    IFACEMETHODIMP QueryInterface(REFIID iid, void** object) override;
    IFACEMETHODIMP_(ULONG) AddRef() override;
    IFACEMETHODIMP_(ULONG) Release() override;

    IFACEMETHODIMP OnFileOk(IFileDialog* dialog) override;
    IFACEMETHODIMP OnFolderChanging(IFileDialog* dialog, IShellItem* folder) override;
    IFACEMETHODIMP OnFolderChange(IFileDialog* dialog) override;
    IFACEMETHODIMP OnSelectionChange(IFileDialog* dialog) override;
    IFACEMETHODIMP OnShareViolation(IFileDialog* dialog, IShellItem* file,
                                    FDE_SHAREVIOLATION_RESPONSE* response) override;
    IFACEMETHODIMP OnTypeChange(IFileDialog* dialog) override;
    IFACEMETHODIMP OnOverwrite(IFileDialog* dialog, IShellItem* file,
                               FDE_OVERWRITE_RESPONSE* response) override;

  private:
    ~FolderDialogEvents() = default;

    volatile LONG references_ = 1;
    LaunchOptions* options_;
};

}  // namespace launcher
