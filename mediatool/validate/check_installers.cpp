// The installers of a medium, one for each kind of Windows.

#include "mediatool/base/files.h"
#include "mediatool/media/program_file.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

void CheckMachine(const FlavourHere& flavour, const ProgramFile& program, Findings& out) {
    const bool for64Bit = flavour.needs64BitWindows;
    out.AddAll({{program.isCutOff, "installer-cut-off"},
                {program.isLibrary, "installer-is-library"},
                {for64Bit && program.Is32Bit(), "installer-32-bit-in-64-bit-folder"},
                {!for64Bit && program.Is64Bit(), "installer-64-bit-in-32-bit-folder"},
                {!program.Is32Bit() && !program.Is64Bit(), "installer-wrong-machine"}},
               flavour.Exe());
}

void CheckProgram(const FlavourHere& flavour, Findings& out) {
    const Path exe = flavour.Exe();
    const auto entry = Look(exe);
    if (!entry) return;
    const auto program = ReadProgramFile(exe);
    const bool isBad = out.AddFirst({{entry->isFolder, "installer-is-folder"},
                                     {entry->size == 0, "installer-empty"},
                                     {!ReadStart(exe, 1), "installer-unreadable"},
                                     {!program, "installer-not-program"}},
                                    exe);
    if (!isBad) CheckMachine(flavour, *program, out);
    if (const std::size_t length = WideLength(exe.Text()); length > kLongestPath)
        out.Add("installer-path-too-long", exe,
                {std::to_string(length), std::to_string(kLongestPath)});
}

void CheckEachWindows(const Subject& subject, Findings& out) {
    const bool exe64 = subject.Has(&FlavourHere::hasInstaller, true);
    const bool exe32 = subject.Has(&FlavourHere::hasInstaller, false);
    const bool marker64 = subject.Has(&FlavourHere::hasMarker, true);
    const bool marker32 = subject.Has(&FlavourHere::hasMarker, false);
    const Path inst = subject.Inst();
    if (!exe64 && !marker64 && !exe32 && !marker32) {
        out.Add("not-for-windows", inst);
        return;
    }
    out.AddAll({{!exe32 && (exe64 || (!marker32 && marker64)), "not-for-32-bit-windows"},
                {!exe64 && !marker64, "only-32-bit-installer"},
                {!exe64 && !exe32, "installer-on-other-media"}},
               inst);
}

// Of the installers for one kind of Windows, the launcher takes the first.
void CheckChoice(const Subject& subject, Findings& out) {
    const FlavourHere* first = nullptr;
    for (const FlavourHere& flavour : subject.flavours) {
        if (!flavour.needs64BitWindows || !flavour.hasInstaller) continue;
        if (first != nullptr)
            out.Add("installer-never-used", flavour.Exe(), {flavour.osFolder, first->osFolder});
        else
            first = &flavour;
    }
}

}  // namespace

void CheckInstallers(const Subject& subject, Findings& out) {
    if (!IsFolder(subject.Inst())) return;
    for (const FlavourHere& flavour : subject.flavours)
        CheckProgram(flavour, out);
    CheckEachWindows(subject, out);
    CheckChoice(subject, out);
}

}  // namespace launcher::mediatool
