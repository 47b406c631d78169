#include "tests/soak/situations.h"

#include <iterator>

#include "tests/support/temporary_folder.h"

namespace launcher::soak {
namespace {

using test::Media;

template <class Container>
const auto& OneOf(const Container& values, Random& random) {
    return values[std::uniform_int_distribution<std::size_t>(0, std::size(values) - 1)(random)];
}

bool Toss(Random& random) {
    return random() % 2 == 0;
}

const char* const kCopyWarnings[] = {
    " WARN: This media is composed of multiple volumes.",
    (" WARN: If it is not done already, please copy each volume on a local hard drive before "
     "starting the installation."),
    " WARN: Not doing so might result in the installation leaving temporary files behind."};

// What every run that finds its installer begins with.
std::vector<std::string> FirstLines(const Media& media, const std::string& installer) {
    return {" INFO: 64-bit OS", " INFO: Installer found in current media: \"" +
                                    media.InstallerText(kOsFolder, installer) + "\"."};
}

// The launcher of `media`, with what its user may add.
Scene UsualScene(const Media& media, Random& random) {
    static const std::string kArguments[] = {
        "x", "two words", "", "C:\\folder\\", "a=b", "\xC3\xA9\xE4\xB8\xAD", "-wAIT"};
    Scene scene;
    scene.media = &media;
    scene.start.program = media.Launcher();
    for (std::size_t count = random() % 4; count > 0; --count)
        scene.expected.arguments.push_back(OneOf(kArguments, random));
    scene.start.arguments = scene.expected.arguments;
    scene.expected.output = Lines(FirstLines(media, test::kGuiInstaller));
    return scene;
}

// With an option that makes the launcher wait for an installer that ends with this code.
void Wait(Scene& scene, const char* option, DWORD exitCode) {
    scene.start.arguments.push_back(option);
    scene.start.variables["STANDIN_EXIT"] = std::to_string(exitCode);
    scene.expected.exitCode = exitCode;
    if (scene.expected.copying == Copying::Complete)
        scene.expected.errors += Lines({std::begin(kCopyWarnings), std::end(kCopyWarnings)});
}

void MayWait(Scene& scene, Random& random) {
    constexpr DWORD kExitCodes[] = {0, 3, 3010, 65536};
    if (Toss(random)) Wait(scene, "-wait", OneOf(kExitCodes, random));
}

void Refuse(Scene& scene, const BoxText& box) {
    scene.expected.exitCode = 1;
    scene.expected.startsInstaller = false;
    scene.expected.boxes = {box};
}

Scene Ordinary(const MediaSet& set, Random& random) {
    Scene scene = UsualScene(set.Ordinary(), random);
    MayWait(scene, random);
    return scene;
}

Scene CopiedScene(const Media& media, Random& random) {
    Scene scene = UsualScene(media, random);
    scene.expected.copying = Copying::Complete;
    return scene;
}

Scene DamagedCount(const MediaSet& set, Random& random) {
    static const std::string kCounts[] = {"three\r\n", "", "\r\n3\r\n", "x3", "99999999999\n"};
    Scene scene = CopiedScene(set.Damaged(), random);
    MayWait(scene, random);
    const std::string& count = OneOf(kCounts, random);
    scene.before = [&media = set.Damaged(), count] {
        test::WriteFile(media.Root() / "inst" / "volumes.txt", count);
    };
    return scene;
}

Scene MissingEntry(const MediaSet& set, Random& random) {
    static const std::string kEntries[] = {"meta.TOCxml", "media.xml", "media.db", "StartTUI.exe",
                                           "setup_noUAC.exe"};
    const Media& media = set.Damaged();
    Scene scene = UsualScene(media, random);
    scene.expected.copying = Copying::Failed;
    const std::string& name = OneOf(kEntries, random);
    Refuse(scene, {"GetType - " + media.Text(name) + " - ", false});
    scene.before = [path = media.Root() / name] { std::filesystem::remove(path); };
    scene.after = [path = media.Root() / name, name] { test::WriteFile(path, name); };
    return scene;
}

std::vector<std::string> VolumeLines(const Media& media) {
    std::vector<std::string> lines = FirstLines(media, test::kGuiInstaller);
    lines.push_back(" INFO: This media is composed of 3 volumes.");
    lines.push_back("       Volume 1 found in: " + media.Text());
    lines.push_back("       Volume 2 found in: " + MediaSet::Volume(media, 2));
    return lines;
}

Scene SplitMedia(const MediaSet& set, Random& random) {
    const Media& media = set.Split();
    const std::string third = MediaSet::Volume(media, 3);
    Scene scene = UsualScene(media, random);
    MayWait(scene, random);
    std::vector<std::string> lines = VolumeLines(media);
    lines.push_back("       Volume 3 found in: " + third);
    scene.expected.output = Lines(lines);
    scene.expected.variables = {{"ZEPAdmInstVolumesCount", "3"},
                                {"ZEPAdmInstMTBDIR", kSetId},
                                {"ZEPAdmInstVolumePath_2", MediaSet::Volume(media, 2)},
                                {"ZEPAdmInstVolumePath_3", third},
                                {"ZEPAdmInstVolumePath_4", ""}};
    return scene;
}

Scene MissingVolume(const MediaSet& set, Random& random) {
    Scene scene = CopiedScene(set.Incomplete(), random);
    scene.expected.output = Lines(VolumeLines(set.Incomplete()));
    scene.expected.errors =
        Lines({" WARN: Missing volumes. Please make sure you copied everything correctly."});
    scene.expected.variables = {{"ZEPAdmInstVolumePath_2", ""}};
    MayWait(scene, random);
    return scene;
}

Scene BadCommandLine(const MediaSet& set, Random& random) {
    static const std::pair<std::string, std::string> kBad[] = {
        {"-env", "Bad -env argument"},
        {"-installerPath", "Bad -installerPath argument"},
        {"-List", "-List must be used with the -SoftMgt flag."},
        {"-Check", "-Check must be used with the -SoftMgt flag."},
        {"-SoftMgt",
         "-SoftMgt must be used with another flag (either -List, -Check, -Commit or -Rollback)."}};
    Scene scene = UsualScene(Toss(random) ? set.Ordinary() : set.Damaged(), random);
    const auto& [argument, text] = OneOf(kBad, random);
    scene.start.arguments.push_back(argument);
    Refuse(scene, {text});
    scene.expected.output.clear();
    return scene;
}

Scene ForeignMedia(const MediaSet& set, Random& random) {
    const Media& media = set.Foreign();
    Scene scene = UsualScene(media, random);
    Refuse(scene, {"This media is not for Windows operating system."});
    std::vector<std::string> lines = {" INFO: 64-bit OS",
                                      " INFO: No installer in the current media."};
    for (const char* const os : {"intel_a", "win_b64", "win_csa64"})
        lines.push_back(" INFO: " + media.Text("inst/common/" + std::string(os) + ".installos") +
                        " not found");
    scene.expected.output = Lines(lines);
    return scene;
}

// Another medium than the launcher's own, copied or not.
Scene Odt(const MediaSet& set, Random& random) {
    const bool copied = Toss(random);
    const Media& media = copied ? set.Damaged() : set.Split();
    Scene scene = copied ? CopiedScene(media, random) : SplitMedia(set, random);
    scene.start.program = set.Ordinary().Launcher();
    scene.start.arguments = scene.expected.arguments;
    Wait(scene, "--odt", 7);
    scene.start.variables["CurrentMediaDir"] = media.Text() + "\\";
    scene.expected.installerName = kOdtInstaller;
    const std::string from = media.InstallerText(kOsFolder);
    const std::string to = media.InstallerText(kOsFolder, kOdtInstaller);
    scene.expected.output.replace(scene.expected.output.find(from), from.size(), to);
    return scene;
}

// Never copied, and nobody to talk to.
Scene PipeServer(const MediaSet& set, Random& random) {
    const Media& media = Toss(random) ? set.Ordinary() : set.Damaged();
    Scene scene = UsualScene(media, random);
    Wait(scene, "--pipeserver", 5);
    scene.expected.installerName = kPipeServer;
    scene.expected.variables["ZEPIns_IsInteractiveSession"] = "0";
    scene.expected.output = Lines(FirstLines(media, kPipeServer));
    return scene;
}

Scene NegativeExitCode(const MediaSet& set, Random& random) {
    constexpr const char* kCodes[] = {"0xC0000005", "0x80000000", "0xFFFFFFFF"};
    Scene scene =
        Toss(random) ? UsualScene(set.Ordinary(), random) : CopiedScene(set.Damaged(), random);
    Wait(scene, "-wait", 1);
    scene.start.variables["STANDIN_EXIT"] = OneOf(kCodes, random);
    scene.expected.boxes = {{"Cannot wait for process\n\"", false}};
    return scene;
}

Scene NoAdministrator(const MediaSet& set, Random& random) {
    Scene scene =
        Toss(random) ? UsualScene(set.Ordinary(), random) : CopiedScene(set.Damaged(), random);
    scene.start.variables["ZEPProcessNotAdmin"] = "1";
    scene.expected.variables["ZEPIns_HasElevatedPrivileges"] = "0";
    if (Toss(random)) {
        // The copy was made before, and stays.
        Refuse(scene, {"The installer must be run from an elevated Command Prompt ('Run as "
                       "administrator')"});
        return scene;
    }
    scene.start.variables["ZEPAdmInstAllowNotAdminUser"] = "1";
    scene.expected.output += Lines({" INFO: The user is not admin, but continue."});
    MayWait(scene, random);
    return scene;
}

Scene Interrupted(const MediaSet& set, Random& random, Interruption interruption) {
    Scene scene = CopiedScene(set.Large(), random);
    MayWait(scene, random);
    scene.interruption = interruption;
    return scene;
}

Scene Killed(const MediaSet& set, Random& random) {
    return Interrupted(set, random, Interruption::Killed);
}

Scene MediaDisappears(const MediaSet& set, Random& random) {
    return Interrupted(set, random, Interruption::MediaDisappears);
}

constexpr Situation kSituations[] = {
    {"ordinary media", 12, Ordinary},
    {"damaged count, copied", 12, DamagedCount},
    {"missing entry", 8, MissingEntry},
    {"split media", 10, SplitMedia},
    {"missing volume, copied", 8, MissingVolume},
    {"bad command line", 6, BadCommandLine},
    {"media not for Windows", 4, ForeignMedia},
    {"--odt", 8, Odt},
    {"--pipeserver", 6, PipeServer},
    {"negative exit code", 6, NegativeExitCode},
    {"no administrator", 8, NoAdministrator},
    {"killed while it copies", 6, Killed},
    {"media disappears", 6, MediaDisappears},
};

}  // namespace

std::span<const Situation> Situations() {
    return kSituations;
}

}  // namespace launcher::soak
