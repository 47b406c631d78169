#include "tests/mediatool/agreement/case.h"

#include <windows.h>

#include <random>
#include <stdexcept>

#include "media/volume_files.h"
#include "mediatool/media/markers.h"
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

class Maker {
  public:
    Maker(unsigned seed, const stdfs::path& folder) : random_(seed), folder_(folder) {}

    Case Make() {
        MakeMedia();
        MakeInstallers();
        MakeVolumes();
        MakeInstallerMedia();
        MakeArguments();
        MakeVariables();
        MakeTrouble();
        return case_;
    }

  private:
    // Not a standard distribution: those give other numbers in other libraries.
    unsigned Below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
    bool Chance(unsigned percent) { return Below(100) < percent; }
    template <class T, std::size_t N>
    const T& Pick(const T (&from)[N]) {
        return from[Below(N)];
    }
    void Note(const std::string& feature) { case_.features.push_back(feature); }

    void MakeMedia() {
        constexpr const char* kNames[] = {"media", "set/1", "a b/Größe 漢字", "q/7/r/1"};
        // Deep enough for the outer volumes of any layout.
        media_ = folder_ / "7" / "r" / FromUtf8(Pick(kNames));
        PutProgram(SETUP_PROGRAM, media_ / "setup.exe");
        for (const char* name :
             {"meta.TOCxml", "media.xml", "media.db", "StartTUI.exe", "setup_noUAC.exe"})
            if (!Chance(3)) Put(media_ / name, name);
        Put(media_ / "inst" / "common" / "data" / "a.bin", std::string(Below(5000), 'x'));
        if (Chance(30)) stdfs::create_directories(media_ / "inst" / "common" / "empty");
        case_.launcher = media_ / "setup.exe";
    }

    void MakeInstallers() {
        constexpr unsigned kInstaller[] = {60, 15, 25};
        constexpr unsigned kMarker[] = {50, 20, 30};
        for (std::size_t i = 0; i < 3; ++i) {
            if (Chance(kInstaller[i])) AddInstaller(media_, kFlavours[i]);
            if (!Chance(kMarker[i])) continue;
            Put(media_ / "inst" / "common" / (std::string(kFlavours[i]) + ".installos"));
            Note(std::string(kFlavours[i]) + ".installos");
        }
    }

