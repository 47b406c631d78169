// What mediatool creates: it is what validate calls clean and what the launcher finds whole.

#include <windows.h>

#include <filesystem>
#include <map>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/mediatool/creating.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

class CreateTest : public testing::TestWithParam<std::tuple<Layout, int>> {
  protected:
    // The content of the volumes, without any marker.
    std::vector<std::string> Contents(int volumes) {
        std::vector<std::string> folders = {content_.Text()};
        for (int k = 2; k <= volumes; ++k) {
            const std::string name = "contents/" + std::to_string(k);
            scratch_.Write(name + "/data/part" + std::to_string(k) + ".bin", "part");
            folders.push_back(scratch_.Text(name));
        }
        return folders;
    }

    // The content of volume 1 where it is going to be; cheaper for many volumes.
    void PutContentInPlace(Layout layout) {
        const std::string first = layout == Layout::OneFolder  ? "out/"
                                  : layout == Layout::Siblings ? "out/1/"
                                                               : "out/1/media/1/";
        for (const char* name :
             {"meta.TOCxml", "media.xml", "media.db", "inst/common/win_b64.installos"})
            scratch_.Write(first + name);
        for (const char* name :
             {"StartTUI.exe", "setup_noUAC.exe", "inst/win_b64/code/bin/ZEPInsAppliGUI.exe"})
            scratch_.Write(first + name, ProgramBytes(kX64));
        scratch_.Write(first + "setup.exe", LauncherBytes());
    }

    SampleMedia content_;
    TemporaryFolder scratch_;
};

TEST_P(CreateTest, ValidatesCleanAndIsWhole) {
    const auto [layout, volumes] = GetParam();
    CreateRequest request;
    request.id = "SET 2027";
    request.layout = layout;
    request.volumes = volumes;
    if (volumes <= 3)
        request.from = Contents(layout == Layout::OneFolder ? 1 : volumes);
    else
        PutContentInPlace(layout);
    request.out = scratch_.Text("out");
    const Creation creation = Create(request);
    ASSERT_EQ(creation.folders.size(), static_cast<std::size_t>(volumes));
    for (const std::string& folder : creation.folders)
        WriteFile(FromUtf8(folder) / "content.bin", "content");

    mediatool::ValidateRequest check;
    check.folders = {creation.folders.front()};
    const Validation validation = mediatool::Validate(check);
    EXPECT_EQ(validation.findings.Count(Level::Error), 0u) << Ids(validation);
    EXPECT_EQ(validation.findings.Count(Level::Warning), 0u) << Ids(validation);
    if (volumes > 1) {
        EXPECT_EQ(validation.view.layout, layout);
        EXPECT_EQ(validation.view.folders, creation.folders);
    }
    EXPECT_FALSE(validation.view.Copies());
}

std::string CreateName(const testing::TestParamInfo<std::tuple<Layout, int>>& info) {
    std::string name = mediatool::LayoutName(std::get<0>(info.param));
    std::erase(name, '-');
    return name + std::to_string(std::get<1>(info.param));
}

INSTANTIATE_TEST_SUITE_P(OneFolder, CreateTest,
                         testing::Combine(testing::Values(Layout::OneFolder),
                                          testing::Values(1, 2, 10, 99)),
                         CreateName);
INSTANTIATE_TEST_SUITE_P(Siblings, CreateTest,
                         testing::Combine(testing::Values(Layout::Siblings),
                                          testing::Values(1, 2, 10, 99)),
                         CreateName);
INSTANTIATE_TEST_SUITE_P(Outer, CreateTest,
                         testing::Combine(testing::Values(Layout::Outer),
                                          testing::Values(1, 2, 3, 10, 99)),
                         CreateName);

TEST_F(Creating, WritesTheTextsThatTheLauncherReads) {
    EXPECT_EQ(Create(request).outerId, "");
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\1\\inst\\volumes.txt"))), "2\r\n");
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\1\\1.txt"))), "MTBDIR=SET\r\n");
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\2\\2.txt"))), "MTBDIR=SET\r\n");
}

