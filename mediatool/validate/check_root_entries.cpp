// The entries of the root that are copied with the installer.

#include "media/folder_names.h"
#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr const char* kFiles[] = {"meta.TOCxml", "media.xml", "media.db", "StartTUI.exe",
                                  "setup_noUAC.exe"};

// An error where the launcher is going to copy, a warning where it would only on another day.
void Report(const Subject& subject, Findings& out, const char* id, const Path& file,
            const std::string& what, const std::string& action) {
    if (subject.view.copies)
        out.Error(id, file.Text(), what,
                  "This media is copied to the temporary folder before the installer starts, and "
                  "the copy fails.",
                  action);
    else
        out.Warning(id, file.Text(), what,
                    "A copy to the temporary folder, made when volumes are missing, would fail.",
                    action);
}

void CheckFile(const Subject& subject, const std::string& name, Findings& out) {
    const Path file = Join(subject.Media(), name);
    const auto entry = Look(file);
    if (!entry)
        Report(subject, out, "root-entry-missing", file, name + " is missing at the media's root.",
               "Add it; the launcher copies it and looks at nothing in it.");
    else if (entry->isFolder)
        out.Warning("root-entry-is-folder", file.Text(), name + " is a folder.",
                    "It ought to be a file; the installer may look for one.",
                    "Put the file in its place.");
    else if (!ReadStart(file, 1))
        Report(subject, out, "root-entry-unreadable", file, name + " cannot be read.",
               "Give everybody the right to read it, and close the program that has it open.");
}

}  // namespace

void CheckRootEntries(const Subject& subject, Findings& out) {
    for (const char* name : kFiles)
        CheckFile(subject, name, out);
    const Path inst = Join(subject.Media(), kInstFolder);
    const auto entry = Look(inst);
    if (!entry)
        out.Error("inst-missing", inst.Text(), "The folder inst is missing.",
                  "The launcher refuses the media: it is not for Windows.",
                  "Add the folder with the installer or its markers.");
    else if (!entry->isFolder)
        out.Error("inst-is-file", inst.Text(), "inst is a file.",
                  "The launcher refuses the media: it is not for Windows.",
                  "Put the folder with the installer or its markers in its place.");
}

}  // namespace launcher::mediatool
