#include "installer/folder_dialog.h"

#include <algorithm>
#include <string>
#include <vector>

#include "fs/encoding.h"
#include "tests/installer/fake_shell.h"
#include "tests/installer/fakes.h"
#include "tests/support/hook.h"
#include "tests/support/temporary_folder.h"

namespace launcher {
namespace {

using testing::ElementsAre;
using testing::IsSupersetOf;

test::FakeFileDialog* dialogToCreate = nullptr;  // null: there is none on this system
test::FakeShellItem* startFolder = nullptr;      // null: there is no such folder

HRESULT CreateFakeDialog(REFCLSID classId, REFIID iid, void** object) {
    const bool asExpected =
        IsEqualCLSID(classId, CLSID_FileOpenDialog) && IsEqualIID(iid, IID_IFileDialog);
    test::Record(asExpected ? "create the dialog" : "create something else");
    *object = nullptr;
    if (dialogToCreate == nullptr) return REGDB_E_CLASSNOTREG;
    return dialogToCreate->GiveTo(reinterpret_cast<IFileDialog**>(object));
}

HRESULT CreateFakeItem(PCWSTR path, IBindCtx* context, REFIID iid, void** object) {
    const bool asExpected = context == nullptr && IsEqualIID(iid, IID_IShellItem);
    test::Record("folder \"" + ToNarrow(path) + "\"" + (asExpected ? "" : " as something else"));
    *object = nullptr;
    if (startFolder == nullptr) return HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);
    return startFolder->GiveTo(reinterpret_cast<IShellItem**>(object));
}

class FolderDialogTest : public test::InstallerTest {
  protected:
    FolderDialogTest() {
        options_.mediaDir = Path("D:\\sets\\a\\media");
        dialog_.result.path = L"E:\\result";
        start_.path = L"D:\\sets";
        test::below.createInstance = CreateFakeDialog;
        dialogToCreate = &dialog_;
        startFolder = &start_;
    }

    // Everything that was handed out has come back.
    ~FolderDialogTest() override {
        EXPECT_EQ(dialog_.References(), 0u);
        EXPECT_EQ(dialog_.events, nullptr);
        EXPECT_EQ(dialog_.entered.References(), 0u);
        EXPECT_EQ(dialog_.result.References(), 0u);
        EXPECT_EQ(dialog_.window.References(), 0u);
        EXPECT_EQ(start_.References(), 0u);
    }

    // What was asked of the dialog's result and events, once it was shown.
    static std::vector<std::string> AfterShow() {
        const auto show = std::ranges::find(test::journal, "Show");
        EXPECT_NE(show, test::journal.end());
        if (show == test::journal.end()) return {};
        // In between, the dialog enters a folder without a path.
        EXPECT_EQ(test::journal.back(), "COM ends");
        return {show + 2, test::journal.end() - 1};
    }

    test::FakeFileDialog dialog_;
    test::FakeShellItem start_;

