// The count file, inst\volumes.txt.

#include <algorithm>
#include <optional>
#include <vector>

#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/checksums.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kCountFileLimit = std::size_t{64} * 1024;

std::string WithoutSign(const std::string& text) {
    return text.substr(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
}

// What is around the number.
void CheckForm(const Path& file, const std::string& line, bool hasLf, Findings& out) {
    const std::string trimmed = Trimmed(line);
    const std::string digits = WithoutSign(trimmed);
    out.AddFirst({{hasLf && line.ends_with('\r'), "count-file-double-cr"},
                  {line.find('\r') != std::string::npos, "count-file-cr-only"},
                  {HasControlCharacter(line), "count-file-control-character"},
                  {!IsNumber(digits), "count-file-more-than-number"},
                  {line != trimmed, "count-file-blanks"},
                  {trimmed.starts_with('+'), "count-file-plus-sign"},
                  {digits.size() > 1 && digits.starts_with('0'), "count-file-leading-zeros"}},
                 file, {Quoted(line)});
}

// The line of which the launcher reads `count`, or nothing.
void CheckLine(const Subject& subject, const Path& file, const std::string& line, bool hasLf,
               Findings& out) {
    const std::optional<VolumeCount>& read = subject.view.count;
    const std::string trimmed = Trimmed(line);
    const bool hasDigit = IsNumber(WithoutSign(trimmed).substr(0, 1));
    if (out.AddFirst({{trimmed.empty(), "count-file-blank-line-first"},
                      {!read && hasDigit, "count-file-out-of-range"},
                      {!read, "count-file-not-a-number"}},
                     file))
        return;
    const int count = read->count;
    out.AddFirst({{count < 0, "count-file-negative"},
                  {count == 0, "count-file-zero"},
                  {count == 1, "count-file-one"},
                  {count > kMostVolumes && subject.view.Copies(), "count-file-absurd"}},
                 file, {std::to_string(count)});
    CheckForm(file, line, hasLf, out);
}

void CheckText(const Subject& subject, const Path& file, Findings& out) {
    const bool isRead = subject.view.count.has_value();
    const std::optional<std::string> start = ReadStart(file, kCountFileLimit);
    const std::string bytes = start.value_or("");
    if (out.AddFirst({{IsFolder(file), "count-file-is-folder"},
                      {!start, "count-file-unreadable"},
                      {bytes.empty(), "count-file-empty"},
                      {IsUtf16(bytes) && isRead, "count-file-utf16/read"},
                      {IsUtf16(bytes), "count-file-utf16"},
                      {bytes.starts_with(kUtf8Mark), "count-file-bom"}},
                     file))
        return;
    const std::vector<std::string> lines = LinesOf(bytes);
    CheckLine(subject, file, lines.front(), bytes.find('\n') != std::string::npos, out);
    const bool hasMore = std::any_of(lines.begin() + 1, lines.end(), [](const std::string& line) {
        return !Trimmed(line).empty();
    });
    if (hasMore) out.Add("count-file-more-lines", file);
}

// Where there is none: one at another place or of another name, or the markers of volumes alone.
void CheckAbsence(const Subject& subject, Findings& out) {
    bool isElsewhere = false;
    const auto check = [&](const Path& file, bool isThere, FindingKind kind) {
        if (isThere) out.Add(kind, file);
        isElsewhere = isElsewhere || isThere;
    };
    for (const Path& folder : {subject.Media(), subject.Common()}) {
        const Path file = Join(folder, kCountFile);
        check(file, Look(file).has_value(), "count-file-misplaced");
    }
    for (const char* name : {"volumes.txt.txt", "volume.txt", "volumes", "volumes.text"}) {
        const Path file = Join(subject.Inst(), name);
        check(file, IsFile(file), "count-file-misspelt");
    }
    if (!isElsewhere && !subject.ids.In(MarkerIn(subject.Media(), 1)).empty())
        out.Add("count-file-missing", CountFileIn(subject.Media()));
}

// Those of the other volumes, given or found.
void CheckLaterVolumes(const Subject& subject, Findings& out) {
    for (const Path& folder : FoldersOf(subject.set.given, subject.view.folders))
        if (const Path file = CountFileIn(folder); !SameName(folder, subject.Media()) && Look(file))
            out.Add("count-file-in-later-volume", file);
}

}  // namespace

void CheckCountFile(const Subject& subject, Findings& out) {
    const Path file = CountFileIn(subject.Media());
    if (Look(file))
        CheckText(subject, file, out);
    else
        CheckAbsence(subject, out);
    CheckLaterVolumes(subject, out);
}

}  // namespace launcher::mediatool
