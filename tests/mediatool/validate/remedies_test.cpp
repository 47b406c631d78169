// What validate tells to do makes a set right: each remedy is followed to the letter, and then the
// launcher is started.

#include <filesystem>
#include <utility>

#include "mediatool/validate/validate.h"
#include "tests/e2e/support/launcher_test.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;
using mediatool::Finding;
using mediatool::Level;

// A set of three volumes side by side, each with a file that says which volume it came with.
class RemediesTest : public LauncherTest {
  protected:
    RemediesTest() {
        Media(scratch.Dir() / "set" / "1").AddInstaller(UsualOs()).MakeSplit(3, "SET");
        for (const int k : {2, 3}) {
            const std::string number = std::to_string(k);
            scratch.Write("set/" + number + "/content.txt", "content of volume " + number);
            WriteVolumeMarker(scratch.Dir() / "set" / number, k, "SET");
        }
    }

    void Move(const std::string& from, const std::string& to) const {
        stdfs::create_directories((scratch.Dir() / to).parent_path());
        Rename(scratch.Dir() / from, scratch.Dir() / to);
    }

    std::string Set(const std::string& name) const { return scratch.Text("set\\" + name); }

    // The errors, the gravest findings.
    std::vector<Finding> Errors(const std::string& first = "1") const {
        mediatool::ValidateRequest request;
        request.folders = {Set(first)};
        std::vector<Finding> errors = mediatool::Validate(request).findings.Sorted();
        std::erase_if(errors, [](const Finding& each) { return each.level != Level::Error; });
        return errors;
    }

    void ExpectToldToDo(const std::string& id, const std::string& action,
                        const std::string& first = "1") const {
        const std::vector<Finding> errors = Errors(first);
        ASSERT_FALSE(errors.empty());
        EXPECT_EQ(errors.front().id, id);
        EXPECT_EQ(errors.front().action, action);
    }

    // Folders that have the numbers of other volumes, each with its right number.
    void ExpectToldToRename(const std::vector<std::pair<std::string, std::string>>& folders) const {
        const std::vector<Finding> errors = Errors();
        ASSERT_EQ(errors.size(), folders.size());
        for (std::size_t i = 0; i < folders.size(); ++i) {
            EXPECT_EQ(errors[i].id, "volume-folder-named-otherwise");
            EXPECT_EQ(errors[i].file, Set(folders[i].first));
            EXPECT_EQ(errors[i].action, "Rename the folder to " + folders[i].second +
                                            ", and leave the marker as it is.");
        }
    }

    // The launcher finds the volumes, and in each its own content.
    void ExpectWhole() const {
        EXPECT_EQ(Errors().size(), 0u);
        const LauncherRun run = Run(set_, {"-wait"});
        for (const std::string k : {"2", "3"}) {
            EXPECT_EQ(run.Installer().Variable("ZEPAdmInstVolumePath_" + k), Set(k));
            EXPECT_EQ(ReadFile(scratch.Dir() / "set" / k / "content.txt"),
                      "content of volume " + k);
        }
        EXPECT_EQ(run.LeftInTemp(), std::vector<std::string>());
    }

    Media set_{scratch.Dir() / "set" / "1"};
};

TEST_F(RemediesTest, OfTwoFoldersThatWereSwapped) {
    Move("set/2", "set/x");
    Move("set/3", "set/2");
    Move("set/x", "set/3");
    ExpectToldToRename({{"3", "2"}, {"2", "3"}});
    Move("set/2", "set/x");
    Move("set/3", "set/2");
    Move("set/x", "set/3");
    ExpectWhole();
}

TEST_F(RemediesTest, OfAFolderThatWasSwappedWithTheFirst) {
    Move("set/1", "set/x");
    Move("set/2", "set/1");
    Move("set/x", "set/2");
    ExpectToldToDo(
        "volume-folder-named-otherwise",
        "Give volume 1's folder another name, and this one the name 2; leave the markers "
        "as they are.",
        "2");
    EXPECT_EQ(Errors("2").size(), 1u);
    Move("set/2", "set/x");
    Move("set/1", "set/2");
    Move("set/x", "set/1");
    ExpectWhole();
}

TEST_F(RemediesTest, OfAVolumeThatWasUnpackedOneFolderTooDeep) {
    Move("set/2", "set/x");
    Move("set/x", "set/2/2");
    ExpectToldToDo("volume-too-deep", "Move all that is in the folder up, into " + Set("2") + ".");
    EXPECT_EQ(Errors().size(), 1u);
    Move("set/2/2/content.txt", "set/2/content.txt");
    Move("set/2/2/2.txt", "set/2/2.txt");
    stdfs::remove(scratch.Dir() / "set" / "2" / "2");
    ExpectWhole();
}

TEST_F(RemediesTest, OfAFirstVolumeThatWasUnpackedOneFolderTooDeep) {
    Move("set/1", "set/x");
    Move("set/x", "set/1/1");
    ExpectToldToDo("volume-too-deep", "Move all that is in the folder up, into " + Set("1") + ".",
                   "1\\1");
    for (const auto& entry : stdfs::directory_iterator(scratch.Dir() / "set" / "1" / "1"))
        Rename(entry.path(), scratch.Dir() / "set" / "1" / entry.path().filename());
    stdfs::remove(scratch.Dir() / "set" / "1" / "1");
    ExpectWhole();
}

TEST_F(RemediesTest, OfVolumesBelowTheFirst) {
    Move("set/2", "set/1/2");
    Move("set/3", "set/1/3");
    ExpectToldToDo("volume-misplaced", "Move the folder there.");
    const std::vector<Finding> errors = Errors();
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0].why, "It looks for the volume in " + Set("2") + ".");
    EXPECT_EQ(errors[0].file, Set("1\\2"));
    Move("set/1/2", "set/2");
    Move("set/1/3", "set/3");
    ExpectWhole();
}

TEST_F(RemediesTest, OfAVolumeInAFolderBesideTheFirst) {
    Move("set/2", "set/Disk/2");
    ExpectToldToDo("volume-misplaced", "Move the folder there.");
    EXPECT_EQ(Errors().size(), 1u);
    Move("set/Disk/2", "set/2");
    ExpectWhole();
}

TEST_F(RemediesTest, OfAFolderThatHasTheNumberOfAnotherVolume) {
    Move("set/3", "elsewhere");
    Move("set/2", "set/3");
    Move("elsewhere", "set/4");
    ExpectToldToRename({{"3", "2"}, {"4", "3"}});
    Move("set/3", "set/2");
    Move("set/4", "set/3");
    ExpectWhole();
}

TEST_F(RemediesTest, OfAVolumeThatIsStillPacked) {
    Move("set/2", "unpacked");
    scratch.Write("set/2.zip", "PK");
    ExpectToldToDo("volume-not-unpacked", "Unpack it into that folder.");
    EXPECT_EQ(Errors().size(), 1u);
    Move("unpacked", "set/2");
    ExpectWhole();
}

}  // namespace
}  // namespace launcher::test
