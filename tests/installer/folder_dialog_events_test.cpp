#include "installer/folder_dialog_events.h"

#include <shlobj.h>

#include <cstddef>
#include <cstdlib>
#include <new>

#include "installer/com.h"
#include "tests/installer/fake_shell.h"
#include "tests/installer/fakes.h"
#include "tests/support/temporary_folder.h"

namespace {

// Whether this object was deleted.
const void* watched = nullptr;
bool deleted = false;

}  // namespace

void* operator new(std::size_t size) {
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    if (memory != nullptr && memory == watched) deleted = true;
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}

namespace launcher {
namespace {

using testing::ElementsAre;

// A dialog's window, never shown, with or without an OK button.
class DialogWindow {
  public:
    explicit DialogWindow(int buttonId = IDOK)
        : window_(CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100, nullptr,
                                  nullptr, nullptr, nullptr)),
          button_(CreateWindowExW(0, L"BUTTON", L"OK", WS_CHILD | WS_VISIBLE, 0, 0, 50, 20, window_,
                                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(buttonId)), nullptr,
                                  nullptr)) {}
    DialogWindow(const DialogWindow&) = delete;
    DialogWindow& operator=(const DialogWindow&) = delete;
    ~DialogWindow() { DestroyWindow(window_); }

    HWND Get() const { return window_; }
    bool ShowsButton() const { return (GetWindowLongW(button_, GWL_STYLE) & WS_VISIBLE) != 0; }

  private:
    HWND window_;
    HWND button_;
};

class FolderDialogEventsTest : public test::InstallerTest {
  protected:
    FolderDialogEventsTest() {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        dialog_.window.window = window_.Get();
        folder_.path = L"D:\\\u00E4\u20AC b";
    }

    // Everything that was handed out has come back.
    ~FolderDialogEventsTest() override {
        EXPECT_EQ(events_->Release(), 0u);
        EXPECT_EQ(dialog_.References(), 0u);
        EXPECT_EQ(dialog_.window.References(), 0u);
        EXPECT_EQ(folder_.References(), 0u);
        CoUninitialize();
    }

    void Enter(IShellItem* folder) { EXPECT_EQ(events_->OnFolderChanging(&dialog_, folder), S_OK); }

    FolderDialogEvents* const events_ = new FolderDialogEvents(options_);
    const DialogWindow window_;
    test::FakeFileDialog dialog_;
    test::FakeShellItem folder_;
};

TEST_F(FolderDialogEventsTest, GoWithTheLastReference) {
    auto* const events = new FolderDialogEvents(options_);
    watched = events;
    deleted = false;
    EXPECT_EQ(events->AddRef(), 2u);
    EXPECT_EQ(events->Release(), 1u);
    EXPECT_FALSE(deleted);
    EXPECT_EQ(events->Release(), 0u);
    EXPECT_TRUE(deleted);
    watched = nullptr;
}

TEST_F(FolderDialogEventsTest, GiveTheirTwoInterfacesWithAReference) {
    for (const IID& iid : {IID_IUnknown, IID_IFileDialogEvents}) {
        void* object = nullptr;
        EXPECT_EQ(events_->QueryInterface(iid, &object), S_OK);
        EXPECT_EQ(object, static_cast<IFileDialogEvents*>(events_));
        EXPECT_EQ(events_->Release(), 1u);
    }
}

TEST_F(FolderDialogEventsTest, GiveNoOtherInterface) {
    for (const IID& iid : {IID_IFileDialog, IID_IOleWindow, IID_IShellItem}) {
        void* object = this;
        EXPECT_EQ(events_->QueryInterface(iid, &object), E_NOINTERFACE);
        EXPECT_EQ(object, nullptr);
    }
    EXPECT_EQ(events_->AddRef(), 2u);
    events_->Release();
}

