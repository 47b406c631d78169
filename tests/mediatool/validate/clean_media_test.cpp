// Media without mistakes, and folders that are no media.

#include "mediatool/base/failures.h"
#include "mediatool/validate/validate.h"
#include "tests/mediatool/validate/mistake_row.h"

namespace launcher::test {
namespace {

using mediatool::BadInput;

struct CleanRow {
    const char* name;
    Layout layout;
    int volumes;
};
void PrintTo(const CleanRow& row, std::ostream* stream) {
    *stream << row.name;
}

class CleanMediaTest : public testing::TestWithParam<CleanRow> {};

TEST_P(CleanMediaTest, HasNeitherErrorsNorWarnings) {
    const SampleMedia media(GetParam().layout, GetParam().volumes);
    const Validation validation = media.Validate();
    EXPECT_EQ(validation.findings.Count(Level::Error), 0u) << Ids(validation);
    EXPECT_EQ(validation.findings.Count(Level::Warning), 0u) << Ids(validation);
    EXPECT_EQ(validation.view.layout, GetParam().layout);
    EXPECT_FALSE(validation.view.Copies());
    EXPECT_EQ(validation.view.folders.size(), static_cast<std::size_t>(GetParam().volumes));
}

INSTANTIATE_TEST_SUITE_P(Layouts, CleanMediaTest,
                         testing::Values(CleanRow{"Ordinary", Layout::NotSplit, 1},
                                         CleanRow{"TwoInOneFolder", Layout::OneFolder, 2},
                                         CleanRow{"ManyInOneFolder", Layout::OneFolder, 12},
                                         CleanRow{"TwoBeside", Layout::Siblings, 2},
                                         CleanRow{"ManyBeside", Layout::Siblings, 12},
                                         CleanRow{"TwoInOuterVolumes", Layout::Outer, 2},
                                         CleanRow{"ManyInOuterVolumes", Layout::Outer, 12}),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(CleanMedia, GetsNotesOnly) {
    const SampleMedia media;
    const Validation validation = media.Validate();
    EXPECT_FALSE(Has(validation, "launcher-not-this-one")) << Ids(validation);
    EXPECT_FALSE(Has(validation, "launcher-other-version")) << Ids(validation);
    EXPECT_TRUE(Has(validation, "launcher-not-signed"));
    EXPECT_EQ(validation.findings.Sorted().size(), validation.findings.Count(Level::Note));
}

// The launcher has no limit of its own, and does not copy what is whole.
TEST(CleanMedia, MayHaveMoreThan99Volumes) {
    EXPECT_EQ(Changes(SampleMedia(Layout::Siblings, 120).Validate(), Layout::Siblings), "");
}

// Nobody copies it: the files of a copy are not missed.
TEST(CleanMedia, NeedsNoOtherFilesAtItsRoot) {
    SampleMedia media;
    for (const char* name :
         {"meta.TOCxml", "media.xml", "media.db", "StartTUI.exe", "setup_noUAC.exe"})
        media.Remove(name);
    const Validation validation = media.Validate();
    EXPECT_EQ(validation.findings.Count(Level::Warning), 0u) << Ids(validation);
    EXPECT_EQ(Changes(validation), "root-entry-missing");
}

TEST(StrictValidation, CountsWarnings) {
    SampleMedia media(Layout::OneFolder);
    mediatool::ValidateRequest request;
    request.folders = {media.Text()};
    request.isStrict = true;
    EXPECT_TRUE(mediatool::Validate(request).IsClean());
    media.Remove("media.db");
    EXPECT_FALSE(mediatool::Validate(request).IsClean());
    EXPECT_THAT(
        mediatool::TextOf(mediatool::Validate(request)),
        testing::EndsWith(
            "\nno errors, 1 warning, 2 notes; not clean, since warnings count (--strict)\n"));
    request.isStrict = false;
    EXPECT_TRUE(mediatool::Validate(request).IsClean());
}

std::string Complaint(const std::vector<std::string>& folders) {
    try {
        mediatool::ValidateRequest request;
        request.folders = folders;
        mediatool::Validate(request);
    } catch (const BadInput& failure) {
        return failure.what();
    }
    return "none";
}

TEST(NoMedia, IsToldInOneSentence) {
    const TemporaryFolder folder;
    folder.MakeDir("empty");
    folder.Write("file");
    folder.Write("set/1/setup.exe");
    EXPECT_THAT(Complaint({folder.Text("Größe 漢字")}),
                testing::StartsWith("\"" + folder.Text("Größe 漢字") + "\" cannot be opened: "));
    EXPECT_EQ(Complaint({folder.Text("file")}),
              "\"" + folder.Text("file") + "\" is a file, not the folder of a medium.");
    EXPECT_EQ(Complaint({folder.Text("empty")}),
              "\"" + folder.Text("empty") + "\" has no launcher (setup.exe) in it.");
    EXPECT_EQ(Complaint({folder.Text("set")}),
              "\"" + folder.Text("set") + "\" has no launcher (setup.exe) in it; \"" +
                  folder.Text("set\\1") + "\" has one: give that folder.");
    folder.Write("unfinished/1/inst/volumes.txt", "2");
    EXPECT_EQ(Complaint({folder.Text("unfinished")}),
              "\"" + folder.Text("unfinished") + "\" has no launcher (setup.exe) in it; \"" +
                  folder.Text("unfinished\\1") + "\" is volume 1: give that folder.");
    EXPECT_EQ(Complaint({folder.Text("unfinished\\1")}), "none");
    EXPECT_EQ(Complaint({folder.Text("empty"), folder.Text("set")}),
              "None of the given folders has a launcher (setup.exe) in it.");
    EXPECT_EQ(Complaint({folder.Text("set\\1"), folder.Text("SET/1/")}),
              "\"" + folder.Text("SET\\1") + "\" is given twice.");
    EXPECT_EQ(Complaint({""}), "\"\" is no folder.");
}

TEST(FindingsList, HasNothingWithoutATest) {
    EXPECT_THAT(ListedWithoutATest(), testing::IsEmpty());
}

}  // namespace
}  // namespace launcher::test