TEST_F(Creating, OuterVolumesHaveAnIdentifierOfTheirOwn) {
    request.layout = Layout::Outer;
    request.firstOuter = 98;
    const Creation creation = Create(request);
    EXPECT_EQ(creation.outerId, "SET-outer");
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\98\\98.txt"))), "MTBDIR=SET-outer\r\n");
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\99\\media\\2\\2.txt"))), "MTBDIR=SET\r\n");
}

TEST_F(Creating, OuterVolumesHoldTheMediaBelowAnyFolder) {
    request.layout = Layout::Outer;
    request.inner = "a\\b\\c";
    EXPECT_EQ(Create(request).folders.back(), scratch.Text("out\\2\\a\\b\\c\\2"));
    request.inner = "";
    request.out = scratch.Text("other");
    EXPECT_EQ(Create(request).folders.back(), scratch.Text("other\\2\\2"));
}

TEST_F(Creating, WritesIntoFoldersThatAreThere) {
    scratch.Write("out/1/setup.exe", "launcher");
    EXPECT_EQ(Complaint(), "none");
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\1\\setup.exe"))), "launcher");
}

TEST_F(Creating, RefusesToOverwriteUnlessForced) {
    scratch.Write("out/2/2.txt", "old");
    EXPECT_EQ(Complaint(), "refused: \"" + scratch.Text("out\\2\\2.txt") +
                               "\" is there already; --force writes over it.");
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out\\1"))));
    request.force = true;
    EXPECT_EQ(Complaint(), "none");
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\2\\2.txt"))), "MTBDIR=SET\r\n");
}

TEST_F(Creating, TakesBackWhatItMadeWhenItFails) {
    scratch.Write("out/1/there.bin");
    scratch.Write("one/a/b.bin");
    const std::string locked = scratch.Write("two/c.bin");
    request.from = {scratch.Text("one"), scratch.Text("two")};
    const Tree before = TreeBelow(scratch.Dir());
    {
        const FileHandle lock(CreateFileW(ToWide(locked).c_str(), GENERIC_READ, 0, nullptr,
                                          OPEN_EXISTING, 0, nullptr));
        EXPECT_THAT(Complaint(),
                    testing::StartsWith("refused: \"" + locked + "\" cannot be copied"));
    }
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
}

TEST_F(Creating, CopiesTheContentAndItsEmptyFolders) {
    scratch.Write("one/a/b.bin", "12345");
    scratch.MakeDir("two/empty");
    scratch.Write("two/2.txt", "An old marker.\nMTBDIR=OLD\n");
    request.from = {scratch.Text("one"), scratch.Text("two")};
    const Creation creation = Create(request);
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\1\\a\\b.bin"))), "12345");
    EXPECT_TRUE(stdfs::is_directory(FromUtf8(scratch.Text("out\\2\\empty"))));
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\2\\2.txt"))), "An old marker.\nMTBDIR=SET\n");
    EXPECT_EQ(creation.copiedFiles, 1u);
    EXPECT_EQ(creation.copiedBytes, 5u);
}

TEST_F(Creating, SaysWhatMakesNoSense) {
    request.id = "";
    EXPECT_EQ(Complaint(), "wrong use: --id is empty.");
    request.id = "SET ";
    EXPECT_EQ(Complaint(), "wrong use: --id begins or ends with a blank.");
    for (const char* id : {"SET\t2027", "SET\x1A", "SET\xC2\x85", "SET\r\n"}) {
        request.id = id;
        EXPECT_EQ(Complaint(), "wrong use: --id has a control character in it.");
    }
    request.id = "\"SET\"";
    EXPECT_EQ(Complaint(), "wrong use: --id cannot be used: The identifier is in quotes.");
    request.id = "SET";
    for (const int volumes : {-1, 0, 100}) {
        request.volumes = volumes;
        EXPECT_EQ(Complaint(), "wrong use: --volumes takes a number from 1 to 99.");
    }
    request.volumes = 2;
    request.from = {scratch.Text()};
    EXPECT_EQ(Complaint(), "wrong use: --from takes one folder for each of the 2 volumes.");
    request.from = {scratch.Text(), scratch.Text("none")};
    EXPECT_EQ(Complaint(), "wrong use: \"" + scratch.Text() +
                               "\" and the folder to write into are in one another.");
    request.layout = Layout::OneFolder;
    request.from = {scratch.Text("a"), scratch.Text("b"), scratch.Text("c")};
    EXPECT_EQ(Complaint(), "wrong use: --from takes one folder for each of the 2 volumes.");
    request.from = {};
    request.layout = Layout::Outer;
    request.outerId = "SET";
    EXPECT_EQ(Complaint(), "wrong use: --outer-id has to differ from --id.");
    request.outerId = "OUTER ";
    EXPECT_EQ(Complaint(), "wrong use: --outer-id begins or ends with a blank.");
    request.outerId = {};
    for (const int first : {0, 100}) {
        request.firstOuter = first;
        EXPECT_EQ(Complaint(), "wrong use: --first-outer takes a number from 1 to 99.");
    }
    request.firstOuter = 1;
    for (const char* inner : {"a*b", "..", "a\\..\\b", "a\\*b", "\\a", "C:\\a", "nul", "a."}) {
        request.inner = inner;
        EXPECT_EQ(Complaint(),
                  "wrong use: --inner takes the name of a folder in each outer volume, not \"" +
                      std::string(inner) + "\".");
    }
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
}

