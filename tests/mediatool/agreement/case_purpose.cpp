#include "tests/mediatool/agreement/case_maker.h"

#include <algorithm>

#include "mediatool/media/markers.h"
#include "tests/support/links.h"
#include "tests/support/wine.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

void Maker::ReplaceInstallers(bool byFolders) {
    for (const stdfs::path& installer : installers_) {
        stdfs::remove(installer);
        if (byFolders)
            stdfs::create_directory(installer);
        else
            Put(installer, "text");
    }
}

// No layout has so many: the installer is copied.
void Maker::LoseVolumes() {
    Note("25 volumes");
    Put(media_ / "inst" / "volumes.txt", mediatool::CountFileText(25));
}

std::string Maker::TempThatWindowsChanges() {
    const std::vector<std::string> names = {"one ", "two \\x", "dots..\\x", "three\\ ",
                                            "four\\..."};
    const std::string base = ToUtf8(folder_) + "\\";
    const unsigned which = Below(static_cast<unsigned>(names.size()) + 1);
    return which < names.size() ? base + names[which] : "\"" + base + "quoted\"";
}

void Maker::MakeCopyFail() {
    // Wine makes folders whose paths are longer than Windows allows.
    switch (Below(IsWine() ? 4 : 5)) {
        case 0:
            Note("TEMP that is a file");
            Put(folder_ / "temp file");
            case_.variables["TEMP"] = ToUtf8(folder_ / "temp file");
            break;
        case 1:
            Note("TEMP with a name that cannot be");
            case_.variables["TEMP"] = ToUtf8(folder_ / "temp<?");
            break;
        case 2:
            Note("TEMP that Windows changes");
            case_.variables["TEMP"] = TempThatWindowsChanges();
            break;
        case 4:
            Note("TEMP that leaves no room for the folders in it");
            case_.variables["TEMP"] =
                ToUtf8(folder_) + "\\" + std::string(240 - ToUtf8(folder_).size(), 'x');
            break;
        default:
            Note("without media.db");
            stdfs::remove(media_ / "media.db");
            break;
    }
    LoseVolumes();
}

void Maker::MakeStartFail() {
    switch (Below(3)) {
        case 0:
            Note("installers that are texts");
            ReplaceInstallers(/*byFolders=*/false);
            break;
        case 1:
            Note("folders in the place of installers");
            ReplaceInstallers(/*byFolders=*/true);
            break;
        default:
            Note("a debug program that is not there");
            case_.variables["DEBUGCMD_INSTALLK7"] =
                Chance(50) ? "no-such-program -x"
                           : "\"" + ToUtf8(folder_ / "no-such-program.exe") + "\"";
            break;
    }
    if (Chance(40)) LoseVolumes();
}

// So long that the longest path of the copy just fits, without long paths.
std::string Maker::TempThatFillsPaths() {
    constexpr std::size_t kLongestName = 259;
    constexpr std::size_t kLongestFolderName = 247;
    constexpr std::size_t kPrivateFolder = 38;  // a UUID between two backslashes
    std::size_t room = kLongestFolderName;
    for (const stdfs::path& root : {media_, external_}) {
        if (!stdfs::exists(root)) continue;
        for (const auto& entry : stdfs::recursive_directory_iterator(
                 root, stdfs::directory_options::follow_directory_symlink)) {
            const std::size_t length = entry.path().lexically_relative(root).native().size();
            room =
                std::min(room, (entry.is_directory() ? kLongestFolderName : kLongestName) - length);
        }
    }
    const std::size_t used = folder_.native().size() + 1 + kPrivateFolder;
    return ToUtf8(folder_) + "\\" + std::string(room - used, 'x');
}

void Maker::MakeCopy() {
    LoseVolumes();
    if (Chance(30)) {
        stdfs::create_directories(folder_ / "target" / "x");
        Put(folder_ / "target" / "x" / "c.bin", "linked");
        Hold<FolderLink>(media_ / "inst" / "common" / "link", folder_ / "target");
        Note("a link in inst");
    }
    const unsigned temp = Below(5);
    if (temp == 0) case_.variables["TEMP"] = "relative temp";
    if (temp == 1) case_.variables["TEMP"] = ToUtf8(folder_ / "other temp") + "\\";
    if (temp == 2) case_.variables["TEMP"] = ToUtf8(folder_ / "other temp") + "\\.";
    if (temp == 3) {
        Note("TEMP that fills the paths");
        case_.variables["TEMP"] = TempThatFillsPaths();
    }
}

// By the option or by the variable; the other one may be a folder without an installer whose
// name begins in the same way.
void Maker::FindOtherMedia() {
    stdfs::create_directories(folder_ / "A");
    std::string nothing = ToUtf8(folder_ / "A");
    if (external_ == folder_ / "A") nothing = ToUtf8(folder_);
    const bool byOption = (seed_ / 10 + seed_) % 2 == 0;
    Note(std::string("other media by the ") + (byOption ? "option" : "variable"));
    if (byOption || Chance(80)) {
        case_.arguments.push_back("-installerPath");
        case_.arguments.push_back(byOption ? externalText_ : nothing);
    }
    if (!byOption || Chance(80))
        case_.variables["ZEP_TALVOR_Installer"] = byOption ? nothing : externalText_;
}

// In the folder that the dialog opens on: Wine enters no other before it closes.
void Maker::PickInDialog() {
    if (seed_ / 10 % 3 == 2) return;  // cancelled
    case_.picked = media_.parent_path().parent_path();
    for (const char* flavour : kFlavours)
        AddInstaller(*case_.picked, flavour);
}

void Maker::PretendMachine() {
    const unsigned which = IsWine() ? 1 + Below(7) : 4;
    if (which & 3) {
        WineSettings& settings = Hold<WineSettings>(ToUtf8(launcherName_));
        if (which & 1) {
            const bool old = Chance(60);
            settings.PoseAs(old ? "win7" : "win81");
            case_.machine.insert(case_.machine.end(), {"--windows", old ? "7" : "8.1"});
        }
        if (which & 2) {
            settings.OverrideDll("wininet", "builtin");
            case_.machine.push_back("--old-web-library");
        }
    }
    if (!(which & 4)) return;
    case_.machine.insert(case_.machine.end(), {"--admin", "no"});
    case_.pretendsNoAdministrator = true;
    if (Chance(50)) case_.variables["ZEPAdmInstAllowNotAdminUser"] = "1";
}

void Maker::MakePurpose() {
    switch (purpose_) {
        case Purpose::CopyOfBoth:
            FindOtherMedia();
            MakeCopy();
            break;
        case Purpose::Copy:
            MakeCopy();
            break;
        case Purpose::FailedCopy:
            MakeCopyFail();
            break;
        case Purpose::FailedStart:
            MakeStartFail();
            break;
        case Purpose::OtherMedia:
            FindOtherMedia();
            break;
        case Purpose::Dialog:
            PickInDialog();
            break;
        case Purpose::Machine:
            PretendMachine();
            break;
        case Purpose::Volumes:
            break;
        default:
            if (Chance(20)) LoseVolumes();
            if (Chance(20)) MakeStartFail();
            if (Chance(15)) MakeCopyFail();
            break;
    }
}

}  // namespace launcher::test
