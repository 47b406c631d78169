// The text of one volume marker.

#include <algorithm>
#include <optional>
#include <vector>

#include "mediatool/base/files.h"
#include "mediatool/media/marker_bytes.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kMarkerLimit = std::size_t{1024} * 1024;
constexpr std::size_t kLongestValue = 32766;  // of an environment variable, without the null

bool Contains(const std::string& text, char c) {
    return text.find(c) != std::string::npos;
}

// The first line that means to be the identifier's says what is wrong with it.
void CheckWhyUnread(const Path& marker, const std::vector<std::string>& lines, Findings& out) {
    const std::string key = InLowerCase(kMtbDirPrefix);
    const std::string word = key.substr(0, key.size() - 1);
    for (const std::string& line : lines) {
        const std::string trimmed = Trimmed(line);
        const std::string lower = InLowerCase(trimmed);
        if (!lower.starts_with(word)) continue;
        // The launcher could not read it, on a disc that fails now and then.
        if (line.starts_with(kMtbDirPrefix) && line != kMtbDirPrefix) return;
        const bool hasEquals = Trimmed(lower.substr(word.size())).starts_with('=');
        out.AddFirst({{line.starts_with(kMtbDirPrefix), "volume-id-empty"},
                      {trimmed.starts_with(kMtbDirPrefix), "volume-marker-leading-blank"},
                      {lower.starts_with(key), "volume-marker-lower-case"},
                      {hasEquals, "volume-marker-blank-before-equals"},
                      {true, "volume-marker-no-equals"}},
                     marker);
        return;
    }
    out.Add("volume-marker-no-id", marker);
}

bool HasOtherIdentifier(const std::vector<std::string>& lines, const std::string& id) {
    return std::ranges::any_of(lines, [&](const std::string& line) {
        return line.starts_with(kMtbDirPrefix) && line != kMtbDirPrefix + id;
    });
}

}  // namespace

void CheckIdentifier(const std::string& id, const Path& marker, Findings& out) {
    const bool hasControl = HasControlCharacter(id) || Contains(Trimmed(id), '\t');
    out.AddFirst({{id.ends_with('\r'), "volume-marker-double-cr"},
                  {hasControl, "volume-id-control-character"}},
                 marker);
    if (const std::size_t length = WideLength(id); length > kLongestValue)
        out.Add("volume-id-too-long", marker,
                {std::to_string(length), std::to_string(kLongestValue)});
    out.AddAll({{id.starts_with(' ') || id.starts_with('\t'), "volume-id-leading-blank"},
                {id.ends_with(' ') || id.ends_with('\t'), "volume-id-trailing-blank"},
                {id.size() > 1 && id.starts_with('"') && id.ends_with('"'), "volume-id-quoted"},
                {!IsUtf8(id), "volume-id-not-utf8"}},
               marker);
}

void CheckMarkerText(const Path& marker, const std::string& id, Findings& out) {
    const std::optional<std::string> start = ReadStart(marker, kMarkerLimit);
    const std::string bytes = start.value_or("");
    const bool hasMark = bytes.starts_with(kUtf8Mark);
    const bool isHidden = hasMark && id.empty();
    if (out.AddFirst({{IsFolder(marker), "volume-marker-is-folder"},
                      {!start, "volume-marker-unreadable"},
                      {bytes.empty(), "volume-marker-empty"},
                      {IsUtf16(bytes), "volume-marker-utf16"},
                      {isHidden, "volume-marker-bom/unread"}},
                     marker))
        return;
    const std::vector<std::string> lines = LinesOf(bytes);
    const bool isCrOnly = !Contains(bytes, '\n') && bytes.find('\r') < bytes.size() - 1;
    const bool isHiddenByCr = id.empty() && isCrOnly &&
                              bytes.find(std::string("\r") + kMtbDirPrefix) != std::string::npos;
    out.AddAll({{hasMark, "volume-marker-bom"},
                {isHiddenByCr, "volume-marker-cr-only/unread"},
                {isCrOnly && !id.empty(), "volume-marker-cr-only"}},
               marker);
    if (isHiddenByCr) return;
    if (id.empty()) {
        CheckWhyUnread(marker, lines, out);
        return;
    }
    CheckIdentifier(isCrOnly ? id.substr(0, id.find('\r')) : id, marker, out);
    if (HasOtherIdentifier(lines, id)) out.Add("volume-marker-two-ids", marker);
}

}  // namespace launcher::mediatool
