// The installers of the media, one for each kind of Windows.

#include <vector>

#include "media/folder_names.h"
#include "mediatool/base/files.h"
#include "mediatool/media/program_file.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

bool IsFor64Bit(const std::string& flavour) {
    return flavour != "intel_a";
}

Path MarkerOf(const Subject& subject, const char* flavour) {
    return Join(Join(Join(subject.Media(), kInstFolder), kCommonFolder),
                flavour + std::string(kFlavourMarkerExtension));
}

Path ExeOf(const Subject& subject, const char* flavour) {
    return InstallerExecutable(subject.Media(), flavour, kInstallerName);
}

void CheckMachine(const char* flavour, const Path& exe, const ProgramFile& program, Findings& out) {
    if (program.isCutOff)
        out.Error("installer-cut-off", exe.Text(), "The installer is shorter than its headers say.",
                  "Windows cannot start it; a copy of the file was broken off.",
                  "Copy it again, and compare the sizes.");
    if (program.isLibrary)
        out.Error("installer-is-library", exe.Text(), "The installer is a library, not a program.",
                  "Windows cannot start it.", "Put the installer in its place.");
    if (IsFor64Bit(flavour) && program.Is32Bit())
        out.Warning("installer-32-bit-in-64-bit-folder", exe.Text(),
                    "The installer for 64-bit Windows is a 32-bit program.",
                    "It runs, but sees the 32-bit parts of the system only.",
                    std::string("Use the 64-bit one, or the folder intel_a."));
    else if (!IsFor64Bit(flavour) && program.Is64Bit())
        out.Error("installer-64-bit-in-32-bit-folder", exe.Text(),
                  "The installer for 32-bit Windows is a 64-bit program.",
                  "32-bit Windows cannot start it.", "Use the 32-bit one, or the folder win_b64.");
    else if (!program.Is32Bit() && !program.Is64Bit())
        out.Error("installer-wrong-machine", exe.Text(),
                  "The installer is made for another kind of processor.",
                  "Windows for PCs cannot start it.", "Use one for x64 or x86.");
}

void CheckProgram(const char* flavour, const Path& exe, Findings& out) {
    const auto entry = Look(exe);
    const char* const putBack = "Put the installer in its place.";
    if (entry->isFolder)
        out.Error("installer-is-folder", exe.Text(), "The installer is a folder.",
                  "The launcher takes it for the installer and fails to start it.", putBack);
    else if (entry->size == 0)
        out.Error("installer-empty", exe.Text(), "The installer is empty.",
                  "The launcher takes it for the installer and fails to start it.", putBack);
    else if (!ReadStart(exe, 1))
        out.Error("installer-unreadable", exe.Text(), "The installer cannot be read.",
                  "The launcher takes it for the installer and fails to start it.",
                  "Give everybody the right to read and run it.");
    else if (const auto program = ReadProgramFile(exe))
        CheckMachine(flavour, exe, *program, out);
    else
        out.Error("installer-not-program", exe.Text(), "The installer is no Windows program.",
                  "The launcher takes it for the installer and fails to start it.", putBack);
    if (WideLength(exe.Text()) > kLongestPath)
        out.Error(
            "installer-path-too-long", exe.Text(),
            "The installer's path has " + std::to_string(WideLength(exe.Text())) + " characters.",
            "Windows starts programs whose paths have up to 259.",
            "Put the media into a folder with a shorter path.");
}

bool HasExe(const Subject& subject, const char* flavour) {
    return Look(ExeOf(subject, flavour)).has_value();
}

bool HasMarker(const Subject& subject, const char* flavour) {
    return Look(MarkerOf(subject, flavour)).has_value();
}

void CheckEachWindows(const Subject& subject, Findings& out) {
    const std::string inst = Join(subject.Media(), kInstFolder).Text();
    const bool exe64 = HasExe(subject, "win_b64") || HasExe(subject, "win_csa64");
    const bool marker64 = HasMarker(subject, "win_b64") || HasMarker(subject, "win_csa64");
    const bool exe32 = HasExe(subject, "intel_a");
    const bool marker32 = HasMarker(subject, "intel_a");
    if (!exe64 && !marker64 && !exe32 && !marker32) {
        out.Error("not-for-windows", inst,
                  "inst holds neither an installer nor a marker of Windows.",
                  "The launcher refuses the media on every Windows: \"This media is not for "
                  "Windows operating system.\"",
                  "Add inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe, or "
                  "inst\\common\\win_b64.installos when the installer comes on a media of its "
                  "own.");
        return;
    }
    if (!exe32 && (exe64 || (!marker32 && marker64)))
        out.Note("not-for-32-bit-windows", inst, "There is no installer for 32-bit Windows.",
                 "The launcher refuses the media there.",
                 "Nothing, unless 32-bit Windows is to be served: then add inst\\intel_a.");
    if (!exe64 && !marker64)
        out.Note(
            "only-32-bit-installer", inst, "There is only the 32-bit installer.",
            "64-bit Windows uses it too.",
            "Nothing, unless 64-bit Windows is to get one of its own: then add inst\\win_b64.");
    if (!exe64 && !exe32)
        out.Note("installer-on-other-media", inst, "The media has markers, but no installer.",
                 "The launcher asks for the folder of the installer media, in a dialog that an "
                 "unattended run waits in for ever.",
                 "Tell administrators of -installerPath and ZEP_TALVOR_Installer.");
    if (HasExe(subject, "win_b64") && HasExe(subject, "win_csa64"))
        out.Note("installer-never-used", ExeOf(subject, "win_csa64").Text(),
                 "win_csa64 and win_b64 both have an installer.", "The launcher takes win_b64's.",
                 "Nothing, or remove the other.");
}

void CheckLauncherBits(const Subject& subject, Findings& out) {
    const Path file = Join(subject.Media(), kLauncherName);
    const auto program = ReadProgramFile(file);
    if (!program || !program->Is64Bit() || !HasExe(subject, "intel_a")) return;
    out.Note("launcher-64-bit-only", file.Text(),
             "The media has an installer for 32-bit Windows, and the launcher is a 64-bit program.",
             "32-bit Windows cannot start it.",
             "Nothing, unless 32-bit Windows is to be served: then use the 32-bit launcher.");
}

}  // namespace

void CheckInstallers(const Subject& subject, Findings& out) {
    if (!IsFolder(Join(subject.Media(), kInstFolder))) return;
    for (const char* flavour : kFlavours)
        if (HasExe(subject, flavour)) CheckProgram(flavour, ExeOf(subject, flavour), out);
    CheckEachWindows(subject, out);
    CheckLauncherBits(subject, out);
}

}  // namespace launcher::mediatool
