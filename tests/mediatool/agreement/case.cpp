#include "tests/mediatool/agreement/case.h"

#include <windows.h>

#include <random>
#include <stdexcept>

#include "media/volume_files.h"
#include "mediatool/media/markers.h"
#include "tests/support/links.h"
#include "tests/support/wine.h"

namespace launcher::test {
namespace {

namespace stdfs = std::filesystem;

constexpr const char* kFlavours[] = {"win_b64", "win_csa64", "intel_a"};
constexpr const char* kInstallers[] = {"ZEPInsAppliGUI.exe", "ZEPInsPipeServer.exe",
                                       "ZEPInsAppliODT.exe"};

// A copy, for all its bytes: while another test runs a program, no other name of the same file can
// be removed.
void PutProgram(const char* builtFile, const stdfs::path& destination) {
    stdfs::create_directories(destination.parent_path());
    if (!CopyFileW(BuiltFile(builtFile).c_str(), destination.c_str(), FALSE))
        throw std::runtime_error("cannot write " + ToUtf8(destination));
}

void Put(const stdfs::path& file, const std::string& content = {}) {
    stdfs::create_directories(file.parent_path());
    WriteFile(file, content);
}

// What a case is made for; two of ten are for whatever comes.
enum class Purpose {
    Anything,
    Anything2,
    Copy,
    CopyOfBoth,
    FailedCopy,
    FailedStart,
    OtherMedia,
    Volumes,
    Dialog,
    Machine,
    Count
};

// A folder on the network, removed at the end.
struct NetworkPlace {
    explicit NetworkPlace(const std::string& name) : path(NetworkFolder() / name) {}
    NetworkPlace(const NetworkPlace&) = delete;
    NetworkPlace& operator=(const NetworkPlace&) = delete;
    ~NetworkPlace() {
        std::error_code ignored;
        stdfs::remove_all(path, ignored);
    }
    stdfs::path path;
};

class Maker {
  public:
    Maker(unsigned seed, const stdfs::path& folder, const stdfs::path& work)
        : seed_(seed),
          random_(seed),
          purpose_(static_cast<Purpose>(seed % static_cast<unsigned>(Purpose::Count))),
          name_(std::to_string(seed) + "-" + std::to_string(GetCurrentProcessId())),
          folder_(folder),
          work_(work) {}

    Case Make() {
        MakeMedia();
        MakeInstallerMedia();
        MakeInstallers();
        MakeVolumes();
        MakeArguments();
        MakeVariables();
        MakePurpose();
        MakePlace();
        return case_;
    }

  private:
    bool IsFree() const { return purpose_ <= Purpose::Anything2; }
    bool IsFor(Purpose purpose) const { return purpose_ == purpose; }

    // Not a standard distribution: those give other numbers in other libraries.
    unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    bool Chance(unsigned percent) { return Below(100) < percent; }
    template <class T, std::size_t N>
    const T& Pick(const T (&from)[N]) {
        return from[Below(N)];
    }
    void Note(const std::string& feature) { case_.features.push_back(feature); }
    template <class T, class... Arguments>
    T& Hold(Arguments&&... arguments) {
        const auto place = std::make_shared<T>(std::forward<Arguments>(arguments)...);
        case_.places.push_back(place);
        return *place;
    }

    void MakeMedia() {
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
        if (!stdfs::exists(media_ / launcherName_))
            PutProgram(SETUP_PROGRAM, media_ / launcherName_);
    }

