// The launcher itself, and what is beside it.

#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/program_file.h"
#include "mediatool/media/unfinished.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

void CheckVersion(const Path& file, Findings& out) {
    const auto [product, version] = ReadProgramVersion(file);
    if (product != kLauncherProduct)
        out.Add("launcher-not-this-one", file, {product.empty() ? "" : " but " + Quoted(product)});
    else if (version != LAUNCHER_VERSION)
        out.Add("launcher-other-version", file, {version, LAUNCHER_VERSION});
}

void CheckProgram(const Subject& subject, const Path& file, Findings& out) {
    const auto entry = Look(file);
    const auto program = ReadProgramFile(file);
    if (out.AddFirst({{!entry, "launcher-missing"},
                      {entry && entry->isFolder, "launcher-not-file"},
                      {entry && entry->size == 0, "launcher-empty"},
                      {!program, "launcher-not-program"}},
                     file))
        return;
    out.AddAll({{program->isCutOff, "launcher-cut-off"},
                {!program->Is64Bit() && !program->Is32Bit(), "launcher-wrong-machine"},
                {program->trailingBytes > 0, "launcher-trailing-bytes"}},
               file, {std::to_string(program->trailingBytes)});
    CheckVersion(file, out);
    const bool serves32Bit = subject.Has(&FlavourHere::hasInstaller, /*for64Bit=*/false);
    out.AddAll({{!program->isSigned, "launcher-not-signed"},
                {program->Is64Bit() && serves32Bit, "launcher-64-bit-only"}},
               file);
}

void CheckBeside(const Path& file, FindingKind kind, Findings& out) {
    if (Look(file)) out.Add(kind, file);
}

}  // namespace

void CheckLauncher(const Subject& subject, Findings& out) {
    const Path file = Join(subject.Media(), kLauncherName);
    CheckBeside(Join(subject.Media(), kUnfinishedMark), "set-unfinished", out);
    CheckProgram(subject, file, out);
    if (const std::size_t length = WideLength(file.Text()); length > kLongestPath)
        out.Add("launcher-path-cut", file, {std::to_string(length), std::to_string(kLongestPath)});
    CheckBeside(Path(file.Text() + ".local"), "launcher-redirection", out);
    CheckBeside(Path(file.Text() + ".manifest"), "launcher-foreign-manifest", out);
}

}  // namespace launcher::mediatool
