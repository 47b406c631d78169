// Installers where no launcher looks for them, or under names that it does not know.

#include <vector>

#include "media/folder_names.h"
#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr char kInstallerStem[] = "zepinsappligui";
// Programs of the installer that other options of the launcher start.
constexpr const char* kOtherPrograms[] = {"ZEPInsPipeServer.exe", "ZEPInsAppliODT.exe"};

bool IsOneOf(const std::string& name, const auto& names) {
    for (const char* other : names)
        if (SameName(name, other)) return true;
    return false;
}

// Installers by their name, anywhere below a folder; links are not followed.
void FindInstallers(const Path& folder, std::vector<Path>& found) {
    for (const Entry& entry : List(folder).value_or(std::vector<Entry>())) {
        const Path path = Join(folder, entry.name);
        if (entry.isFolder && !entry.isLink)
            FindInstallers(path, found);
        else if (!entry.isFolder && SameName(entry.name, kInstallerName))
            found.push_back(path);
    }
}

class InstallerPlaces {
  public:
    InstallerPlaces(const Subject& subject, Findings& out)
        : out_(out), media_(subject.Media()), inst_(Join(media_, kInstFolder)) {}

    void Check() {
        for (const char* flavour : kFlavours)
            if (IsFolder(Join(inst_, flavour)) && !HasInstaller(flavour)) CheckWithout(flavour);
        CheckUnknownFolders();
        if (!HasInstaller("win_b64") && !HasInstaller("win_csa64")) CheckOutside();
        CheckSecondPlace();
    }

  private:
    Path ExeOf(const std::string& flavour) const {
        return InstallerExecutable(media_, flavour, kInstallerName);
    }
    bool HasInstaller(const std::string& flavour) const { return Look(ExeOf(flavour)).has_value(); }

    void ReportMisplaced(const Path& file, const std::string& flavour) {
        out_.Error("installer-misplaced", file.Text(), "The installer is in the wrong folder.",
                   "The launcher looks for it in inst\\" + flavour + "\\code\\bin only.",
                   "Move it there, with the files that belong to it.");
    }

    // A folder without the installer that its name promises.
    void CheckWithout(const std::string& flavour) {
        std::vector<Path> found;
        FindInstallers(Join(inst_, flavour), found);
        if (!found.empty()) {
            ReportMisplaced(found.front(), flavour);
            return;
        }
        // A marker says that the installer is on a media of its own; other programs may be here.
        const bool hasMarker =
            Look(Join(Join(inst_, kCommonFolder), flavour + ".installos")).has_value();
        const Path bin = Parent(ExeOf(flavour));
        bool isRenamed = false;
        const std::string other = OtherName(bin, isRenamed);
        if (!other.empty()) {
            ReportOtherName(ExeOf(flavour), other, isRenamed || !hasMarker);
        } else if (!hasMarker) {
            out_.Error("installer-missing", ExeOf(flavour).Text(),
                       "The folder " + flavour + " has no installer in it.",
                       "The launcher passes it by.",
                       "Add the installer; or, when it comes on a media of its own, add "
                       "inst\\common\\" +
                           flavour + ".installos.");
        }
    }

    // A file that may be the installer under another name, empty when there is none.
    static std::string OtherName(const Path& bin, bool& isRenamed) {
        std::string other;
        for (const Entry& entry : List(bin).value_or(std::vector<Entry>())) {
            const std::string name = InLowerCase(entry.name);
            isRenamed = !entry.isFolder && name.starts_with(kInstallerStem);
            if (isRenamed) return entry.name;
            const bool isProgram = !entry.isFolder && name.ends_with(".exe");
            if (other.empty() && isProgram && !IsOneOf(name, kOtherPrograms)) other = entry.name;
        }
        return other;
    }

    void ReportOtherName(const Path& exe, const std::string& other, bool isError) {
        const std::string what = "The installer is missing; its folder has " + other + ".";
        const std::string why = "The launcher looks for ZEPInsAppliGUI.exe only.";
        if (isError)
            out_.Error("installer-other-name", exe.Text(), what, why, "Give it that name.");
        else
            out_.Warning("installer-other-name", exe.Text(), what, why,
                         "Give it that name; or nothing, when the installer comes on a media of "
                         "its own.");
    }

    // An installer below a folder that no launcher looks into.
    void CheckUnknownFolders() {
        for (const Entry& entry : List(inst_).value_or(std::vector<Entry>())) {
            if (IsOneOf(entry.name, kFlavours) || !entry.isFolder || !HasInstaller(entry.name))
                continue;
            out_.Error("installer-folder-unknown", ExeOf(entry.name).Text(),
                       "The folder " + entry.name + " has an installer in it.",
                       "The launcher looks into win_b64, win_csa64 and intel_a only.",
                       "Give the folder one of these names.");
        }
    }

    // Beside the folders of the flavours, or beside inst.
    void CheckOutside() {
        std::vector<Path> found;
        for (const Entry& entry : List(inst_).value_or(std::vector<Entry>()))
            if (entry.isFolder && !IsOneOf(entry.name, kFlavours) && !HasInstaller(entry.name))
                FindInstallers(Join(inst_, entry.name), found);
        for (const Path& folder :
             {inst_, media_, Join(media_, kBinFolder), Join(media_, {kCodeFolder, kBinFolder})})
            if (const Path file = Join(folder, kInstallerName); IsFile(file)) found.push_back(file);
        for (const Path& file : found)
            ReportMisplaced(file, "win_b64");
        for (const char* flavour : kFlavours) {
            const Path file = Join(media_, {flavour, kCodeFolder, kBinFolder, kInstallerName});
            if (IsFile(file)) ReportMisplaced(file, flavour);
        }
    }

    void CheckSecondPlace() {
        for (const char* flavour : kFlavours) {
            const Path exe = InstallerExecutable(Join(media_, "1"), flavour, kInstallerName);
            if (!Look(exe) || !HasInstaller(flavour)) continue;
            out_.Warning("installer-in-two-places", exe.Text(),
                         "There is an installer below the folder 1 as well as below inst.",
                         "As a separate installer media, the one below 1 is taken; as the media "
                         "itself, the other.",
                         "Keep one of them.");
        }
    }

    Findings& out_;
    const Path& media_;
    Path inst_;
};

}  // namespace

void CheckInstallerPlaces(const Subject& subject, Findings& out) {
    if (IsFolder(Join(subject.Media(), kInstFolder))) InstallerPlaces(subject, out).Check();
}

}  // namespace launcher::mediatool
