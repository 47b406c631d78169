#pragma once

// Stand-ins for the shell's objects. They live in the test, count their references from 0 and
// write what is asked of them into the journal.

#include <windows.h>
// windows.h first: the shell headers need it.
#include <shobjidl.h>

#include <cstddef>
#include <string>

namespace launcher::test {

template <class Interface>
class FakeObject : public Interface {
  public:
    FakeObject() = default;
    FakeObject(const FakeObject&) = delete;
    FakeObject& operator=(const FakeObject&) = delete;

    ULONG References() const { return references_; }

    IFACEMETHODIMP QueryInterface(REFIID, void** object) override {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    IFACEMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    IFACEMETHODIMP_(ULONG) Release() override { return --references_; }

    // Hands out a reference, as a function that makes an object does.
    template <class Pointer>
    HRESULT GiveTo(Pointer** place) {
        *place = this;
        AddRef();
        return S_OK;
    }

  private:
    ULONG references_ = 0;
};

// A folder with a path in the file system, or without one where `path` is empty.
class FakeShellItem : public FakeObject<IShellItem> {
  public:
    std::wstring path;

    IFACEMETHODIMP GetDisplayName(SIGDN form, LPWSTR* name) override;

    IFACEMETHODIMP BindToHandler(IBindCtx*, REFGUID, REFIID, void**) override { return E_NOTIMPL; }
    IFACEMETHODIMP GetParent(IShellItem**) override { return E_NOTIMPL; }
    IFACEMETHODIMP GetAttributes(SFGAOF, SFGAOF*) override { return E_NOTIMPL; }
    IFACEMETHODIMP Compare(IShellItem*, SICHINTF, int*) override { return E_NOTIMPL; }
};

class FakeOleWindow : public FakeObject<IOleWindow> {
  public:
    HWND window = nullptr;  // null: GetWindow fails

    IFACEMETHODIMP GetWindow(HWND* place) override;

    IFACEMETHODIMP ContextSensitiveHelp(BOOL) override { return E_NOTIMPL; }
};

// A folder dialog in which the user enters `entered` and then confirms or cancels.
class FakeFileDialog : public FakeObject<IFileDialog> {
  public:
    FakeOleWindow window;
    bool hasWindow = true;  // whether it gives `window` for IOleWindow

    FILEOPENDIALOGOPTIONS options = 0x800;
    HRESULT getOptions = S_OK;
    HRESULT setOptions = S_OK;
    HRESULT setTitle = S_OK;
    HRESULT advise = S_OK;
    HRESULT show = S_OK;
    HRESULT getResult = S_OK;
    FakeShellItem entered;
    FakeShellItem result;
    IFileDialogEvents* events = nullptr;  // the advised ones

    IFACEMETHODIMP QueryInterface(REFIID iid, void** object) override;
    IFACEMETHODIMP_(ULONG) Release() override;

    IFACEMETHODIMP Show(HWND owner) override;
    IFACEMETHODIMP Advise(IFileDialogEvents* sink, DWORD* cookie) override;
    IFACEMETHODIMP Unadvise(DWORD cookie) override;
    IFACEMETHODIMP SetOptions(FILEOPENDIALOGOPTIONS value) override;
    IFACEMETHODIMP GetOptions(FILEOPENDIALOGOPTIONS* value) override;
    IFACEMETHODIMP SetDefaultFolder(IShellItem* folder) override;
    IFACEMETHODIMP SetTitle(LPCWSTR title) override;
    IFACEMETHODIMP GetResult(IShellItem** item) override;

    IFACEMETHODIMP SetFileTypes(UINT, const COMDLG_FILTERSPEC*) override { return E_NOTIMPL; }
    IFACEMETHODIMP SetFileTypeIndex(UINT) override { return E_NOTIMPL; }
    IFACEMETHODIMP GetFileTypeIndex(UINT*) override { return E_NOTIMPL; }
    IFACEMETHODIMP SetFolder(IShellItem*) override { return E_NOTIMPL; }
    IFACEMETHODIMP GetFolder(IShellItem**) override { return E_NOTIMPL; }
    IFACEMETHODIMP GetCurrentSelection(IShellItem**) override { return E_NOTIMPL; }
    IFACEMETHODIMP SetFileName(LPCWSTR) override { return E_NOTIMPL; }
    IFACEMETHODIMP GetFileName(LPWSTR*) override { return E_NOTIMPL; }
    IFACEMETHODIMP SetOkButtonLabel(LPCWSTR) override { return E_NOTIMPL; }
    IFACEMETHODIMP SetFileNameLabel(LPCWSTR) override { return E_NOTIMPL; }
    IFACEMETHODIMP AddPlace(IShellItem*, FDAP) override { return E_NOTIMPL; }
    IFACEMETHODIMP SetDefaultExtension(LPCWSTR) override { return E_NOTIMPL; }
    IFACEMETHODIMP Close(HRESULT) override { return E_NOTIMPL; }
    IFACEMETHODIMP SetClientGuid(REFGUID) override { return E_NOTIMPL; }
    IFACEMETHODIMP ClearClientData() override { return E_NOTIMPL; }
    IFACEMETHODIMP SetFilter(IShellItemFilter*) override { return E_NOTIMPL; }
};

}  // namespace launcher::test
