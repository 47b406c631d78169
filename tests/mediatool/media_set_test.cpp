// Which of the given folders is volume 1, what is said when none is, and what the launcher's search
// says of it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <nlohmann/json.hpp>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/media/launcher_view.h"
#include "mediatool/media/media_set.h"
#include "tests/mediatool/support/sample_media.h"
#include "tests/support/hook.h"
#include "tests/support/isolated_test.h"
#include "tests/support/links.h"

namespace launcher::mediatool {
namespace {

using test::FromUtf8;
using test::SampleMedia;
using test::ToUtf8;
using testing::ElementsAre;

class MediaSetTest : public testing::Test {
  protected:
    // A folder with some of a launcher, a count file, a marker and the mark of an unfinished set.
    std::string Make(const std::string& name, const std::string& what) const {
        folder_.MakeDir(name);
        if (what.find('L') != std::string::npos) folder_.Write(name + "/setup.exe");
        if (what.find('C') != std::string::npos) folder_.Write(name + "/inst/volumes.txt");
        if (what.find('M') != std::string::npos) folder_.Write(name + "/1.txt");
        if (what.find('U') != std::string::npos) folder_.Write(name + "/mediatool-unfinished.txt");
        return folder_.Text(name);
    }

    // The one of two that is volume 1.
    std::string FirstOf(const std::string& one, const std::string& two) const {
        const std::string first = Make("folder" + std::to_string(++made_), one);
        const std::string second = Make("folder" + std::to_string(++made_), two);
        return OpenUnfinishedSet({first, second}).first.Text() == first ? one : two;
    }

    template <class Open>
    static std::string Complaint(const Open& open, const std::vector<std::string>& folders) {
        try {
            open(folders);
        } catch (const BadInput& complaint) {
            return complaint.what();
        }
        return "none";
    }

