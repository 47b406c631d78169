// The launcher itself, and what stands beside it.

#include "mediatool/base/files.h"
#include "mediatool/media/program_file.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

void CheckProgram(const Path& file, Findings& out) {
    const auto entry = Look(file);
    const char* const putBack = "Copy the launcher to the media again.";
    if (!entry) {
        out.Error("launcher-missing", file.Text(), "The launcher, setup.exe, is missing.",
                  "Nobody can start the installation.",
                  "Copy the launcher to the root of volume 1.");
        return;
    }
    if (entry->isFolder) {
        out.Error("launcher-not-file", file.Text(), "setup.exe is a folder.",
                  "Nobody can start the installation.", putBack);
        return;
    }
    if (entry->size == 0) {
        out.Error("launcher-empty", file.Text(), "setup.exe is empty.",
                  "Nobody can start the installation.", putBack);
        return;
    }
    const auto program = ReadProgramFile(file);
    if (!program) {
        out.Error("launcher-not-program", file.Text(), "setup.exe is no Windows program.",
                  "Nobody can start the installation.", putBack);
        return;
    }
    if (program->isCutOff)
        out.Error("launcher-cut-off", file.Text(), "setup.exe is shorter than its headers say.",
                  "Windows cannot start it; a copy of the file was broken off.", putBack);
    if (!program->Is64Bit() && !program->Is32Bit())
        out.Error("launcher-wrong-machine", file.Text(),
                  "setup.exe is made for another kind of processor.",
                  "It starts neither on 64-bit nor on 32-bit Windows for PCs.", putBack);
    const ProgramVersion version = ReadProgramVersion(file);
    if (version.product != kLauncherProduct)
        out.Note("launcher-not-this-one", file.Text(),
                 "setup.exe is not this launcher" +
                     (version.product.empty() ? "." : " but \"" + version.product + "\"."),
                 "What is said here of the media holds for this launcher only.",
                 "Make sure that it is the one you mean to ship.");
    else if (version.version != LAUNCHER_VERSION)
        out.Note("launcher-other-version", file.Text(),
                 "setup.exe is version " + version.version + " of the launcher.",
                 "What is said here of the media holds for version " LAUNCHER_VERSION ".",
                 "Use the launcher and mediatool of one release.");
    if (!program->isSigned)
        out.Note("launcher-not-signed", file.Text(), "setup.exe carries no signature.",
                 "Windows names its maker as unknown when it asks for elevation.",
                 "Sign it before you ship it.");
}

void CheckPlace(const Path& file, Findings& out) {
    if (WideLength(file.Text()) <= kLongestPath) return;
    out.Error("launcher-path-cut", file.Text(),
              "The path of setup.exe has " + std::to_string(WideLength(file.Text())) +
                  " characters; the launcher reads its own up to 259.",
              "It takes a cut path for its own and looks for the media in the wrong folder.",
              "Put the media into a folder with a shorter path.");
}

}  // namespace

void CheckLauncher(const Subject& subject, Findings& out) {
    const Path file = Join(subject.Media(), kLauncherName);
    CheckProgram(file, out);
    CheckPlace(file, out);
    const Path redirection = Join(subject.Media(), "setup.exe.local");
    if (Look(redirection))
        out.Warning("launcher-redirection", redirection.Text(),
                    "setup.exe.local stands beside the launcher.",
                    "Windows then loads libraries from the media in place of the system's.",
                    "Remove it.");
    const Path manifest = Join(subject.Media(), "setup.exe.manifest");
    if (Look(manifest))
        out.Warning("launcher-foreign-manifest", manifest.Text(),
                    "setup.exe.manifest stands beside the launcher, which has its own inside.",
                    "It is a leftover at best, and may ask for other rights on old systems.",
                    "Remove it.");
}

}  // namespace launcher::mediatool