TEST_F(FolderDialogEventsTest, LetEverythingElsePass) {
    EXPECT_EQ(events_->OnFileOk(&dialog_), S_OK);
    EXPECT_EQ(events_->OnFolderChange(&dialog_), S_OK);
    EXPECT_EQ(events_->OnSelectionChange(&dialog_), S_OK);
    EXPECT_EQ(events_->OnTypeChange(&dialog_), S_OK);
    FDE_SHAREVIOLATION_RESPONSE violation = FDESVR_REFUSE;
    EXPECT_EQ(events_->OnShareViolation(&dialog_, &folder_, &violation), S_OK);
    EXPECT_EQ(violation, FDESVR_REFUSE);
    FDE_OVERWRITE_RESPONSE overwrite = FDEOR_REFUSE;
    EXPECT_EQ(events_->OnOverwrite(&dialog_, &folder_, &overwrite), S_OK);
    EXPECT_EQ(overwrite, FDEOR_REFUSE);
    EXPECT_THAT(test::journal, ElementsAre());
    EXPECT_TRUE(window_.ShowsButton());
}

TEST_F(FolderDialogEventsTest, ShowTheButtonOnlyOnAFolderWithAnInstaller) {
    for (const bool found : {false, true, false, true}) {
        test::journal.clear();
        test::below.findsInstaller = found;
        Enter(&folder_);
        EXPECT_EQ(window_.ShowsButton(), found);
        EXPECT_THAT(test::journal,
                    ElementsAre("path of a folder", "look in D:\\\xC3\xA4\xE2\x82\xAC b quietly"));
    }
}

TEST_F(FolderDialogEventsTest, LeaveTheButtonOnAFolderWithoutAPath) {
    folder_.path.clear();
    Enter(&folder_);
    EXPECT_TRUE(window_.ShowsButton());
    EXPECT_THAT(test::journal, ElementsAre("path of a folder"));
    EXPECT_EQ(test::below.freed, 0u) << "what the shell left there";
}

TEST_F(FolderDialogEventsTest, LookNowhereForADialogWithoutAWindow) {
    dialog_.hasWindow = false;
    Enter(&folder_);
    EXPECT_THAT(test::journal, ElementsAre("path of a folder"));
}

TEST_F(FolderDialogEventsTest, LookEvenWithoutAButton) {
    const DialogWindow other(IDCANCEL);
    for (const HWND window : {other.Get(), HWND{}}) {
        test::journal.clear();
        dialog_.window.window = window;
        Enter(&folder_);
        EXPECT_THAT(test::journal, testing::Contains(testing::StartsWith("look in ")));
        EXPECT_TRUE(other.ShowsButton());
    }
}

TEST_F(FolderDialogEventsTest, FreeThePathOnce) {
    for (const bool hasWindow : {true, false}) {
        test::below.freed = 0;
        dialog_.hasWindow = hasWindow;
        Enter(&folder_);
        EXPECT_EQ(test::below.freed, 1u);
    }
}

TEST_F(FolderDialogEventsTest, KnowARealFolder) {
    const test::TemporaryFolder folder;
    ComPtr<IShellItem> item;
    ASSERT_EQ(SHCreateItemFromParsingName(folder.Dir().c_str(), nullptr, IID_IShellItem,
                                          reinterpret_cast<void**>(item.Put())),
              S_OK);
    Enter(item.Get());
    EXPECT_THAT(test::journal, ElementsAre("look in " + folder.Text() + " quietly"));
    EXPECT_FALSE(window_.ShowsButton());
}

TEST_F(FolderDialogEventsTest, KnowARealFolderWithoutAPath) {
    ComPtr<IShellItem> thisPc;
    ASSERT_EQ(SHCreateItemFromParsingName(L"::{20D04FE0-3AEA-1069-A2D8-08002B30309D}", nullptr,
                                          IID_IShellItem, reinterpret_cast<void**>(thisPc.Put())),
              S_OK);
    Enter(thisPc.Get());
    EXPECT_THAT(test::journal, ElementsAre());
    EXPECT_TRUE(window_.ShowsButton());
}

}  // namespace
}  // namespace launcher
