// The way from one folder to another, against the same on lists of words.

#include <iterator>
#include <string>

#include "fs/path.h"
#include "tests/fuzz/models/path_model.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/input.h"

namespace launcher::fuzz {
namespace {

constexpr std::string_view kAlphabet = "\\aAb.:'1";

// A rooted path, of few roots and short words, so that two of them often have some in common.
std::string RootedText(Input& input) {
    constexpr const char* kRoots[] = {"C:",       "c:",       "D:",       "\\\\s\\h",
                                      "\\\\s\\H", "\\\\S\\h", "\\\\s\\ha"};
    return kRoots[input.Below(std::size(kRoots))] + ("\\" + input.Text(kAlphabet));
}

}  // namespace

void TestOneInput(Input input) {
    const std::string base = RootedText(input);
    // Often what lies below the base.
    const std::string target =
        input.Below(2) == 0 ? RootedText(input) : base + "\\" + input.Text(kAlphabet);

    const Path result = RelativePath(Path(target), Path(base));
    const PathModel expected = RelativeTo(MakePath(base), MakePath(target));
    const std::string given = base + " -> " + target;
    CheckEqual("RelativePath", given, result.Text(), expected.Text());
    CheckEqual("RelativePath", given, result.RootEnd(), expected.RootEnd());
}

}  // namespace launcher::fuzz
