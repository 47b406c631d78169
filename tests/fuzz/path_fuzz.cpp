// Paths: construction, root, parent, file name and joins, against paths as lists of words.

#include <string>

#include "fs/path.h"
#include "tests/fuzz/models/path_model.h"
#include "tests/fuzz/support/check.h"
#include "tests/fuzz/support/input.h"

namespace launcher::fuzz {
namespace {

constexpr std::string_view kAlphabet = "\\/\"':.1aCz Z";

void CheckSame(std::string_view what, const std::string& given, const Path& path,
               const PathModel& model) {
    CheckEqual(what, given, path.Text(), model.Text());
    CheckEqual(what, given, path.RootEnd(), model.RootEnd());
    CheckEqual<std::int64_t>(what, given, IsEmpty(path), model.words.empty());
}

void CheckAscent(const std::string& given, Path path, PathModel model) {
    while (!model.words.empty()) {
        CheckEqual("FileName", given, FileName(path), FileNameOf(model));
        path = Parent(path);
        model = ParentOf(model);
        CheckSame("Parent", given, path, model);
    }
    CheckEqual("FileName", given, FileName(path), std::string());
}

}  // namespace

void TestOneInput(Input input) {
    const std::string left = input.Text(kAlphabet);
    const std::string right = input.Text(kAlphabet);

    const Path path(left);
    const PathModel model = MakePath(left);
    CheckSame("Path", left, path, model);
    CheckAscent(left, path, model);
    CheckSame("Join", left + " | " + right, Join(path, right), JoinPaths(model, right));
    CheckSame("Join of three", left + " | " + right, Join(path, {right, "x", right}),
              JoinPaths(JoinPaths(JoinPaths(model, right), "x"), right));

    std::string normalised = left;
    NormalizePathText(normalised);
    CheckEqual("NormalizePathText", left, normalised, SplitPath(left).Text());
}

}  // namespace launcher::fuzz
