// Content that mediatool would lose, and markers of other sets that would spoil a new one.

#include <windows.h>

#include <filesystem>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "mediatool/base/files.h"
#include "tests/mediatool/creating.h"
#include "tests/support/hook.h"
#include "tests/support/links.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

// Content in which something would be lost.
TEST_F(Creating, RefusesTwoFilesOfOneName) {
    request.layout = Layout::OneFolder;
    scratch.Write("one/data/Part.bin", "1");
    scratch.Write("two/data/part.BIN", "2");
    request.from = {scratch.Text("one"), scratch.Text("two")};
    EXPECT_EQ(Complaint(), "wrong use: \"" + scratch.Text("one\\data\\Part.bin") + "\" and \"" +
                               scratch.Text("two\\data\\part.BIN") + "\" would both become \"" +
                               scratch.Text("out\\data\\part.BIN") + "\".");
    stdfs::remove(FromUtf8(scratch.Text("two\\data\\part.BIN")));
    scratch.Write("two/data/part.bin/in/a/folder", "2");
    EXPECT_THAT(Complaint(), testing::HasSubstr("would both become"));
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
}

// Found before all the content is copied.
TEST_F(Creating, RefusesContentInThePlaceOfWhatItWrites) {
    scratch.Write("one/inst", "a file");
    scratch.MakeDir("two/SHA256SUMS");
    request.isDry = true;
    request.checksums = true;
    request.from = {scratch.Text("one"), scratch.Text("two")};
    EXPECT_EQ(Complaint(), "wrong use: \"" + scratch.Text("one\\inst") +
                               "\" is a file, where a folder is to be.");
    request.from = {scratch.Text("two"), scratch.Text("one")};
    EXPECT_EQ(Complaint(), "wrong use: \"" + scratch.Text("two\\SHA256SUMS") +
                               "\" is a folder, where a file is to be.");
    request.checksums = false;
    EXPECT_EQ(Complaint(), "none") << "inst is a folder of volume 1 alone";
}

TEST_F(Creating, RefusesMarkersOfOneNameWithOtherLines) {
    request.layout = Layout::OneFolder;
    request.from = {scratch.Text("one"), scratch.Text("two")};
    for (const std::string name : {"1.txt", "inst\\volumes.txt"}) {
        const std::string line = name == "1.txt" ? "MTBDIR=OLD\r\n" : "5\r\n";
        const std::string one = scratch.Write("one/" + name, line + "Disc A");
        const std::string two = scratch.Write("two/" + name, line);
        EXPECT_EQ(Complaint(), "wrong use: \"" + one + "\" and \"" + two +
                                   "\" would both become \"" + scratch.Text("out\\" + name) +
                                   "\".");
        EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
        scratch.Write("two/" + name, line + "Disc A");
        EXPECT_EQ(Complaint(), "none");
        EXPECT_THAT(ReadFile(FromUtf8(scratch.Text("out\\" + name))),
                    testing::EndsWith("\r\nDisc A"));
        stdfs::remove_all(FromUtf8(scratch.Text("out")));
    }
}

TEST_F(Creating, RefusesContentThatIsNoFolder) {
    scratch.Write("file");
    scratch.MakeDir("one");
    for (const std::string other : {"file", "missing"}) {
        request.from = {scratch.Text("one"), scratch.Text(other)};
        EXPECT_EQ(Complaint(), "wrong use: \"" + scratch.Text(other) + "\" is no folder.");
    }
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
}

TEST_F(Creating, RefusesTheSameContentTwice) {
    scratch.Write("one/a.bin", "1");
    request.from = {scratch.Text("one"), scratch.Text("ONE") + "\\"};
    EXPECT_EQ(Complaint(),
              "wrong use: \"" + scratch.Text("ONE") + "\" is given twice, with --from.");
    const FolderLink link(scratch.Dir() / "linked", scratch.Dir() / "one");
    request.from = {scratch.Text("one"), scratch.Text("linked")};
    EXPECT_EQ(Complaint(),
              "wrong use: \"" + scratch.Text("linked") + "\" is given twice, with --from.");
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
}

// Which folder a name leads to, nobody can know there.
TEST_F(Creating, ComparesNamesOnADiskThatDoesNotTellMore) {
    scratch.Write("one/a.bin", "1");
    scratch.Write("two/b.bin", "2");
    scratch.MakeDir("out/content");
    const Hook<decltype(&GetFileInformationByHandle)> ask("GetFileInformationByHandle",
                                                          [](auto&&...) { return TRUE; });
    for (const std::string& other : {scratch.Text(), scratch.Text("out\\content")}) {
        request.from = {scratch.Text("one"), other};
        EXPECT_EQ(Complaint(),
                  "wrong use: \"" + other + "\" and the folder to write into are in one another.");
    }
    request.from = {scratch.Text("one"), scratch.Text("ONE")};
    EXPECT_EQ(Complaint(),
              "wrong use: \"" + scratch.Text("ONE") + "\" is given twice, with --from.");
    request.from = {scratch.Text("one"), scratch.Text("two")};
    EXPECT_EQ(Complaint(), "none");
}