TEST_F(Creating, SaysWhereItCannotWrite) {
    scratch.Write("file");
    const std::map<std::string, std::string> complaints = {
        {scratch.Text("file"), "is a file, not a folder."},
        {scratch.Text("file\\a\\b"), "is below \"" + scratch.Text("file") + "\", which is a file."},
        {scratch.Text() + "\\a*b\\c", "cannot be the name of a folder."},
        {"B:\\out", "is on a drive that is not there."}};
    for (const auto& [out, complaint] : complaints) {
        request.out = out;
        EXPECT_EQ(Complaint(), "wrong use: \"" + out + "\" " + complaint);
    }
    request.out = "";
    EXPECT_EQ(Complaint(), "wrong use: \"\" is no folder.");
    request.out = "nul";
    EXPECT_EQ(Complaint(), "wrong use: \"\\\\.\\nul\" is no folder.");
    EXPECT_THAT(TreeBelow(scratch.Dir()), testing::ElementsAre(testing::Key("file")));
}

// As a run of mediatool checksum leaves it, which sets no mark.
TEST_F(Creating, ClearsAwayTheFileOfARunThatWasKilled) {
    const std::string left = scratch.Write("out/2/mediatool-unfinished.tmp", "half a list");
    SetFileAttributesW(ToWide(left).c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(Complaint(), "none");
    EXPECT_FALSE(stdfs::exists(FromUtf8(left)));
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\2\\2.txt"))), "MTBDIR=SET\r\n");
}

TEST_F(Creating, QuotesAPathWithBlanksInWhatComesNext) {
    request.out = scratch.Text("a set");
    EXPECT_THAT(
        mediatool::NextStep(Create(request)),
        testing::EndsWith(":\n  mediatool validate \"" + scratch.Text("a set\\1") + "\"\n"));
}

// A set without content: what is found wrong with it is that the content is missing.
TEST_F(Creating, LeavesASkeletonThatLacksItsContentOnly) {
    for (const Layout layout : {Layout::OneFolder, Layout::Siblings, Layout::Outer}) {
        request.layout = layout;
        request.out = scratch.Text(mediatool::LayoutName(layout));
        const Creation creation = Create(request);
        EXPECT_EQ(mediatool::NextStep(creation),
                  "Still missing: the launcher (setup.exe), the installer and the other content. "
                  "Add them, then check with:\n  mediatool validate " +
                      creation.folders.front() + "\n");
        mediatool::ValidateRequest check;
        check.folders = {creation.folders.front()};
        const Validation validation = mediatool::Validate(check);
        EXPECT_EQ(validation.view.layout, layout);
        for (const Finding& finding : validation.findings.Sorted())
            EXPECT_TRUE(finding.id == "launcher-missing" || finding.id == "not-for-windows" ||
                        finding.id == "root-entry-missing" || finding.id == "inst-missing" ||
                        finding.id == "volume-empty")
                << finding.id;
        WriteFile(FromUtf8(creation.folders.front()) / "setup.exe", "launcher");
        EXPECT_EQ(mediatool::NextStep(creation), "");
    }
}

}  // namespace
}  // namespace launcher::test