    test::TemporaryFolder folder_;
    mutable int made_ = 0;
};

TEST_F(MediaSetTest, BeginsWithTheFolderThatLooksMostLikeVolumeOne) {
    for (const auto& [less, more] :
         {std::pair("", "M"), std::pair("", "U"), std::pair("M", "C"), std::pair("CM", "L"),
          std::pair("C", "CM"), std::pair("LC", "LCM"), std::pair("LM", "LC"),
          std::pair("L", "LU")}) {
        EXPECT_EQ(FirstOf(less, more), more);
        EXPECT_EQ(FirstOf(more, less), more);
    }
    const std::string one = Make("one", "L");
    const std::string two = Make("two", "L");
    EXPECT_EQ(OpenMediaSet({two, one}).first.Text(), two);
    EXPECT_EQ(OpenMediaSet({Make("three", "CM"), one}).first.Text(), one);
}

TEST_F(MediaSetTest, HasALauncherOrIsRefused) {
    const std::string empty = Make("empty", "");
    const std::string outer = Make("outer", "");
    const std::string inner = Make("outer/1", "L");
    const std::string half = Make("half", "");
    const std::string started = Make("half/1", "C");
    const std::string file = folder_.Write("file");
    const std::string missing = folder_.Text("missing");
    const std::string notThere =
        "\"" + missing + "\" cannot be opened: " + ErrorText(ERROR_FILE_NOT_FOUND) + ".";
    for (const auto& open : {&OpenMediaSet, &OpenUnfinishedSet}) {
        EXPECT_EQ(Complaint(open, {empty}), "\"" + empty + "\" has no launcher (setup.exe) in it.");
        EXPECT_EQ(Complaint(open, {outer}), "\"" + outer +
                                                "\" has no launcher (setup.exe) in it; \"" + inner +
                                                "\" has one: give that folder.");
        EXPECT_EQ(Complaint(open, {empty, outer}),
                  "None of the given folders has a launcher (setup.exe) in it.");
        EXPECT_EQ(Complaint(open, {inner, inner + "\\"}), "\"" + inner + "\" is given twice.");
        EXPECT_EQ(Complaint(open, {file}),
                  "\"" + file + "\" is a file, not the folder of a medium.");
        EXPECT_EQ(Complaint(open, {""}), "\"\" is no folder.");
        EXPECT_EQ(Complaint(open, {missing}), notThere);
        EXPECT_EQ(Complaint(open, {inner}), "none");
    }
    EXPECT_EQ(Complaint(OpenMediaSet, {half}),
              "\"" + half + "\" has no launcher (setup.exe) in it.");
    EXPECT_EQ(Complaint(OpenMediaSet, {started}),
              "\"" + started + "\" has no launcher (setup.exe) in it.");
    EXPECT_EQ(Complaint(OpenUnfinishedSet, {started}), "none");
    EXPECT_EQ(Complaint(OpenUnfinishedSet, {half}),
              "\"" + half + "\" has no launcher (setup.exe) in it; \"" + started +
                  "\" is volume 1: give that folder.");
}

class LauncherViewTest : public test::IsolatedTest {};

TEST_F(LauncherViewTest, IsTheSameWhateverTheEnvironmentForbids) {
    const SampleMedia media(Layout::Siblings);
    SetEnvVar("ZEP_Online_Installation_Caf_Repositiory", "x");
    const LauncherView view = ViewOf(Path(media.Text()));
    EXPECT_EQ(view.layout, Layout::Siblings);
    EXPECT_EQ(view.id, "SET");
    EXPECT_THAT(view.folders, ElementsAre(media.Text(), media.Text("../2"), media.Text("../3")));
}

TEST_F(LauncherViewTest, HasTheFirstVolumeAloneWhileTheSetIsNotWhole) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../3");
    const LauncherView view = ViewOf(Path(media.Text()));
    EXPECT_EQ(view.layout, Layout::Incomplete);
    EXPECT_THAT(view.folders, ElementsAre(media.Text()));
}

TEST_F(LauncherViewTest, OfACountOfFarTooManyEndsAfterTenThousandInVain) {
    SampleMedia media(Layout::Siblings);
    media.Write("inst/volumes.txt", "30000\r\n");
    const LauncherView view = [&media] {
        // A folder that cannot be listed.
        const std::wstring siblings = ToWide(Parent(Path(media.Text())).Text()) + L"\\*";
        const test::Hook<decltype(&FindFirstFileW)> list(
            "FindFirstFileW", [&siblings](auto real, LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
                if (!std::wstring_view(pattern).ends_with(siblings)) return real(pattern, found);
                SetLastError(ERROR_ACCESS_DENIED);
                return INVALID_HANDLE_VALUE;
            });
        return ViewOf(Path(media.Text()));
    }();
    EXPECT_EQ(view.asked.size(), 3u + 10'001u);  // three are found
    EXPECT_EQ(view.id, "SET");
    ASSERT_TRUE(view.count);
    EXPECT_EQ(view.count->count, 30000);
    EXPECT_EQ(view.layout, Layout::Incomplete);
    EXPECT_THAT(view.folders, ElementsAre(media.Text()));
    // Nothing of it is left over for the next.
    EXPECT_EQ(ViewOf(Path(SampleMedia(Layout::OneFolder).Text())).asked.size(), 3u);
}

TEST_F(LauncherViewTest, OfADriveIsTheSameFromEverywhere) {
    SampleMedia media(Layout::Siblings);
    media.Rename("../2", "2").Rename("../3", "3");
    const test::MappedDrive drive(FromUtf8(media.Text()));
    std::string root = ToUtf8(drive.Root());
    wchar_t before[32768] = {};
    GetCurrentDirectoryW(32768, before);
    const LauncherView view = ViewFromEverywhere(FullPath(root));
    wchar_t after[32768] = {};
    GetCurrentDirectoryW(32768, after);
    EXPECT_STREQ(after, before);
    root.pop_back();
    EXPECT_THAT(view.folders, ElementsAre(root, root + "\\2", root + "\\3"));
    for (const AskedMarker& marker : view.asked)
        EXPECT_TRUE(IsFull(marker.file)) << marker.file.Text();
}

TEST(LauncherViewForPrograms, HasNoCountWithoutOne) {
    LauncherView view;
    view.folders = {"M:"};
    view.layout = Layout::NotSplit;
    EXPECT_EQ(JsonOf(view),
              Json::parse(R"({"count": null, "layout": "not-split", "folders": ["M:"]})"));
    EXPECT_EQ(LayoutName(Layout::OneFolder), "one-folder");
    EXPECT_EQ(LayoutName(Layout::Siblings), "siblings");
    EXPECT_EQ(LayoutName(Layout::Outer), "outer");
    EXPECT_EQ(LayoutName(Layout::Incomplete), "incomplete");
}

}  // namespace
}  // namespace launcher::mediatool
