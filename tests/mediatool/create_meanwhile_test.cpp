// What other programs do to a set while create is writing it.

#include <windows.h>

#include <filesystem>
#include <functional>

#include "fs/encoding.h"
#include "fs/owners.h"
#include "tests/mediatool/creating.h"
#include "tests/support/hook.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

class Meanwhile : public Creating {
  protected:
    Meanwhile() {
        scratch.Write("one/a.bin", "new");
        scratch.Write("two/b.bin", "new");
        request.from = {scratch.Text("one"), scratch.Text("two")};
    }

    // Calls `event` once, when a run tells of `what` with so many files done.
    void When(const std::string& what, std::size_t files, const std::function<void()>& event) {
        request.progress = [=, isOver = false](const mediatool::Amounts& amounts) mutable {
            if (isOver || what != amounts.what || files != amounts.files) return;
            isOver = true;
            event();
        };
    }

    std::string Mark() const { return scratch.Text("out\\1\\mediatool-unfinished.txt"); }
    bool IsThere(const std::string& name) const {
        return stdfs::exists(FromUtf8(scratch.Text(name)));
    }
    std::string Content(const std::string& name) const {
        return ReadFile(FromUtf8(scratch.Text(name)));
    }
    std::string RefusalOfB() const {
        return "refused: \"" + scratch.Text("out\\2\\b.bin") +
               "\" has come to be there meanwhile, or is the short name of another new file.";
    }
};

TEST_F(Meanwhile, AFileThatComesToBeThereStays) {
    for (const bool force : {false, true}) {
        request.force = force;
        When("Copying", 1, [this] { scratch.Write("out/2/b.bin", "theirs"); });
        EXPECT_EQ(Complaint(), RefusalOfB());
        EXPECT_EQ(TreeBelow(scratch.Dir() / "out"), (Tree{{"2", "/"}, {"2\\b.bin", "theirs"}}));
        stdfs::remove_all(FromUtf8(scratch.Text("out")));
    }
}

// It may not be taken for whole.
TEST_F(Meanwhile, AFileThatCannotBeTakenBackLeavesTheSetMarked) {
    std::string complaint;
    {
        const Hook<decltype(&DeleteFileW)> held("DeleteFileW", [](auto real, LPCWSTR name) {
            if (!std::wstring(name).ends_with(L"\\a.bin")) return real(name);
            SetLastError(ERROR_WRITE_PROTECT);
            return FALSE;
        });
        When("Copying", 1, [this] { scratch.Write("out/2/b.bin", "theirs"); });
        complaint = Complaint();
    }
    EXPECT_EQ(complaint, RefusalOfB() + " \"" + scratch.Text("out\\1\\a.bin") +
                             "\" could not be taken back. \"" + Mark() +
                             "\" stays until the same create has run to its end.");
    EXPECT_TRUE(IsThere("out\\1\\mediatool-unfinished.txt"));
}

TEST_F(Meanwhile, ASecondCreateIsRefused) {
    request.force = true;
    for (const bool isResumed : {false, true}) {
        if (isResumed) scratch.Write("out/1/mediatool-unfinished.txt");
        std::string second;
        When("Copying", 1, [this, &second] {
            CreateRequest other = request;
            other.progress = [](const mediatool::Amounts& amounts) {
                EXPECT_STREQ(amounts.what, "Content") << "nothing is compared in vain";
            };
            second = Complaint(other);
        });
        EXPECT_EQ(Complaint(), "none");
        EXPECT_EQ(second, "refused: Another mediatool is writing this set: it has \"" + Mark() +
                              "\" open.");
        EXPECT_EQ(Content("out\\2\\b.bin"), "new");
        EXPECT_FALSE(IsThere("out\\1\\mediatool-unfinished.txt"));
        stdfs::remove_all(FromUtf8(scratch.Text("out")));
    }
}

// Both have looked before one of them begins.
TEST_F(Meanwhile, ASecondCreateLeavesTheMarkOfTheFirst) {
    When("Comparing", 1, [this] { scratch.Write("out/1/mediatool-unfinished.txt", "first"); });
    EXPECT_THAT(Complaint(), testing::StartsWith("refused: Another mediatool is writing this set"));
    EXPECT_EQ(TreeBelow(scratch.Dir() / "out"),
              (Tree{{"1", "/"}, {"1\\mediatool-unfinished.txt", "first"}}));
}

// A program that reads a file may allow that it is written to, and still not that it is replaced.
TEST_F(Meanwhile, AFileInUseIsFoundBeforeTheFirstChange) {
    request.force = true;
    scratch.Write("out/1/a.bin", "old");
    const std::string file = scratch.Write("out/2/b.bin", "old");
    const FileHandle user(CreateFileW(ToWide(file).c_str(), GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    ASSERT_TRUE(user);
    const Tree before = TreeBelow(scratch.Dir());
    EXPECT_THAT(Complaint(), testing::StartsWith("refused: \"" + file + "\" cannot be written: "));
    EXPECT_EQ(TreeBelow(scratch.Dir()), before);
}

}  // namespace
}  // namespace launcher::test