TEST_F(Creating, RefusesContentThatIsNoMarkerButHasItsName) {
    scratch.Write("one/a.bin");
    scratch.Write("two/2.txt", "chapter 2");
    request.from = {scratch.Text("one"), scratch.Text("two")};
    EXPECT_EQ(Complaint(), "wrong use: \"" + scratch.Text("two\\2.txt") +
                               "\" has the name of a volume's marker and is none; rename it.");
    const std::string folder = scratch.MakeDir("one/inst/volumes.txt");
    EXPECT_EQ(Complaint(), "wrong use: \"" + folder +
                               "\" has the name of a volume's marker and is none; rename it.");
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
}

// A folder that is written into is the source of another volume, under another name.
class OtherNames : public Creating {
  protected:
    OtherNames() {
        request.force = true;
        scratch.Write("out/1/a.bin", "1");
        scratch.Write("out/2/a.bin", "2");
    }

    void ExpectRefusal(const std::vector<std::string>& from, const std::string& end) {
        request.from = from;
        const Tree before = TreeBelow(scratch.Dir());
        const std::string complaint = Complaint();
        EXPECT_THAT(complaint, testing::StartsWith("wrong use: "));
        EXPECT_THAT(complaint, testing::EndsWith(end));
        EXPECT_EQ(TreeBelow(scratch.Dir()), before);
    }

    static constexpr char kOneAnother[] = " and the folder to write into are in one another.";
};

TEST_F(OtherNames, OfAnyLength) {
    const std::string out = "\\\\?\\" + scratch.Text("out");
    ExpectRefusal({out + "\\2", out + "\\1"}, kOneAnother);
}

TEST_F(OtherNames, OnAnotherDrive) {
    const MappedDrive drive(scratch.Dir());
    const std::string out = ToUtf8(drive.Root()) + "out";
    ExpectRefusal({out + "\\2", out + "\\1"}, kOneAnother);
}

TEST_F(OtherNames, OfAFolderBesideTheVolumes) {
    scratch.Write("one/b.bin");
    scratch.Write("out/content/b.bin");
    const MappedDrive drive(scratch.Dir());
    ExpectRefusal({scratch.Text("one"), ToUtf8(drive.Root()) + "out\\content"}, kOneAnother);
}

TEST_F(OtherNames, OfADrivesRoot) {
    scratch.Write("one/b.bin");
    const MappedDrive drive(scratch.Dir() / "out" / "2");
    ExpectRefusal({scratch.Text("one"), ToUtf8(drive.Root())}, kOneAnother);
}

TEST_F(OtherNames, OfLinksThatLeadToTheContentCrosswise) {
    scratch.MakeDir("linked");
    const FolderLink one(scratch.Dir() / "linked" / "1", scratch.Dir() / "out" / "2");
    const FolderLink two(scratch.Dir() / "linked" / "2", scratch.Dir() / "out" / "1");
    request.out = scratch.Text("linked");
    ExpectRefusal({scratch.Text("out\\1"), scratch.Text("out\\2")}, kOneAnother);
}

TEST_F(OtherNames, OfALinkBelowAVolume) {
    scratch.Write("one/data/a.bin", "1");
    scratch.Write("two/data/a.bin", "2");
    const FolderLink link(scratch.Dir() / "out" / "1" / "data", scratch.Dir() / "two" / "data");
    ExpectRefusal({scratch.Text("one"), scratch.Text("two")},
                  ": \"" + scratch.Text("out\\1\\data\\a.bin") + "\" and \"" +
                      scratch.Text("two\\data\\a.bin") + "\" are the same file.");
}

TEST_F(OtherNames, OfAFolderThatIsNotThereYetBelowALink) {
    scratch.Write("one/data/a.bin", "1");
    scratch.Write("two/a.bin", "2");
    const FolderLink link(scratch.Dir() / "linked", scratch.Dir() / "one" / "data");
    request.out = scratch.Text("linked\\new");
    ExpectRefusal({scratch.Text("one"), scratch.Text("two")}, kOneAnother);
}

