// All kinds of finding, once: what mediatool can say, and that every one of them has a test.

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <regex>
#include <set>

#include "tests/mediatool/mistake_row.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;
using Kinds = std::set<std::string>;

const Kinds kKinds = {
    "count-file-absurd",
    "count-file-blank-line-first",
    "count-file-blanks",
    "count-file-bom",
    "count-file-control-character",
    "count-file-cr-only",
    "count-file-double-cr",
    "count-file-empty",
    "count-file-in-later-volume",
    "count-file-is-folder",
    "count-file-leading-zeros",
    "count-file-misplaced",
    "count-file-missing",
    "count-file-misspelt",
    "count-file-more-lines",
    "count-file-more-than-number",
    "count-file-negative",
    "count-file-not-a-number",
    "count-file-one",
    "count-file-out-of-range",
    "count-file-plus-sign",
    "count-file-unreadable",
    "count-file-utf16",
    "count-file-zero",
    "file-unreadable",
    "flavour-marker-double-extension",
    "flavour-marker-is-folder",
    "flavour-marker-misplaced",
    "flavour-marker-missing",
    "flavour-marker-unknown",
    "folder-not-a-volume",
    "folder-unreadable",
    "inst-is-file",
    "inst-missing",
    "installer-32-bit-in-64-bit-folder",
    "installer-64-bit-in-32-bit-folder",
    "installer-cut-off",
    "installer-empty",
    "installer-folder-unknown",
    "installer-in-two-places",
    "installer-is-folder",
    "installer-is-library",
    "installer-misplaced",
    "installer-missing",
    "installer-never-used",
    "installer-not-program",
    "installer-on-other-media",
    "installer-other-name",
    "installer-path-too-long",
    "installer-unreadable",
    "installer-wrong-machine",
    "launcher-64-bit-only",
    "launcher-cut-off",
    "launcher-empty",
    "launcher-foreign-manifest",
    "launcher-missing",
    "launcher-not-file",
    "launcher-not-program",
    "launcher-not-signed",
    "launcher-not-this-one",
    "launcher-other-version",
    "launcher-path-cut",
    "launcher-redirection",
    "launcher-wrong-machine",
    "link",
    "link-broken",
    "link-loop",
    "name-ends-in-dot-or-blank",
    "name-outside-oem-code-page",
    "name-reserved",
    "no-layout-fits",
    "not-for-32-bit-windows",
    "not-for-windows",
    "only-32-bit-installer",
    "outer-id-differs",
    "outer-id-same",
    "outer-inner-folder-missing",
    "outer-marker-irregular",
    "outer-marker-missing",
    "outer-marker-number-too-high",
    "outer-marker-stray",
    "outer-marker-upper-case",
    "outer-marker-zero",
    "outer-markers-two",
    "outer-volume-at-drive-root",
    "outer-volume-missing",
    "path-too-long-in-copy",
    "root-entry-is-folder",
    "root-entry-missing",
    "root-entry-unreadable",
    "set-unfinished",
    "temp-outside-oem-code-page",
    "volume-beyond-count",
    "volume-folder-named-otherwise",
    "volume-id-blanks-differ",
    "volume-id-case-differs",
    "volume-id-control-character",
    "volume-id-differs",
    "volume-id-empty",
    "volume-id-leading-blank",
    "volume-id-not-utf8",
    "volume-id-quoted",
    "volume-id-trailing-blank",
    "volume-marker-blank-before-equals",
    "volume-marker-bom",
    "volume-marker-cr-only",
    "volume-marker-double-cr",
    "volume-marker-double-extension",
    "volume-marker-empty",
    "volume-marker-is-folder",
    "volume-marker-leading-blank",
    "volume-marker-leading-zeros",
    "volume-marker-lower-case",
    "volume-marker-missing",
    "volume-marker-no-equals",
    "volume-marker-no-id",
    "volume-marker-two-ids",
    "volume-marker-unreadable",
    "volume-marker-utf16",
    "volume-marker-wrong-number",
    "volume-missing",
    "volume-number-twice",
    "volumes-at-drive-root",
    "volumes-elsewhere",
    "volumes-mixed-layouts",
    "volumes-not-found",
    "volumes-on-other-drives",
};

// What stands in quotes as kinds are written, in the sources of a folder whose names have `part`.
Kinds QuotedIn(const char* folder, const std::regex& names) {
    static const std::regex kind("\"([a-z0-9]+(-[a-z0-9]+)*)\"");
    Kinds found;
    for (const auto& entry : stdfs::directory_iterator(FromUtf8(SOURCE_FOLDER) / folder)) {
        if (!std::regex_match(ToUtf8(entry.path().filename()), names)) continue;
        const std::string text = ReadFile(entry.path());
        for (std::sregex_iterator i(text.begin(), text.end(), kind), end; i != end; ++i)
            found.insert(i->str(1));
    }
    return found;
}

Kinds Without(const Kinds& all, const Kinds& others) {
    Kinds rest;
    std::ranges::set_difference(all, others, std::inserter(rest, rest.end()));
    return rest;
}

TEST(FindingKinds, AreThoseOfTheSources) {
    const std::regex sources("(check_.*|outer_volumes|validate|volume_markers)\\.cpp");
    Kinds quoted = QuotedIn("mediatool/validate", sources);
    EXPECT_THAT(Without(kKinds, quoted), testing::IsEmpty()) << "listed, but never found";
    // Words without a hyphen are something else there.
    std::erase_if(quoted,
                  [](const std::string& text) { return text.find('-') == std::string::npos; });
    EXPECT_THAT(Without(quoted, kKinds), testing::IsEmpty()) << "found, but not listed";
}

TEST(FindingKinds, HaveATestEach) {
    const Kinds tested = QuotedIn("tests/mediatool", std::regex("(?!finding_kinds).*_test\\.cpp"));
    EXPECT_THAT(Without(kKinds, tested), testing::IsEmpty());
}

}  // namespace
}  // namespace launcher::test
