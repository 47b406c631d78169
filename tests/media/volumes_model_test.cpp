// Generated media against a second, slow way to work out what a search for volumes leaves behind:
// from the files on disk, without any of the launcher's code, and without the messages.

#include <climits>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <regex>
#include <utility>

#include "tests/media/volumes_fixture.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

std::optional<std::string> TextOf(const std::string& path) {
    if (!stdfs::is_regular_file(FromUtf8(path))) return std::nullopt;
    return ReadFile(FromUtf8(path));
}

std::string FirstMatch(const std::string& text, const char* pattern) {
    std::smatch match;
    return std::regex_search(text, match, std::regex(pattern)) ? match.str(1) : "";
}

std::string IdIn(const std::string& marker) {
    return FirstMatch("\n" + TextOf(marker).value_or(""), "\nMTBDIR=([^\n]*?)\r?(?:\n|$)");
}

std::string IdOf(const std::string& folder, int volume) {
    return IdIn(folder + "\\" + std::to_string(volume) + ".txt");
}

std::optional<int> LeadingNumber(const std::string& text) {
    const std::string digits = FirstMatch(text, "^\\s*([+-]?[0-9]+)");
    if (digits.empty() || digits.size() > 15) return std::nullopt;
    const long long value = std::stoll(digits);
    if (value < INT_MIN || value > INT_MAX) return std::nullopt;
    return static_cast<int>(value);
}

std::string ParentOf(const std::string& path) {
    const std::size_t last = path.rfind('\\');
    return last == std::string::npos ? "" : path.substr(0, last);
}

// The nearest marker of an outer volume above `folder`: its path and number.
std::optional<std::pair<std::string, int>> OuterMarkerAbove(const std::string& folder) {
    const std::string dir = ParentOf(folder);
    if (dir.empty()) return std::nullopt;
    for (const auto& entry : stdfs::directory_iterator(FromUtf8(dir + "\\"))) {
        const std::string name = ToUtf8(entry.path().filename());
        const int number = LeadingNumber(FirstMatch(name, "^(..?)\\.txt$")).value_or(0);
        if (number > 0 && !entry.is_directory()) return std::pair(dir + "\\" + name, number);
    }
    return OuterMarkerAbove(dir);
}

class Model {
  public:
    Model(const std::string& mediaDir, bool softMgt) : one_(mediaDir) {
        const std::optional<std::string> text = TextOf(one_ + "\\inst\\volumes.txt");
        const std::string line = FirstMatch(text.value_or("0"), "^([^\r\n]*)");
        const std::optional<int> count = LeadingNumber(line);
        if (!text || softMgt || (count && *count < 2)) {
            End(1);
            return;
        }
        if (!count) return;
        count_ = *count;
        out.volumesCount = line;
        out.mtbDir = id_ = IdOf(one_, 1);
        if (!id_.empty()) Search();
    }

    Outcome out;

  private:
    // The folder where a layout has volume k; empty for none, "?" for that of another medium.
    using Layout = std::function<std::string(int k)>;

    void End(int result) {
        out.result = result;
        out.skipTemporaryCopy = true;
    }

    // False when none of the volumes lies where the layout has it.
    bool Settles(const Layout& layout, int resultWhenComplete) {
        std::vector<std::string> own;
        bool foreign = false;
        for (int k = 2; k <= count_; ++k) {
            const std::string folder = layout(k);
            const std::string id = folder == "?" ? folder : IdOf(folder, k);
            if (id == id_) own.push_back(folder);
            foreign = foreign || (!id.empty() && id != id_);
        }
        const bool complete = !foreign && static_cast<int>(own.size()) == count_ - 1;
        if (complete) End(resultWhenComplete);
        if (resultWhenComplete > 1) out.volumes = own;
        return foreign || !own.empty();
    }

    void Search() {
        const std::string parent = ParentOf(one_);
        if (Settles([&](int) { return one_; }, 1)) {
            if (out.result == 1) out.volumesCount.clear();
            return;
        }
        if (Settles([&](int k) { return parent + "\\" + std::to_string(k); }, count_)) return;
        const auto marker = OuterMarkerAbove(one_);
        const std::string outerId = marker ? IdIn(marker->first) : "";
        if (outerId.empty()) return;
        const std::string first = ParentOf(marker->first);
        const std::string below = parent.substr(first.size());
        out.mtbDir = outerId;
        out.firstOuterVolume = std::to_string(marker->second);
        out.firstOuterPath = first;
        out.outerRelativePath = below.empty() ? "" : below.substr(1);
        Settles(
            [&](int k) -> std::string {
                const int number = marker->second + k - 1;
                const std::string outer = ParentOf(first) + "\\" + std::to_string(number);
                const std::string id = IdOf(outer, number);
                if (id != outerId) return id.empty() ? "" : "?";
                return outer + below + "\\" + std::to_string(k);
            },
            count_);
    }

    std::string one_;  // the folder of volume 1
    std::string id_;
    int count_ = 0;
};

// A random medium in a new folder, of any of the three layouts, with anything wrong about it.
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

TEST(VolumesModel, AgreesOnGeneratedMedia) {
    // How often each kind of end was met, to show that the generator reaches them all.
    std::map<std::string, int> ends;
    for (unsigned seed = 1; seed <= 120; ++seed) {
        const GeneratedLayout layout(seed);
        const Outcome expected = Model(layout.MediaDir(), layout.SoftMgt()).out;
        Outcome outcome = Resolve(layout.MediaDir(), layout.SoftMgt());
        outcome.messages.clear();
        ASSERT_EQ(outcome, expected) << "seed " << seed;
        const std::string result = outcome.result > 1 ? "N" : std::to_string(outcome.result);
        ++ends[result + (outcome.mtbDir.empty() ? " without an id" : "") +
               (outcome.firstOuterVolume.empty() ? "" : " in outer volumes")];
    }
    for (const char* end : {"0", "1", "N", "0 without an id", "1 without an id",
                            "0 in outer volumes", "N in outer volumes"})
        EXPECT_GE(ends[end], 2) << end;
}

}  // namespace
}  // namespace launcher::test