TEST_F(OtherNames, OfOneFolderForTwoVolumes) {
    scratch.Write("one/a.bin", "1");
    scratch.Write("two/a.bin", "2");
    scratch.MakeDir("linked");
    const FolderLink link(scratch.Dir() / "linked" / "1", scratch.Dir() / "out" / "2");
    const FolderLink other(scratch.Dir() / "linked" / "2", scratch.Dir() / "out" / "2");
    request.out = scratch.Text("linked");
    const std::string end = ": \"" + scratch.Text("linked\\1") + "\" and \"" +
                            scratch.Text("linked\\2") + "\" are the same folder.";
    ExpectRefusal({scratch.Text("one"), scratch.Text("two")}, end);
    ExpectRefusal({}, end);
}

// Files and folders in the way, below out.
class Obstacle : public Replacing {
  protected:
    void ExpectComplaint(const std::string& complaint) {
        const Tree before = TreeBelow(scratch.Dir());
        EXPECT_EQ(Complaint(), complaint);
        EXPECT_EQ(TreeBelow(scratch.Dir()), before);
    }
};

TEST_F(Obstacle, IsAFolderWhereAFileIsToBe) {
    for (const char* name : {"out\\2\\b.bin", "out\\2\\2.txt", "out\\1\\inst\\volumes.txt"}) {
        scratch.MakeDir(name);
        for (const bool force : {false, true}) {
            request.force = force;
            ExpectComplaint("wrong use: \"" + scratch.Text(name) +
                            "\" is a folder, where a file is to be.");
        }
        stdfs::remove(FromUtf8(scratch.Text(name)));
    }
    EXPECT_EQ(Complaint(), "none");
    EXPECT_EQ(ReadFile(FromUtf8(scratch.Text("out\\1\\a.bin"))), "new");
}

TEST_F(Obstacle, IsAFileWhereAFolderIsToBe) {
    scratch.Write("two/data/deep/c.bin");
    scratch.MakeDir("two/empty");
    for (const char* name : {"out\\2\\data", "out\\2\\empty", "out\\1\\inst", "out\\2"}) {
        stdfs::remove(FromUtf8(scratch.Text("out\\2")));
        scratch.Write(name);
        ExpectComplaint("wrong use: \"" + scratch.Text(name) +
                        "\" is a file, where a folder is to be.");
        stdfs::remove(FromUtf8(scratch.Text(name)));
    }
}

TEST_F(Obstacle, IsAFileThatCannotBeWritten) {
    const std::string file = scratch.Write("out/2/2.txt", "old");
    SetFileAttributesW(ToWide(file).c_str(), FILE_ATTRIBUTE_READONLY);
    const Tree before = TreeBelow(scratch.Dir());
    EXPECT_THAT(Complaint(), testing::StartsWith("refused: \"" + file + "\" cannot be written: "));
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
    SetFileAttributesW(ToWide(file).c_str(), FILE_ATTRIBUTE_NORMAL);
}