    bool HasInstallers() {
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

    void MakeInstallers() {
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

    void AddInstaller(const stdfs::path& root, const char* flavour) {
        Note(std::string(flavour) + " installer in " + ToUtf8(root.filename()));
        const stdfs::path bin = root / "inst" / flavour / "code" / "bin";
        for (const char* name : kInstallers) {
            if (IsFree() && !Chance(name == kInstallers[0] ? 95 : 60)) continue;
            PutProgram(STANDIN_PROGRAM, bin / name);
            installers_.push_back(bin / name);
        }
    }

    // A count that is right, or one that is not.
    std::string CountText(int volumes) {
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

    void Marker(const stdfs::path& folder, int number, const std::string& id) {
        constexpr const char* kOdd[] = {"MTBDIR=OTHER\r\n", "mtbdir=SET\n", "# 1\nMTBDIR=SET\n",
                                        "MTBDIR=SET \r\n", ""};
        if (IsFree() && Chance(6)) return;
        const bool odd = IsFree() && Chance(8);
        Put(folder / MarkerName(number), odd ? Pick(kOdd) : mediatool::MarkerText(id));
        if (odd) Note("odd marker " + std::to_string(number));
    }

    void MakeVolumes() {
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
    void MakeInstallerMedia() {
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
            if (!IsFree() || Chance(70))
                AddInstaller(inFirst ? external_ / "1" : external_, flavour);
        Put((inFirst ? external_ / "1" : external_) / "inst" / "common" / "b.bin", "external");
    }

    void MakeArguments() {
        const std::vector<std::vector<std::string>> harmless = {
            {"-wait"},
            {"-wait"},
            {"-env", "EXTRA=a=b"},
            {"-env", "EXTRA"},
            {"plain"},
            {"with blank", "tail\\"},
            {""},
            {"quo\"te", "*.txt"},
            {"Größe 漢字"},
            {"-WAIT", "[x,y]"},
        };
        const std::vector<std::vector<std::string>> pieces = {
            {"-UI"},
            {"-env", "PATH="},
            {"-env", "ZEPAdmInstDontCopyInstaller"},
            {"-env", "ZEPAdmODTMultiVolumes"},
            {"-env", "ZEPAdmInstAllowNotAdminUser=0"},
            {"-env", "ZEPProcessNotAdmin"},
            {"-env", "ZEP_UseExternalInstaller"},
            {"-env", "TEMP=" + ToUtf8(folder_ / "other temp")},
            {"-env"},
            {"-installerPath", externalText_},
            {"-installerPath", externalText_ + "\\"},
            {"-installerPath", ToUtf8(folder_ / "nowhere")},
            {"-installerPath"},
            {"-SoftMgt", "-List"},
            {"-SoftMgt", "-Check"},
            {"-Commit", "-SoftMgt"},
            {"-Rollback"},
            {"-SoftMgt"},
            {"--pipeserver"},
            {"--odt"},
            {"--mgt"},
            {"--uninst"},
        };
        for (unsigned count = Below(6); count > 0; --count) {
            const auto& from = IsFree() && Chance(70) ? pieces : harmless;
            for (const std::string& word : from[Below(static_cast<unsigned>(from.size()))])
                case_.arguments.push_back(word);
        }
    }

    void MakeVariables() {
        auto& variables = case_.variables;
        const auto maybe = [&](unsigned percent, const char* name, const std::string& value) {
            if (Chance(percent)) variables[name] = value;
        };
        variables["STANDIN_EXIT"] = std::to_string(Below(4000));
        maybe(10, "MORInst", "C:\\Before");
        maybe(10, "ZEPAdmInstDebugEnv", "t");
        if (!IsFree()) return;
        maybe(75, "ZEP_TALVOR_Installer", externalText_);
        maybe(5, "ZEP_UseExternalInstaller", "1");
        maybe(5, "ZEPAdmInstODTinstallOSpath", ToUtf8(media_ / "media.xml"));
        maybe(4, "ZEPAdmODTMultiVolumes", "1");
        maybe(8, "ZEPAdmInstDontCopyInstaller", "1");
        maybe(8, "ZEPProcessNotAdmin", "1");
        maybe(30, "ZEPAdmInstAllowNotAdminUser", "no");
        maybe(5, "ZEP_Online_Installation_Caf_Repositiory", "x");
        maybe(80, "CurrentMediaDir", ToUtf8(media_));
        maybe(6, "ZEP_TraceMsgBox", "1");
        if (Chance(20)) SetDebugProgram();
    }

    void SetDebugProgram() {
        auto& variables = case_.variables;
        if (Chance(50)) {
            // What is found first is not the console that stays open.
            PutProgram(STANDIN_PROGRAM, media_ / "cmd.exe");
            variables["DEBUGCMD_INSTALLK7"] = "1";
            return;
        }
        PutProgram(STANDIN_PROGRAM, folder_ / "prefix.exe");
        variables["DEBUGCMD_INSTALLK7"] = "\"" + ToUtf8(folder_ / "prefix.exe") + "\" -x";
    }

    void ReplaceInstallers(bool byFolders) {
        for (const stdfs::path& installer : installers_) {
            stdfs::remove(installer);
            if (byFolders)
                stdfs::create_directory(installer);
            else
                Put(installer, "text");
        }
    }

    // No layout has so many: the installer is copied.
    void LoseVolumes() {
        Note("25 volumes");
        Put(media_ / "inst" / "volumes.txt", mediatool::CountFileText(25));
    }

    std::string TempThatWindowsChanges() {
        const std::vector<std::string> names = {"one ", "two \\x", "dots..\\x", "three\\ ",
                                                "four\\..."};
        const std::string base = ToUtf8(folder_) + "\\";
        const unsigned which = Below(static_cast<unsigned>(names.size()) + 1);
        return which < names.size() ? base + names[which] : "\"" + base + "quoted\"";
    }

    void MakeCopyFail() {
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

    void MakeStartFail() {
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

    void MakeCopy() {
        LoseVolumes();
        const unsigned temp = Below(4);
        if (temp == 0) case_.variables["TEMP"] = "relative temp";
        if (temp == 1) case_.variables["TEMP"] = ToUtf8(folder_ / "other temp") + "\\";
        if (temp == 2) case_.variables["TEMP"] = ToUtf8(folder_ / "other temp") + "\\.";
        if (Chance(30)) {
            stdfs::create_directories(folder_ / "target" / "x");
            Put(folder_ / "target" / "x" / "c.bin", "linked");
            Hold<FolderLink>(media_ / "inst" / "common" / "link", folder_ / "target");
            Note("a link in inst");
        }
    }

    // By the option or by the variable; the other one may be a folder without an installer whose
    // name begins in the same way.
    void FindOtherMedia() {
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
    void PickInDialog() {
        if (seed_ / 10 % 3 == 2) return;  // cancelled
        case_.picked = media_.parent_path().parent_path();
        for (const char* flavour : kFlavours)
            AddInstaller(*case_.picked, flavour);
    }

    void PretendMachine() {
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

    // Wine names a program that is started from the network in a way of its own, so there it is the
    // media of --odt that lies there.
    void MakeNetworkMedia() {
        Note("media on the network");
        const stdfs::path network = Hold<NetworkPlace>(name_ + "-media").path;
        for (const auto& entry : stdfs::recursive_directory_iterator(media_)) {
            const stdfs::path to = network / "m" / entry.path().lexically_relative(media_);
            stdfs::create_directories(entry.is_directory() ? to : to.parent_path());
            if (!entry.is_directory()) CopyFileW(entry.path().c_str(), to.c_str(), FALSE);
        }
        case_.arguments.push_back("--odt");
        case_.variables["CurrentMediaDir"] = ToUtf8(network / "m");
    }

    void MakePlace() {
        case_.launcher = media_ / launcherName_;
        if (IsFor(Purpose::Dialog)) return;
        const unsigned place = Below(12);
        // Elsewhere the other volumes are not beside it any more.
        if (IsFor(Purpose::Volumes) && place != 1) return;
        switch (place) {
            case 0:
                Note("at a drive's root");
                case_.launcher = Hold<MappedDrive>("j:", media_).Root() / launcherName_;
                break;
            case 1:
                Note("on a drive");
                case_.launcher = Hold<MappedDrive>("k:", folder_).Root() /
                                 media_.lexically_relative(folder_) / launcherName_;
                break;
            case 2:
                Note("by a link");
                Hold<FolderLink>(folder_ / "link to media", media_);
                case_.launcher = folder_ / "link to media" / launcherName_;
                break;
            case 3:
                MakeNetworkMedia();
                break;
            default:
                break;
        }
    }

    void MakePurpose() {
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

    unsigned seed_;
    std::mt19937 random_;
    Purpose purpose_;
    std::string name_;  // of this case and this process alone
    stdfs::path folder_;
    stdfs::path work_;
    stdfs::path launcherName_;
    std::string externalText_;
    stdfs::path media_;
    stdfs::path external_;
    std::vector<stdfs::path> installers_;
    Case case_;
};

}  // namespace

Case MakeCase(unsigned seed, const stdfs::path& folder, const stdfs::path& work) {
    return Maker(seed, folder, work).Make();
}

}  // namespace launcher::test
