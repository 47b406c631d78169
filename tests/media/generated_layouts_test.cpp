#include <gtest/gtest.h>

#include <map>
#include <random>

#include "tests/media/volumes_model.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

// A random media in a new folder, of any of the three layouts, with anything wrong about it.
class GeneratedLayout {
  public:
    explicit GeneratedLayout(unsigned seed) : random_(seed) {
        count_ = Below(4) + 1;
        first_ = Pick({1, 2, 7, 9, 10, 98, 99});
        for (int depth = Below(3); depth > 0; --depth)
            relative_ += Pick<const char*>({"R/", "some folder/", "1/", "8/", "\xC3\x9C/"});
        // Siblings may be named like volume 1's folder.
        mediaDir_ = Outer(first_) + relative_ + Pick<const char*>({"V", "1", "2", "3"});
        VolumeOne();
        const int layout = Below(4);
        for (int k = 2; k <= count_ + 1; ++k) {
            const std::string own = std::to_string(k);
            if (layout == 0 || Rarely()) Marker(mediaDir_, k, "X");
            if (layout == 1 || Rarely()) Marker(Outer(first_) + relative_ + own, k, "X");
            const int m = first_ + k - 1;
            if (layout >= 2 || Rarely()) Marker(Outer(m), m, "Y");
            if (layout >= 2 || Rarely()) Marker(Outer(m) + relative_ + own, k, "X");
        }
        if (layout >= 2 || Rarely()) Marker(Outer(first_), first_, "Y");
        Decoys();
    }

    std::string MediaDir() const { return folder_.Text(mediaDir_); }
    bool SoftMgt() const { return softMgt_; }

  private:
    static std::string Outer(int number) { return "Q/" + std::to_string(number) + "/"; }

    int Below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
    bool Rarely() { return Below(25) == 0; }
    template <class T>
    T Pick(std::initializer_list<T> values) {
        return values.begin()[Below(static_cast<int>(values.size()))];
    }

    void VolumeOne() {
        const std::string number = std::to_string(count_);
        if (!Rarely())
            folder_.Write(mediaDir_ + "/inst/volumes.txt",
                          Rarely() ? Pick<const char*>({"", "two\n", "\n2\n", "99999999999\n"})
                                   : Pick<std::string>({number, number + "\r\n", "  " + number,
                                                        number + " volumes\n9\n"}));
        Marker(mediaDir_, 1, "X");
        softMgt_ = Rarely();
    }

    // A marker with the id that belongs there, or, now and then, something else or nothing.
    void Marker(const std::string& dir, int number, const std::string& id) {
        const std::string name = dir + "/" + std::to_string(number) + ".txt";
        switch (Below(30)) {
            case 0:
                return;
            case 1:
            case 2:
                folder_.Write(name, "MTBDIR=" + Pick<std::string>({"X", "Y", "Z", id + " "}));
                return;
            case 3:
                folder_.Write(name, Pick<const char*>({"", "MTBDIR=\n", " MTBDIR=X\n", "text"}));
                return;
            case 4:
                folder_.MakeDir(name);
                return;
        }
        const std::string before = Pick<const char*>({"", "text\r\n\r\n", "MTBDIR\n"});
        const std::string end = Pick<const char*>({"", "\n", "\r\n"});
        folder_.Write(name, before + "MTBDIR=" + id + end);
    }

    // Files and folders around volume 1 that are, or only resemble, markers of outer volumes.
    void Decoys() {
        std::string dir = mediaDir_;
        while (dir.find('/') != std::string::npos) {
            dir.resize(dir.rfind('/'));
            if (Below(3) != 0) continue;
            const std::string name = Pick<const char*>(
                {"/8.TXT", "/100.txt", "/0.txt", "/ab.txt", "/-4.txt", "/readme"});
            folder_.Write(dir + name, "MTBDIR=Y\n");
            if (Rarely())
                folder_.Write(dir + Pick<const char*>({"/1a.txt", "/50.txt"}), "MTBDIR=Y");
        }
    }

    const TemporaryFolder folder_;
    std::mt19937 random_;
    int count_;
    int first_;             // number of the first outer volume
    std::string relative_;  // from there to the folder that holds volume 1's
    std::string mediaDir_;
    bool softMgt_ = false;
};

// The exit at which a search ended, to show that the generator reaches each of them.
std::string ExitOf(const Outcome& outcome) {
    if (outcome.messages.empty()) return outcome.result == 1 ? "whole" : "no number";
    const std::string& last = outcome.messages.back().text;
    const std::string layout =
        !outcome.firstAmVolume.empty() ? "outer volumes"
        : outcome.messages.size() > 1 && outcome.messages[1].text.starts_with("Volume 1 found")
            ? "siblings"
            : "one folder";
    if (outcome.result != 0) return layout + ": complete";
    if (last.starts_with("Please make sure")) return layout + ": marker without id";
    if (last.starts_with("Missing volumes")) return layout + ": missing";
    for (const Message& message : outcome.messages)
        if (message.severity == Severity::Warning) return layout + ": foreign";
    return layout + ": only volume 1";
}

TEST(GeneratedLayouts, EndAsTheModelSays) {
    constexpr unsigned kLayouts = 300;
    std::map<std::string, int> exits;
    for (unsigned seed = 1; seed <= kLayouts; ++seed) {
        const GeneratedLayout layout(seed);
        const Outcome expected = ModelOutcome(layout.MediaDir(), layout.SoftMgt());
        ASSERT_EQ(Resolve(layout.MediaDir(), layout.SoftMgt()), expected) << "seed " << seed;
        ++exits[ExitOf(expected)];
    }
    for (const char* exit :
         {"whole", "no number", "one folder: complete", "one folder: marker without id",
          "one folder: missing", "one folder: foreign", "siblings: complete", "siblings: missing",
          "siblings: foreign", "siblings: marker without id", "siblings: only volume 1",
          "outer volumes: complete", "outer volumes: missing", "outer volumes: foreign",
          "outer volumes: only volume 1"})
        EXPECT_GE(exits[exit], 3) << exit;
}

}  // namespace
}  // namespace launcher::test
