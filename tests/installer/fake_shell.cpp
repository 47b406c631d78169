#include "tests/installer/fake_shell.h"

#include <cwchar>

#include "fs/encoding.h"
#include "tests/support/journal.h"

namespace launcher::test {
namespace {

constexpr DWORD kCookie = 42;

}  // namespace

IFACEMETHODIMP FakeShellItem::GetDisplayName(SIGDN form, LPWSTR* name) {
    Record(form == SIGDN_FILESYSPATH ? "path of a folder" : "another name of a folder");
    if (path.empty()) {
        static wchar_t notYours[] = L"";
        *name = notYours;
        return E_INVALIDARG;
    }
    *name = static_cast<wchar_t*>(CoTaskMemAlloc((path.size() + 1) * sizeof(wchar_t)));
    std::wmemcpy(*name, path.c_str(), path.size() + 1);
    return S_OK;
}

IFACEMETHODIMP FakeOleWindow::GetWindow(HWND* place) {
    if (window == nullptr) return E_FAIL;
    *place = window;
    return S_OK;
}

IFACEMETHODIMP FakeFileDialog::QueryInterface(REFIID iid, void** object) {
    if (IsEqualIID(iid, IID_IOleWindow) && hasWindow)
        return window.GiveTo(reinterpret_cast<IOleWindow**>(object));
    return FakeObject::QueryInterface(iid, object);
}

// A dialog that goes lets go of its events.
IFACEMETHODIMP_(ULONG) FakeFileDialog::Release() {
    const ULONG left = FakeObject::Release();
    if (left == 0 && events != nullptr) {
        Record("dialog gone, events held by " + std::to_string(events->Release()));
        events = nullptr;
    }
    return left;
}

IFACEMETHODIMP FakeFileDialog::Show(HWND owner) {
    Record(owner == nullptr ? "Show" : "Show with an owner");
    if (events != nullptr) events->OnFolderChanging(this, &entered);
    return show;
}

IFACEMETHODIMP FakeFileDialog::Advise(IFileDialogEvents* sink, DWORD* cookie) {
    Record("Advise");
    if (FAILED(advise)) return advise;
    events = sink;
    events->AddRef();
    *cookie = kCookie;
    return S_OK;
}

IFACEMETHODIMP FakeFileDialog::Unadvise(DWORD cookie) {
    if (cookie != kCookie || events == nullptr) {
        Record("Unadvise another");
        return E_INVALIDARG;
    }
    Record("Unadvise, events held by " + std::to_string(events->Release()));
    events = nullptr;
    return S_OK;
}

IFACEMETHODIMP FakeFileDialog::SetOptions(FILEOPENDIALOGOPTIONS value) {
    Record("SetOptions");
    if (SUCCEEDED(setOptions)) options = value;
    return setOptions;
}

IFACEMETHODIMP FakeFileDialog::GetOptions(FILEOPENDIALOGOPTIONS* value) {
    Record("GetOptions");
    if (SUCCEEDED(getOptions)) *value = options;
    return getOptions;
}

IFACEMETHODIMP FakeFileDialog::SetDefaultFolder(IShellItem* folder) {
    wchar_t* path = nullptr;
    folder->GetDisplayName(SIGDN_FILESYSPATH, &path);
    Record("SetDefaultFolder " + ToNarrow(path));
    CoTaskMemFree(path);
    return S_OK;
}

IFACEMETHODIMP FakeFileDialog::SetTitle(LPCWSTR title) {
    Record("SetTitle " + ToNarrow(title));
    return setTitle;
}

IFACEMETHODIMP FakeFileDialog::GetResult(IShellItem** item) {
    Record("GetResult");
    return FAILED(getResult) ? getResult : result.GiveTo(item);
}

}  // namespace launcher::test
