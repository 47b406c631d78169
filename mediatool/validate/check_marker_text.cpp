// The text of one volume marker.

#include <optional>
#include <vector>

#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr char kKey[] = "MTBDIR=";
constexpr std::size_t kMarkerLimit = std::size_t{1024} * 1024;

constexpr char kNotThere[] = "The launcher reads no identifier, as if the volume were not there.";
constexpr char kRewrite[] =
    "Write the line MTBDIR=identifier, in upper case and in the first column, in plain text.";

class MarkerCheck {
  public:
    MarkerCheck(const Path& path, Findings& out)
        : path_(path), out_(out), id_(ReadMtbDir(path.Text())) {}

    std::string Check() {
        if (IsFolder(path_)) {
            Error("volume-marker-is-folder", "The marker is a folder.");
            return id_;
        }
        const std::optional<std::string> bytes = ReadStart(path_, kMarkerLimit);
        if (!bytes)
            Error("volume-marker-unreadable", "The marker cannot be read.");
        else if (bytes->empty())
            Error("volume-marker-empty", "The marker is empty.");
        else if (IsUtf16(*bytes))
            Error("volume-marker-utf16", "The marker is in UTF-16.");
        else
            CheckBytes(*bytes);
        return id_;
    }

  private:
    void Error(const char* id, const std::string& what, const char* why = kNotThere) {
        out_.Error(id, path_.Text(), what, why, kRewrite);
    }
    void Warning(const char* id, const std::string& what, const char* why) {
        out_.Warning(id, path_.Text(), what, why, kRewrite);
    }

    void CheckBytes(const std::string& bytes) {
        if (bytes.starts_with(kUtf8Mark)) {
            if (id_.empty())
                Error("volume-marker-bom", "The marker begins with a byte-order mark.");
            else
                Warning("volume-marker-bom", "The marker begins with a byte-order mark.",
                        "It hides the first line from the launcher.");
            if (id_.empty()) return;
        }
        const std::vector<std::string> lines = LinesOf(bytes);
        if (id_.empty()) {
            CheckWhyUnread(lines);
        } else {
            CheckIdentifier(id_, path_, out_);
            CheckOtherIdentifiers(lines);
        }
    }

    // The first line that means to be the identifier's says what is wrong with it.
    void CheckWhyUnread(const std::vector<std::string>& lines) {
        for (const std::string& line : lines) {
            const std::string trimmed = Trimmed(line);
            const std::string lower = InLowerCase(trimmed);
            if (line.starts_with(kKey)) {
                Error("volume-id-empty", "Nothing stands after MTBDIR=.");
                return;
            }
            if (trimmed.starts_with(kKey)) {
                Error("volume-marker-leading-blank", "There is a blank in front of MTBDIR=.");
                return;
            }
            if (lower.starts_with("mtbdir=")) {
                Error("volume-marker-lower-case", "MTBDIR= is not in upper case.");
                return;
            }
            if (!lower.starts_with("mtbdir")) continue;
            const std::string rest = Trimmed(lower.substr(6));
            if (rest.starts_with("=")) {
                Error("volume-marker-blank-before-equals", "There is a blank in front of the =.");
                return;
            }
            Error("volume-marker-no-equals", "There is no = after MTBDIR.");
            return;
        }
        Error("volume-marker-no-id", "No line begins with MTBDIR=.");
    }

    void CheckOtherIdentifiers(const std::vector<std::string>& lines) {
        for (const std::string& line : lines) {
            if (!line.starts_with(kKey) || line.substr(sizeof kKey - 1) == id_) continue;
            Warning("volume-marker-two-ids", "The marker has two different identifiers.",
                    "The first counts.");
            return;
        }
    }

    const Path& path_;
    Findings& out_;
    std::string id_;  // as the launcher reads it
};

}  // namespace

void CheckIdentifier(const std::string& id, const Path& marker, Findings& out) {
    constexpr char kCounts[] = "It counts as a part of the identifier.";
    const auto error = [&](const char* name, const char* what, const char* why) {
        out.Error(name, marker.Text(), what, why, kRewrite);
    };
    const auto warning = [&](const char* name, const char* what, const char* why) {
        out.Warning(name, marker.Text(), what, why, kRewrite);
    };
    if (id.ends_with('\r'))
        error("volume-marker-double-cr", "The line ends with two carriage returns.", kCounts);
    else if (id.find('\r') != std::string::npos)
        error("volume-marker-cr-only", "The lines end with carriage returns alone.",
              "The rest of the file counts as a part of the identifier.");
    else if (HasControlCharacter(id) || Trimmed(id).find('\t') != std::string::npos)
        error("volume-id-control-character", "There is a control character in the identifier.",
              kCounts);
    if (id.starts_with(' ') || id.starts_with('\t'))
        warning("volume-id-leading-blank", "There is a blank after MTBDIR=.", kCounts);
    if (id.ends_with(' ') || id.ends_with('\t'))
        warning("volume-id-trailing-blank", "There is a blank after the identifier.", kCounts);
    if (id.size() > 1 && id.front() == '"' && id.back() == '"')
        warning("volume-id-quoted", "The identifier is in quotes.",
                "They count as a part of the identifier.");
    if (!IsUtf8(id))
        warning("volume-id-not-utf8", "The identifier is not in UTF-8.",
                "The installer gets other characters in their place.");
}

std::string CheckMarkerText(const Path& marker, Findings& out) {
    return MarkerCheck(marker, out).Check();
}

}  // namespace launcher::mediatool
