#include "tests/installer/fake_shell.h"

#include <cwchar>

#include "fs/text.h"
#include "tests/launcher/journal.h"

namespace launcher::test {
namespace {

constexpr DWORD kCookie = 42;

}  // namespace

HRESULT FakeShellItem::GetDisplayName(SIGDN form, LPWSTR* name) {
    Record(form == SIGDN_FILESYSPATH ? "path of a folder" : "another name of a folder");
    if (path.empty()) return E_INVALIDARG;
    *name = static_cast<wchar_t*>(CoTaskMemAlloc((path.size() + 1) * sizeof(wchar_t)));
    std::wmemcpy(*name, path.c_str(), path.size() + 1);
    return S_OK;
}

HRESULT FakeOleWindow::GetWindow(HWND* place) {
    if (window == nullptr) return E_FAIL;
    *place = window;
    return S_OK;
}

HRESULT FakeFileDialog::QueryInterface(REFIID iid, void** object) {
    if (IsEqualIID(iid, IID_IOleWindow) && hasWindow)
        return window.GiveTo(reinterpret_cast<IOleWindow**>(object));
    return FakeObject::QueryInterface(iid, object);
}

// A dialog that goes lets go of its events, too.
ULONG FakeFileDialog::Release() {
    const ULONG left = FakeObject::Release();
    if (left == 0 && events != nullptr) {
        Record("dialog gone with its events");
        events->Release();
        events = nullptr;
    }
    return left;
}

HRESULT FakeFileDialog::Show(HWND owner) {
    Record(owner == nullptr ? "Show" : "Show with an owner");
    if (events != nullptr) events->OnFolderChanging(this, &entered);
    return show;
}

HRESULT FakeFileDialog::Advise(IFileDialogEvents* sink, DWORD* cookie) {
    Record("Advise");
    if (FAILED(advise)) return advise;
    events = sink;
    events->AddRef();
    *cookie = kCookie;
    return S_OK;
}

HRESULT FakeFileDialog::Unadvise(DWORD cookie) {
    Record(cookie == kCookie ? "Unadvise" : "Unadvise another");
    if (events == nullptr) return E_FAIL;
    events->Release();
    events = nullptr;
    return S_OK;
}

HRESULT FakeFileDialog::SetOptions(FILEOPENDIALOGOPTIONS value) {
    Record("SetOptions");
    if (SUCCEEDED(setOptions)) options = value;
    return setOptions;
}

HRESULT FakeFileDialog::GetOptions(FILEOPENDIALOGOPTIONS* value) {
    Record("GetOptions");
    if (SUCCEEDED(getOptions)) *value = options;
    return getOptions;
}

HRESULT FakeFileDialog::SetDefaultFolder(IShellItem* folder) {
    wchar_t* path = nullptr;
    folder->GetDisplayName(SIGDN_FILESYSPATH, &path);
    Record("SetDefaultFolder " + ToNarrow(path));
    CoTaskMemFree(path);
    return S_OK;
}

HRESULT FakeFileDialog::SetTitle(LPCWSTR title) {
    Record("SetTitle " + ToNarrow(title));
    return setTitle;
}

HRESULT FakeFileDialog::GetResult(IShellItem** item) {
    Record("GetResult");
    return FAILED(getResult) ? getResult : result.GiveTo(item);
}

std::size_t FreeCounter::count_;
decltype(&CoTaskMemFree) FreeCounter::real_;

FreeCounter::FreeCounter() {
    count_ = 0;
    real_ = reinterpret_cast<decltype(real_)>(patch_.Original());
}

void FreeCounter::CountFree(void* memory) {
    if (memory != nullptr) ++count_;
    real_(memory);
}

}  // namespace launcher::test
