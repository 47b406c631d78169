// The count file, inst\volumes.txt.

#include <algorithm>
#include <optional>
#include <vector>

#include "media/folder_names.h"
#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kCountFileLimit = std::size_t{64} * 1024;
constexpr int kMostVolumes = 99;

constexpr char kUnread[] =
    "The launcher reads no number, looks for no volumes and copies the installer to the temporary "
    "folder.";
constexpr char kHandedOn[] = "The line goes to the installer as it stands.";
constexpr char kNumberOnly[] =
    "Write the number alone on the first line, with mediatool create --force.";

// The mistakes in one count file, whose path is in every finding.
class CountFile {
  public:
    CountFile(const Path& path, Findings& out) : path_(path), out_(out) {}

    void Check() {
        if (IsFolder(path_)) {
            Error("count-file-is-folder", "The count file is a folder.", kUnread);
            return;
        }
        const std::optional<std::string> bytes = ReadStart(path_, kCountFileLimit);
        if (!bytes)
            Error("count-file-unreadable", "The count file cannot be read.", kUnread);
        else if (bytes->empty())
            Error("count-file-empty", "The count file is empty.", kUnread);
        else if (IsUtf16(*bytes))
            Error("count-file-utf16", "The count file is in UTF-16.", kUnread);
        else if (bytes->starts_with(kUtf8Mark))
            Error("count-file-bom", "The count file begins with a byte-order mark.", kUnread);
        else
            CheckLines(LinesOf(*bytes));
    }

  private:
    void Error(const char* id, const std::string& what, const std::string& why) {
        out_.Error(id, path_.Text(), what, why, kNumberOnly);
    }
    void Warning(const char* id, const std::string& what, const std::string& why) {
        out_.Warning(id, path_.Text(), what, why, kNumberOnly);
    }

    void CheckLines(const std::vector<std::string>& lines) {
        CheckLine(lines.front());
        for (std::size_t i = 1; i < lines.size(); ++i) {
            if (Trimmed(lines[i]).empty()) continue;
            out_.Note("count-file-more-lines", path_.Text(),
                      "The count file has more than one line.", "Only the first is read.",
                      "Nothing, or remove the others.");
            return;
        }
    }

    void CheckLine(const std::string& line) {
        const std::string trimmed = Trimmed(line);
        if (trimmed.empty()) {
            Error("count-file-blank-line-first", "The first line of the count file is blank.",
                  kUnread);
            return;
        }
        const std::optional<VolumeCount> count = ReadVolumeCount(path_.Text());
        if (!count) {
            CheckUnread(trimmed);
            return;
        }
        CheckNumber(count->count);
        CheckForm(line, trimmed);
    }

    void CheckUnread(const std::string& trimmed) {
        const std::size_t sign = trimmed[0] == '-' || trimmed[0] == '+' ? 1 : 0;
        if (trimmed.size() > sign && trimmed[sign] >= '0' && trimmed[sign] <= '9')
            Error("count-file-out-of-range", "The number of volumes is too large to be read.",
                  kUnread);
        else
            Error("count-file-not-a-number", "The first line of the count file is no number.",
                  kUnread);
    }

    void CheckNumber(int count) {
        const std::string why = "The launcher takes the media for one that is not split.";
        if (count < 0)
            Error("count-file-negative", "The number of volumes is below zero.", why);
        else if (count == 0)
            Error("count-file-zero", "The number of volumes is 0.", why);
        else if (count == 1)
            out_.Note("count-file-one", path_.Text(), "The number of volumes is 1.", why,
                      "Nothing, or remove the file; with more volumes, write their number.");
        else if (count > kMostVolumes)
            Error("count-file-absurd", "The number of volumes is " + std::to_string(count) + ".",
                  "The launcher looks for every one of them, three times.");
    }

    // What stands around the number.
    void CheckForm(const std::string& line, const std::string& trimmed) {
        const std::string digits =
            trimmed[0] == '+' || trimmed[0] == '-' ? trimmed.substr(1) : trimmed;
        if (line.ends_with('\r'))
            Error("count-file-double-cr", "The first line ends with two carriage returns.",
                  kHandedOn);
        else if (line.find('\r') != std::string::npos)
            Error("count-file-cr-only", "The lines end with carriage returns alone.",
                  "The whole file is one line for the launcher, and goes to the installer as it "
                  "stands.");
        else if (HasControlCharacter(line))
            Error("count-file-control-character", "There is a control character on the first line.",
                  kHandedOn);
        else if (!IsNumber(digits))
            Error("count-file-more-than-number",
                  "The first line says more than a number: \"" + line + "\".", kHandedOn);
        else if (line != trimmed)
            Warning("count-file-blanks", "There are blanks around the number.", kHandedOn);
        else if (trimmed[0] == '+')
            Warning("count-file-plus-sign", "There is a plus sign in front of the number.",
                    kHandedOn);
        else if (digits.size() > 1 && digits[0] == '0')
            Warning("count-file-leading-zeros", "There are zeros in front of the number.",
                    kHandedOn);
    }

    const Path& path_;
    Findings& out_;
};

void CheckForCountFile(const Path& file, Findings& out) {
    if (!Look(file)) return;
    out.Error("count-file-misplaced", file.Text(), "The count file is in the wrong folder.",
              "The launcher looks for inst\\volumes.txt only, and takes the media for one that is "
              "not split.",
              "Move it into inst.");
}

void CheckMisspelt(const Path& inst, Findings& out) {
    for (const char* name : {"volumes.txt.txt", "volume.txt", "volumes", "volumes.text"}) {
        const Path file = Join(inst, name);
        if (!IsFile(file)) continue;
        out.Error("count-file-misspelt", file.Text(), "The count file has the wrong name.",
                  "The launcher looks for inst\\volumes.txt only, and takes the media for one that "
                  "is not split.",
                  "Rename it to volumes.txt.");
    }
}

// Those of the other volumes, given or found.
void CheckLaterVolumes(const Subject& subject, Findings& out) {
    std::vector<Path> folders = subject.set.given;
    for (const std::string& folder : subject.view.folders)
        folders.emplace_back(folder);
    std::vector<std::string> seen = {subject.Media().Text()};
    for (const Path& folder : folders) {
        const auto isSame = [&folder](const std::string& other) {
            return SameName(other, folder.Text());
        };
        if (std::ranges::any_of(seen, isSame)) continue;
        seen.push_back(folder.Text());
        const Path file = CountFileIn(folder);
        if (Look(file))
            out.Warning("count-file-in-later-volume", file.Text(),
                        "A volume other than the first has a count file.",
                        "The launcher reads that of volume 1 only.", "Remove it.");
    }
}

}  // namespace

void CheckCountFile(const Subject& subject, Findings& out) {
    const Path inst = Join(subject.Media(), kInstFolder);
    const Path file = Join(inst, kCountFileName);
    if (Look(file)) {
        CountFile(file, out).Check();
    } else {
        CheckForCountFile(Join(subject.Media(), kCountFileName), out);
        CheckForCountFile(Join(Join(inst, kCommonFolder), kCountFileName), out);
        CheckMisspelt(inst, out);
    }
    CheckLaterVolumes(subject, out);
}

}  // namespace launcher::mediatool
