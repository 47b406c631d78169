// What validate takes from the record of the launcher's own search, and how little it reads again.

#include <windows.h>

#include "fs/encoding.h"
#include "tests/mediatool/validate/mistake_row.h"
#include "tests/support/hook.h"

namespace launcher::test {
namespace {

using testing::ElementsAre;

std::vector<std::string> AskedFor(const SampleMedia& media) {
    std::vector<std::string> asked;
    for (const auto& [file, id] : mediatool::ViewOf(Path(media.Text())).asked)
        asked.push_back(file.Text() + "=" + id);
    return asked;
}

TEST(SearchRecord, HasTheMarkersThatTheLauncherAskedForInItsOrder) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../3");
    EXPECT_THAT(AskedFor(media),
                ElementsAre(media.Text("1.txt") + "=SET", media.Text("2.txt") + "=",
                            media.Text("3.txt") + "=", media.Text("../2/2.txt") + "=SET",
                            media.Text("../3/3.txt") + "="));
}

TEST(SearchRecord, EndsWithTheFirstLayoutThatHasAnything) {
    const SampleMedia media(Layout::OneFolder, 2);
    EXPECT_THAT(AskedFor(media),
                ElementsAre(media.Text("1.txt") + "=SET", media.Text("2.txt") + "=SET"));
}

// How often each test asks for files whose names end so.
class Opened {
  public:
    explicit Opened(std::string end) : end_(std::move(end)) {}

    int times = 0;

  private:
    std::string end_;
    const Hook<decltype(&CreateFileW)> open_{"CreateFileW",
                                             [this](auto real, LPCWSTR name, auto... others) {
                                                 if (ToNarrow(name).ends_with(end_)) ++times;
                                                 return real(name, others...);
                                             }};
};

// By the launcher's search, and for its bytes, which the search does not keep.
TEST(Markers, OfAWholeSetAreReadOnceMoreForTheirBytes) {
    const SampleMedia media(Layout::Siblings);
    const Opened opened("\\2\\2.txt");
    EXPECT_TRUE(media.Validate().IsClean());
    EXPECT_EQ(opened.times, 2);
}

TEST(Markers, AreNotAskedForWithoutEndInAFolderThatCannotBeListed) {
    SampleMedia media(Layout::Siblings);
    media.Write("inst/volumes.txt", "30000\r\n");
    const std::wstring parent = ToWide(Parent(Path(media.Text())).Text());
    const Hook<decltype(&FindFirstFileW)> list(
        "FindFirstFileW", [&parent](auto real, LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
            const std::wstring folder = parent + L"\\*";
            if (!std::wstring_view(pattern).ends_with(folder)) return real(pattern, found);
            SetLastError(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        });
    const Opened opened(".txt");
    EXPECT_EQ(Changes(media.Validate(), Layout::Siblings), "count-file-absurd volume-missing");
    EXPECT_LT(opened.times, 15000);
}

// How often a file is asked for with one of these in its path, opened or not.
int AskedWithin(const SampleMedia& media, const std::vector<std::wstring>& parts) {
    int times = 0;
    const auto count = [&](LPCWSTR name) {
        for (const std::wstring& part : parts)
            if (std::wstring_view(name).find(part) != std::wstring_view::npos) ++times;
    };
    const Hook<decltype(&CreateFileW)> open("CreateFileW",
                                            [&](auto real, LPCWSTR name, auto... others) {
                                                count(name);
                                                return real(name, others...);
                                            });
    const Hook<decltype(&GetFileAttributesExW)> look("GetFileAttributesExW",
                                                     [&](auto real, LPCWSTR name, auto... others) {
                                                         count(name);
                                                         return real(name, others...);
                                                     });
    media.Validate();
    return times;
}

TEST(Markers, AreNotLookedForBelowFiles) {
    SampleMedia media(Layout::Siblings);
    media.Remove("../2/2.txt").Write("../notes.doc", "x");
    EXPECT_EQ(AskedWithin(media, {L"\\2\\content.bin\\", L"\\notes.doc\\"}), 0);
}

TEST(Markers, AreNotLookedForBelowFoldersThatAreNotThere) {
    SampleMedia media(Layout::Outer);
    media.MakeDir("../../../10");
    EXPECT_EQ(AskedWithin(media, {L"\\10\\media\\"}), 0);
}

// Two files above volume 1 look like markers, and the system lists the one first that is none.
TEST(OuterMarkers, OfWhichTheLauncherTakesOneAreExplainedByThatOne) {
    SampleMedia media(Layout::Outer);
    media.Rename("../../7.txt", "../../7B.txt").Write("../../7a.txt", "notes of a meeting");
    const Validation validation = media.Validate();
    EXPECT_EQ(Changes(validation, Layout::Outer),
              "outer-marker-irregular outer-markers-two volume-marker-no-id");
    for (const Finding& finding : validation.findings.Sorted())
        if (finding.id == "volume-marker-no-id") {
            EXPECT_EQ(finding.file, media.Text("../../7a.txt"));
        }
}

}  // namespace
}  // namespace launcher::test