// Found before anything is written over.
TEST_F(Obstacle, IsContentThatCannotBeRead) {
    const std::string file = scratch.Text("two\\b.bin");
    const Tree before = TreeBelow(scratch.Dir());
    {
        const FileHandle user(
            CreateFileW(ToWide(file).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(Complaint(), "refused: \"" + file + "\" cannot be read: " +
                                   mediatool::ErrorText(ERROR_SHARING_VIOLATION) + ".");
    }
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
}

// What an older set left behind, in the folder that the new one of two volumes is written into.
struct Leftover {
    const char* name;
    Layout layout;
    const char* file;
    const char* content;
    bool isNamedOnly = false;  // no marker, but the launcher would take it for one
};
void PrintTo(const Leftover& row, std::ostream* stream) {
    *stream << row.name;
}

class StaleMarker : public Creating, public testing::WithParamInterface<Leftover> {
  protected:
    std::string Expected(const std::string& file) const {
        return "refused: \"" + file +
               (GetParam().isNamedOnly
                    ? "\" is named like the marker of an outer volume, and the launcher would take "
                      "it for one; rename or remove it first."
                    : "\" is the marker of a volume that is not at this place in the new set; "
                      "remove it first.");
    }
};

TEST_P(StaleMarker, IsNamedAndStays) {
    request.layout = GetParam().layout;
    request.firstOuter = 7;
    const std::string file = scratch.Write(GetParam().file, GetParam().content);
    const Tree before = TreeBelow(scratch.Dir());
    for (const bool force : {false, true}) {
        request.force = force;
        EXPECT_EQ(Complaint(), Expected(file));
        EXPECT_EQ(TreeBelow(scratch.Dir()), before);
    }
    stdfs::remove(FromUtf8(file));
    EXPECT_EQ(Complaint(), "none");
}

constexpr char kOld[] = "MTBDIR=OLD\r\n";
constexpr char kOurs[] = "MTBDIR=SET\r\n";
INSTANTIATE_TEST_SUITE_P(
    Layouts, StaleMarker,
    testing::Values(Leftover{"BeyondTheCount", Layout::OneFolder, "out/3.txt", kOld},
                    Leftover{"InVolumeOne", Layout::Siblings, "out/1/2.txt", kOld},
                    Leftover{"InVolumeTwo", Layout::Siblings, "out/2/1.txt", kOld},
                    Leftover{"VolumeBeyondTheCount", Layout::Siblings, "out/3/3.txt", kOurs},
                    Leftover{"InVolumeOneOfOuter", Layout::Outer, "out/7/media/1/2.txt", kOld},
                    Leftover{"BesideVolumeOneOfOuter", Layout::Outer, "out/7/media/2/2.txt", kOld},
                    Leftover{"OuterBeyondTheCount", Layout::Outer, "out/9/media/3/3.txt", kOurs},
                    Leftover{"OuterAbove99", Layout::Outer, "out/100/media/3/3.txt", kOurs},
                    Leftover{"OuterOfLowerNumber", Layout::Outer, "out/6/media/2/2.txt", kOurs},
                    Leftover{"AboveVolumeOne", Layout::Outer, "out/7/media/5.txt", "notes", true},
                    Leftover{"OfNumberOne", Layout::Outer, "out/7/media/1.txt", "notes", true},
                    Leftover{"OfTheSameNumber", Layout::Outer, "out/7/media/7.txt", kOld, true},
                    Leftover{"InTheOuterVolume", Layout::Outer, "out/7/12.txt", kOld, true},
                    Leftover{"InOtherLetters", Layout::Outer, "out/7/7.TXT", kOld, true}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(Creating, RefusesAMarkerOfAnotherVolumeInTheContent) {
    scratch.Write("one/a.bin");
    const std::string marker = scratch.Write("two/1.txt", kOld);
    request.from = {scratch.Text("one"), scratch.Text("two")};
    EXPECT_THAT(Complaint(), testing::StartsWith("refused: \"" + marker + "\" is the marker of"));
    EXPECT_FALSE(stdfs::exists(FromUtf8(scratch.Text("out"))));
}

// With all volumes in one folder the launcher never looks beside it.
TEST_F(Creating, LeavesWhatIsBesideOneFolderAlone) {
    request.layout = Layout::OneFolder;
    scratch.Write("2/2.txt", kOurs);
    EXPECT_EQ(Complaint(), "none");
    mediatool::ValidateRequest check;
    check.folders = {request.out};
    const Validation validation = mediatool::Validate(check);
    EXPECT_EQ(validation.view.layout, Layout::OneFolder);
    EXPECT_THAT(Ids(validation), testing::Not(testing::HasSubstr("volume-")));
}

// A single volume names no count, and whoever looks beside it takes what has its identifier.
TEST_F(Creating, RefusesMarkersOfItsOwnBesideASingleVolume) {
    request.layout = Layout::OneFolder;
    request.volumes = 1;
    request.force = true;
    scratch.Write("1/1.txt", kOurs);
    EXPECT_EQ(Complaint(), "none");
    const std::string marker = scratch.Write("2/2.txt", kOurs);
    EXPECT_THAT(Complaint(), testing::StartsWith("refused: \"" + marker + "\" is the marker of"));
}

TEST_F(Creating, MindsOuterVolumesOfASingleVolumeOnly) {
    const std::string marker = scratch.Write("8/media/2/2.txt", kOurs);
    request.out = scratch.Text("7\\media");
    EXPECT_EQ(Complaint(), "none");
    stdfs::remove_all(FromUtf8(scratch.Text("7")));
    request.volumes = 1;
    EXPECT_THAT(Complaint(), testing::StartsWith("refused: \"" + marker + "\" is the marker of"));
}

// Nor are other files of theirs, or folders, whatever their names.
TEST_F(Creating, LeavesWhatIsNoMarkerAboveAnOuterVolumeAlone) {
    request.layout = Layout::Outer;
    request.firstOuter = 7;
    scratch.Write("out/7/notes.txt", kOld);
    scratch.Write("out/7/media/3/3.txt", kOld);
    scratch.MakeDir("out/7/media/5.txt");
    EXPECT_EQ(Complaint(), "none");
}

// Volumes of other sets are not in the way.
TEST_F(Creating, LeavesOtherSetsAlone) {
    scratch.Write("out/3/3.txt", kOld);
    scratch.Write("out/1/5.txt", "chapter 5");
    scratch.Write("out/1/notes.txt", kOld);
    EXPECT_EQ(Complaint(), "none");
    mediatool::ValidateRequest check;
    check.folders = {scratch.Text("out\\1")};
    EXPECT_EQ(mediatool::Validate(check).view.layout, Layout::Siblings);
}

}  // namespace
}  // namespace launcher::test