  private:
    const test::Hook<decltype(&SHCreateItemFromParsingName)> item_{
        "SHCreateItemFromParsingName",
        [](auto, auto&&... arguments) { return CreateFakeItem(arguments...); }};
};

TEST_F(FolderDialogTest, IsConfirmed) {
    EXPECT_TRUE(SelectInstallerFolder(options_));
    EXPECT_THAT(test::journal,
                IsSupersetOf({"COM begins", "create the dialog",
                              "SetTitle Select the folder of the separate media called "
                              "QN_Installer for win_b64",
                              "Advise", "folder \"D:\\sets\"", "SetDefaultFolder D:\\sets"}));
    EXPECT_THAT(AfterShow(),
                ElementsAre("GetResult", "path of a folder", "Unadvise, events held by 1"));
    EXPECT_EQ(dialog_.options, 0x820u);
    EXPECT_EQ(test::below.freed, 1u);
}

TEST_F(FolderDialogTest, IsCancelled) {
    dialog_.show = HRESULT_FROM_WIN32(ERROR_CANCELLED);
    EXPECT_FALSE(SelectInstallerFolder(options_));
    EXPECT_THAT(AfterShow(), ElementsAre("dialog gone, events held by 0"));
}

TEST_F(FolderDialogTest, HasNoResult) {
    dialog_.getResult = E_FAIL;
    EXPECT_FALSE(SelectInstallerFolder(options_));
    EXPECT_THAT(AfterShow(), ElementsAre("GetResult", "Unadvise, events held by 1"));
}

TEST_F(FolderDialogTest, HasAResultWithoutAPath) {
    dialog_.result.path.clear();
    EXPECT_FALSE(SelectInstallerFolder(options_));
    EXPECT_THAT(AfterShow(),
                ElementsAre("GetResult", "path of a folder", "Unadvise, events held by 1"));
    EXPECT_EQ(test::below.freed, 0u) << "what the shell left there";
}

TEST_F(FolderDialogTest, DoesNotExist) {
    dialogToCreate = nullptr;
    EXPECT_FALSE(SelectInstallerFolder(options_));
    EXPECT_THAT(test::journal, ElementsAre("COM begins", "create the dialog", "COM ends"));
}

TEST_F(FolderDialogTest, HasNoOptions) {
    dialog_.getOptions = E_FAIL;
    EXPECT_FALSE(SelectInstallerFolder(options_));
    EXPECT_THAT(test::journal,
                ElementsAre("COM begins", "create the dialog", "GetOptions", "COM ends"));
}

TEST_F(FolderDialogTest, RefusesItsOptions) {
    dialog_.setOptions = E_FAIL;
    EXPECT_FALSE(SelectInstallerFolder(options_));
    EXPECT_THAT(test::journal, ElementsAre("COM begins", "create the dialog", "GetOptions",
                                           "SetOptions", "COM ends"));
}

TEST_F(FolderDialogTest, IsShownEvenWithoutATitleAndEvents) {
    dialog_.setTitle = E_FAIL;
    dialog_.advise = E_FAIL;
    EXPECT_TRUE(SelectInstallerFolder(options_));
    EXPECT_THAT(test::journal, IsSupersetOf({"Show", "GetResult"}));
}

TEST_F(FolderDialogTest, OpensWhereWindowsChoosesWithoutAStartFolder) {
    startFolder = nullptr;
    EXPECT_TRUE(SelectInstallerFolder(options_));
    EXPECT_THAT(test::journal, testing::Contains("folder \"D:\\sets\""));
    EXPECT_THAT(test::journal,
                testing::Not(testing::Contains(testing::StartsWith("SetDefaultFolder"))));
}

TEST_F(FolderDialogTest, AsksForNoStartFolderAboveADrive) {
    options_.mediaDir = Path("D:\\media");
    EXPECT_TRUE(SelectInstallerFolder(options_));
    EXPECT_THAT(test::journal, testing::Not(testing::Contains(testing::StartsWith("folder \""))));
}

TEST_F(FolderDialogTest, LooksForTheInstallerInEachFolderThatIsEntered) {
    dialog_.entered.path = L"E:\\\u00E4";
    dialog_.show = HRESULT_FROM_WIN32(ERROR_CANCELLED);
    EXPECT_FALSE(SelectInstallerFolder(options_));
    EXPECT_THAT(test::journal, testing::Contains("look in E:\\\xC3\xA4 quietly"));
}

// The same on the shell's own folders.
class FolderDialogStartTest : public test::InstallerTest {
  protected:
    FolderDialogStartTest() { CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED); }
    ~FolderDialogStartTest() override { CoUninitialize(); }

    // The start folder for a medium, "" for none.
    std::string StartFolder(const std::string& media) {
        test::below.createInstance = CreateFakeDialog;
        test::FakeFileDialog dialog;
        dialogToCreate = &dialog;
        options_.mediaDir = Path(media);
        test::journal.clear();
        SelectInstallerFolder(options_);
        const std::string verb = "SetDefaultFolder ";
        for (const std::string& line : test::journal)
            if (line.starts_with(verb)) return line.substr(verb.size());
        return "";
    }
};

TEST_F(FolderDialogStartTest, IsTwoLevelsAboveTheMedia) {
    const test::TemporaryFolder folder;
    const std::string media = folder.MakeDir("\xC3\xA4 b\\set\\media");
    EXPECT_EQ(StartFolder(media), folder.Text("\xC3\xA4 b"));
}

TEST_F(FolderDialogStartTest, IsNoneForAMediaNearADriveRoot) {
    EXPECT_EQ(StartFolder("C:"), "");
    EXPECT_EQ(StartFolder("C:\\media"), "");
}

TEST_F(FolderDialogStartTest, IsNoneWhereTheFolderDoesNotExist) {
    EXPECT_EQ(StartFolder("C:\\no such folder\\set\\media"), "");
}

}  // namespace
}  // namespace launcher
