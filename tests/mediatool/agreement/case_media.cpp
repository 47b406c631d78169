#include "tests/mediatool/agreement/case_maker.h"

#include "media/volume_files.h"
#include "mediatool/media/markers.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

namespace {

constexpr const char* kInstallers[] = {"ZEPInsAppliGUI.exe", "ZEPInsPipeServer.exe",
                                       "ZEPInsAppliODT.exe"};

}  // namespace

void Maker::MakeMedia() {
    constexpr const char* kNames[] = {"media", "set/1", "a b/Größe 漢字", "q/7/r/1"};
    constexpr const char* kLaunchers[] = {"install.exe", "Größe 1.exe", "SETUP.EXE"};
    // Deep enough for the outer volumes of any layout.
    media_ = folder_ / "7" / "r" / FromUtf8(Pick(kNames));
    PutProgram(SETUP_PROGRAM, media_ / "setup.exe");
    for (const char* name :
         {"meta.TOCxml", "media.xml", "media.db", "StartTUI.exe", "setup_noUAC.exe"})
        if (!IsFree() || !Chance(3)) Put(media_ / name, name);
    Put(media_ / "inst" / "common" / "data" / "a.bin", std::string(Below(5000), 'x'));
    if (Chance(30)) stdfs::create_directories(media_ / "inst" / "common" / "empty");
    // By name: Windows remembers the folder of a dialog, Wine the version that it poses as.
    const bool ownName = IsFor(Purpose::Dialog) || IsFor(Purpose::Machine);
    launcherName_ = ownName      ? FromUtf8("posing-" + name_ + ".exe")
                    : Chance(30) ? FromUtf8(Pick(kLaunchers))
                                 : stdfs::path("setup.exe");
    if (!stdfs::exists(media_ / launcherName_)) PutProgram(SETUP_PROGRAM, media_ / launcherName_);
}

bool Maker::HasInstallers() {
    switch (purpose_) {
        case Purpose::CopyOfBoth:
        case Purpose::OtherMedia:
        case Purpose::Dialog:
            return false;
        case Purpose::Anything:
        case Purpose::Anything2:
            return Chance(75);
        default:
            return true;
    }
}

void Maker::MakeInstallers() {
    constexpr unsigned kInstaller[] = {75, 20, 35};
    constexpr unsigned kMarker[] = {50, 20, 30};
    const bool hasInstallers = HasInstallers();
    for (std::size_t i = 0; i < 3; ++i) {
        if (hasInstallers && (!IsFree() || Chance(kInstaller[i])))
            AddInstaller(media_, kFlavours[i]);
        if (IsFree() && !Chance(kMarker[i])) continue;
        Put(media_ / "inst" / "common" / (std::string(kFlavours[i]) + ".installos"));
        Note(std::string(kFlavours[i]) + ".installos");
    }
}

void Maker::AddInstaller(const stdfs::path& root, const char* flavour) {
    Note(std::string(flavour) + " installer in " + ToUtf8(root.filename()));
    const stdfs::path bin = root / "inst" / flavour / "code" / "bin";
    for (const char* name : kInstallers) {
        if (IsFree() && !Chance(name == kInstallers[0] ? 95 : 60)) continue;
        PutProgram(STANDIN_PROGRAM, bin / name);
        installers_.push_back(bin / name);
    }
}

// A count that is right, or one that is not.
std::string Maker::CountText(int volumes) {
    constexpr const char* kOdd[] = {"3 volumes",
                                    "three",
                                    "",
                                    "-1",
                                    "1",
                                    "03",
                                    "99999999999",
                                    "\xEF\xBB\xBF"
                                    "2",
                                    " 2 "};
    if (!IsFree() || Chance(80)) return mediatool::CountFileText(volumes);
    const std::string odd = Pick(kOdd);
    Note("count \"" + odd + "\"");
    return odd + "\r\n";
}

void Maker::Marker(const stdfs::path& folder, int number, const std::string& id) {
    constexpr const char* kOdd[] = {"MTBDIR=OTHER\r\n", "mtbdir=SET\n", "# 1\nMTBDIR=SET\n",
                                    "MTBDIR=SET \r\n", ""};
    if (IsFree() && Chance(6)) return;
    const bool odd = IsFree() && Chance(8);
    Put(folder / MarkerName(number), odd ? Pick(kOdd) : mediatool::MarkerText(id));
    if (odd) Note("odd marker " + std::to_string(number));
}

void Maker::MakeVolumes() {
    const unsigned layout = Below(IsFor(Purpose::Volumes) ? 3 : 5);
    if (layout > 2) return;
    const int volumes = 2 + static_cast<int>(Below(Chance(50) ? 3 : 19));
    Note(std::string(layout == 0   ? "one folder"
                     : layout == 1 ? "siblings"
                                   : "outer") +
         ", " + std::to_string(volumes));
    Put(media_ / "inst" / "volumes.txt", CountText(volumes));
    const stdfs::path parent = media_.parent_path();
    const stdfs::path outer = parent.parent_path();
    Marker(media_, 1, "SET");
    if (layout == 2) Marker(outer, 7, "OUTER");
    for (int k = 2; k <= volumes; ++k) {
        const stdfs::path name = std::to_string(k);
        if (layout == 0) Marker(media_, k, "SET");
        if (layout == 1) Marker(parent / name, k, "SET");
        if (layout != 2) continue;
        const stdfs::path next = outer.parent_path() / std::to_string(6 + k);
        Marker(next, 6 + k, "OUTER");
        Marker(next / parent.filename() / name, k, "SET");
    }
}

// A separate one, also one on the network or one that is named relative to the folder that the
// programs run in.
void Maker::MakeInstallerMedia() {
    constexpr const char* kNames[] = {"installer media", "A", "AB"};
    const std::string name = Pick(kNames);
    const unsigned place = Below(4);
    if (place == 0) external_ = Hold<NetworkPlace>(name_).path / name;
    if (place == 1) external_ = work_ / name;
    if (place > 1) external_ = folder_ / name;
    externalText_ = place == 1 ? ".\\" + name : ToUtf8(external_);
    stdfs::create_directories(external_);
    const bool inFirst = Chance(40);
    for (const char* flavour : kFlavours)
        if (!IsFree() || Chance(70)) AddInstaller(inFirst ? external_ / "1" : external_, flavour);
    Put((inFirst ? external_ / "1" : external_) / "inst" / "common" / "b.bin", "external");
}

}  // namespace launcher::test