    void AddInstaller(const stdfs::path& root, const char* flavour) {
        Note(std::string(flavour) + " installer in " + ToUtf8(root.filename()));
        const stdfs::path bin = root / "inst" / flavour / "code" / "bin";
        for (const char* name : kInstallers) {
            if (!Chance(name == kInstallers[0] ? 95 : 60)) continue;
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
        if (Chance(80)) return mediatool::CountFileText(volumes);
        const std::string odd = Pick(kOdd);
        Note("count \"" + odd + "\"");
        return odd + "\r\n";
    }

    void Marker(const stdfs::path& folder, int number, const std::string& id) {
        constexpr const char* kOdd[] = {"MTBDIR=OTHER\r\n", "mtbdir=SET\n", "# 1\nMTBDIR=SET\n",
                                        "MTBDIR=SET \r\n", ""};
        if (Chance(6)) return;
        const bool odd = Chance(8);
        Put(folder / MarkerName(number), odd ? Pick(kOdd) : mediatool::MarkerText(id));
        if (odd) Note("odd marker " + std::to_string(number));
    }

    void MakeVolumes() {
        const unsigned layout = Below(5);
        if (layout > 2) return;
        const int volumes = 2 + static_cast<int>(Below(3));
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

    void MakeInstallerMedia() {
        external_ = folder_ / "installer media";
        stdfs::create_directories(external_);
        for (const char* flavour : kFlavours)
            if (Chance(70)) AddInstaller(Chance(40) ? external_ / "1" : external_, flavour);
    }

    void MakeArguments() {
        const std::string external = ToUtf8(external_);
        const std::vector<std::vector<std::string>> pieces = {
            {"-wait"},
            {"-wait"},
            {"-UI"},
            {"-env", "EXTRA=a=b"},
            {"-env", "EXTRA"},
            {"-env", "PATH="},
            {"-env", "ZEPAdmInstDontCopyInstaller"},
            {"-env", "ZEPAdmODTMultiVolumes"},
            {"-env", "ZEPAdmInstAllowNotAdminUser=0"},
            {"-env", "ZEPProcessNotAdmin"},
            {"-env", "ZEP_UseExternalInstaller"},
            {"-env", "TEMP=" + ToUtf8(folder_ / "other temp")},
            {"-env"},
            {"-installerPath", external},
            {"-installerPath", external + "\\"},
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
            {"plain"},
            {"with blank", "tail\\"},
            {""},
            {"quo\"te", "*.txt"},
            {"Größe 漢字"},
            {"-WAIT", "[x,y]"},
        };
        for (unsigned count = Below(6); count > 0; --count)
            for (const std::string& word : pieces[Below(static_cast<unsigned>(pieces.size()))])
                case_.arguments.push_back(word);
    }

    void MakeVariables() {
        auto& variables = case_.variables;
        const auto maybe = [&](unsigned percent, const char* name, const std::string& value) {
            if (Chance(percent)) variables[name] = value;
        };
        maybe(75, "ZEP_TALVOR_Installer", ToUtf8(external_));
        maybe(5, "ZEP_UseExternalInstaller", "1");
        maybe(5, "ZEPAdmInstODTinstallOSpath", ToUtf8(media_ / "media.xml"));
        maybe(4, "ZEPAdmODTMultiVolumes", "1");
        maybe(8, "ZEPAdmInstDontCopyInstaller", "1");
        maybe(8, "ZEPProcessNotAdmin", "1");
        maybe(30, "ZEPAdmInstAllowNotAdminUser", "no");
        maybe(5, "ZEP_Online_Installation_Caf_Repositiory", "x");
        maybe(80, "CurrentMediaDir", ToUtf8(media_));
        maybe(10, "MORInst", "C:\\Before");
        maybe(10, "ZEPAdmInstDebugEnv", "t");
        maybe(3, "ZEP_TraceMsgBox", "1");
        variables["STANDIN_EXIT"] = std::to_string(Below(4000));
        if (!Chance(6)) return;
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
        Note("9 volumes");
        Put(media_ / "inst" / "volumes.txt", mediatool::CountFileText(9));
    }

    std::string TempThatWindowsChanges() {
        const std::vector<std::string> names = {"one ",     "two \\x",   "dots..\\x",
                                                "three\\ ", "four\\...", "other temp\\."};
        const std::string base = ToUtf8(folder_) + "\\";
        const unsigned which = Below(static_cast<unsigned>(names.size()) + 1);
        return which < names.size() ? base + names[which] : "\"" + base + "quoted\"";
    }

    // In most cases, something that Windows cannot start or copy into.
    void MakeTrouble() {
        switch (Below(8)) {
            case 0:
                Note("installers that are texts");
                ReplaceInstallers(/*byFolders=*/false);
                break;
            case 1:
                Note("folders in the place of installers");
                ReplaceInstallers(/*byFolders=*/true);
                break;
            case 2:
                Note("a debug program that is not there");
                case_.variables["DEBUGCMD_INSTALLK7"] =
                    Chance(50) ? "no-such-program -x"
                               : "\"" + ToUtf8(folder_ / "no-such-program.exe") + "\"";
                break;
            case 3:
                Note("TEMP that is a file");
                Put(folder_ / "temp file");
                case_.variables["TEMP"] = ToUtf8(folder_ / "temp file");
                LoseVolumes();
                break;
            case 4:
                Note("TEMP with a name that cannot be");
                case_.variables["TEMP"] = ToUtf8(folder_ / "temp<?");
                LoseVolumes();
                break;
            case 5:
                case_.variables["TEMP"] = TempThatWindowsChanges();
                Note("TEMP that Windows changes");
                LoseVolumes();
                break;
            default:
                break;
        }
        if (Chance(20)) LoseVolumes();
    }

    std::mt19937 random_;
    stdfs::path folder_;
    stdfs::path media_;
    stdfs::path external_;
    std::vector<stdfs::path> installers_;
    Case case_;
};

}  // namespace

Case MakeCase(unsigned seed, const stdfs::path& folder) {
    return Maker(seed, folder).Make();
}

}  // namespace launcher::test
