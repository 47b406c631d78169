#include "tests/media/volumes_model.h"

#include <cctype>
#include <climits>
#include <filesystem>
#include <optional>
#include <utility>

#include "tests/support/temporary_folder.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

std::optional<std::string> TextOf(const std::string& path) {
    if (!stdfs::is_regular_file(FromUtf8(path))) return std::nullopt;
    return ReadFile(FromUtf8(path));
}

// The text from `start` to the end of its line.
std::string LineAt(const std::string& text, std::size_t start) {
    const std::string line = text.substr(start, text.find('\n', start) - start);
    return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

std::string IdIn(const std::string& folder, const std::string& markerName) {
    const std::string text = "\n" + TextOf(folder + "\\" + markerName).value_or("");
    const std::size_t at = text.find("\nMTBDIR=");
    return at == std::string::npos ? "" : LineAt(text, at + 8);
}

std::string IdOf(const std::string& folder, int volume) {
    return IdIn(folder, std::to_string(volume) + ".txt");
}

std::optional<int> LeadingNumber(const std::string& text) {
    std::size_t at = text.find_first_not_of(" \t\v\f\r\n");
    if (at == std::string::npos) return std::nullopt;
    const bool negative = text[at] == '-';
    if (text[at] == '-' || text[at] == '+') ++at;
    if (at == text.size() || !std::isdigit(static_cast<unsigned char>(text[at])))
        return std::nullopt;
    long long value = 0;
    for (; at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])); ++at) {
        value = value * 10 + (text[at] - '0');
        if (value > 1LL << 40) return std::nullopt;
    }
    if (negative) value = -value;
    if (value < INT_MIN || value > INT_MAX) return std::nullopt;
    return static_cast<int>(value);
}

std::string ParentOf(const std::string& path) {
    const std::size_t last = path.rfind('\\');
    return last == std::string::npos ? "" : path.substr(0, last);
}

// The first marker of an outer volume in a folder, as the system lists it: name and number.
std::optional<std::pair<std::string, int>> AmMarkerIn(const std::string& folder) {
    for (const auto& entry : stdfs::directory_iterator(FromUtf8(folder + "\\"))) {
        const std::string name = ToUtf8(entry.path().filename());
        if (entry.is_directory()) continue;
        for (const std::size_t digits : {std::size_t{1}, std::size_t{2}}) {
            if (name.size() != digits + 4 || name.substr(digits) != ".txt") continue;
            const int number = LeadingNumber(name.substr(0, digits)).value_or(-1);
            if (number > 0) return std::pair(name, number);
        }
    }
    return std::nullopt;
}

class Model {
  public:
    explicit Model(std::string mediaDir) : v_(std::move(mediaDir)) {}

    Outcome Run(bool softMgt) {
        const std::optional<std::string> countText = TextOf(v_ + "\\inst\\volumes.txt");
        if (!countText || softMgt) return Whole();
        const std::string line = LineAt(*countText, 0);
        const std::optional<int> count = LeadingNumber(line);
        if (!count) return out_;
        if (*count < 2) return Whole();
        n_ = *count;
        Say(Info("This media is composed of " + line + " volumes."));
        out_.volumesCount = line;
        x_ = IdOf(v_, 1);
        if (x_.empty()) {
            Say(Warning("1.txt not found or not accessible in: " + v_));
            Say(Plain("Please make sure you copied the whole volume."));
            return out_;
        }
        out_.mtbDir = x_;
        SingleFolder();
        return out_;
    }

  private:
    void Say(Message message) { out_.messages.push_back(std::move(message)); }

    Outcome Whole() {
        out_.result = 1;
        out_.skipTemporaryCopy = true;
        return out_;
    }

    void SayMissing() {
        Say(Warning("Missing volumes. Please make sure you copied everything correctly."));
    }

    void SingleFolder() {
        int same = 1;
        bool foreign = false;
        for (int k = 2; k <= n_; ++k) {
            const std::string id = IdOf(v_, k);
            if (id == x_) ++same;
            if (id.empty() || id == x_) continue;
            foreign = true;
            Say(Warning("Volume " + std::to_string(k) + " of " + id +
                        " found in the directory of " + x_));
        }
        if (foreign) return;
        if (same == n_) {
            Say(Plain("All volumes found in: " + v_));
            Whole();
            out_.volumesCount.clear();
        } else if (same > 1) {
            SayMissing();
        } else {
            Say(Plain("Volume 1 found in: " + v_));
            Siblings();
        }
    }

    // One of the folders in which a volume may lie alone.
    void Look(int k, const std::string& folder) {
        const std::string id = IdOf(folder, k);
        if (id.empty()) return;
        const std::string volume = "Volume " + std::to_string(k);
        if (id == x_) {
            Say(Plain(volume + " found in: " + folder));
            out_.volumes.push_back(folder);
        } else {
            Say(Warning(volume + " of " + id + " found in " + folder + " instead of " + x_));
            foreign_ = true;
        }
    }

    // True when the folders looked at settle the result.
    bool Settled() {
        const int same = 1 + static_cast<int>(out_.volumes.size());
        if (foreign_) return true;
        if (same == n_) {
            out_.result = n_;
            out_.skipTemporaryCopy = true;
            return true;
        }
        if (same > 1) SayMissing();
        return same > 1;
    }

    void Siblings() {
        for (int k = 2; k <= n_; ++k)
            Look(k, ParentOf(v_) + "\\" + std::to_string(k));
        if (Settled()) return;
        for (std::string g = ParentOf(v_); !g.empty(); g = ParentOf(g)) {
            const auto marker = AmMarkerIn(g);
            if (marker) return AmSet(g, marker->first, marker->second);
        }
    }

    void AmSet(const std::string& a, const std::string& markerName, int first) {
        const std::string y = IdIn(a, markerName);
        if (y.empty()) {
            Say(Warning("Cannot open " + markerName + " in " + a));
            Say(Plain("Please make sure you copied and/or extracted everything properly."));
            return;
        }
        const std::string p = ParentOf(v_);
        const std::string r = p == a ? "" : p.substr(a.size() + 1);
        Say(Plain("AM volume " + std::to_string(first) + " found in: " + a));
        out_.mtbDir = y;
        out_.firstAmVolume = std::to_string(first);
        out_.firstAmPath = a;
        out_.amRelativePath = r;
        for (int j = 2; j <= n_; ++j) {
            const int m = first + j - 1;
            const std::string outer = ParentOf(a) + "\\" + std::to_string(m);
            const std::string id = IdOf(outer, m);
            if (id.empty()) continue;
            const std::string volume = "AM volume " + std::to_string(m);
            if (id != y) {
                Say(Warning(volume + " of " + id + " found in " + outer + " instead of " + y));
                foreign_ = true;
                continue;
            }
            Say(Plain(volume + " found in: " + outer));
            Look(j, outer + (r.empty() ? "" : "\\" + r) + "\\" + std::to_string(j));
        }
        Settled();
    }

    std::string v_;         // the folder of volume 1
    std::string x_;         // the id of its media
    int n_ = 0;             // the number of volumes
    bool foreign_ = false;  // a volume of another media was met outside volume 1's folder
    Outcome out_;
};

}  // namespace

Outcome ModelOutcome(const std::string& mediaDir, bool softMgt) {
    return Model(mediaDir).Run(softMgt);
}

}  // namespace launcher::test
