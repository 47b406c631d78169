#include "tests/security/support/hostile_libraries.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <sstream>

#include "fs/encoding.h"
#include "tests/support/temporary_folder.h"

namespace launcher::test {

namespace stdfs = std::filesystem;

namespace {

constexpr char kNames[] =
    "apphelp bcrypt bcryptprimitives clbcatq comctl32 coremessaging crypt32 cryptbase cryptsp "
    "dwmapi dwrite edputil explorerframe iphlpapi linkinfo mpr mscms netapi32 netutils "
    "ntmarta ntshrui oleaut32 powrprof profapi propsys rsaenh secur32 setupapi srvcli sspicli "
    "textshaping urlmon userenv usp10 uxtheme windows.storage windowscodecs winmm winspool "
    "wintypes wtsapi32";

// Windows has these open for every program before it starts. Wine takes them from beside the
// program, which then ends at once: they lack all that it needs of them.
constexpr char kNamesOnWindows[] = " advapi32 gdi32 msvcrt shcore shell32 shlwapi user32";

// The report is UTF-16 in the byte order of the machine.
std::wstring ReadWide(const stdfs::path& path) {
    const std::string bytes = ReadFile(path);
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    std::copy_n(bytes.data(), text.size() * sizeof(wchar_t), reinterpret_cast<char*>(text.data()));
    return text;
}

std::string LowerStem(const stdfs::path& path) {
    std::string name = ToUtf8(path.stem());
    std::ranges::transform(name, name.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name;
}

}  // namespace

std::vector<std::string> UsualNames() {
    std::istringstream names(IsWine() ? kNames : std::string(kNames) + kNamesOnWindows);
    return {std::istream_iterator<std::string>(names), {}};
}

void PlantHostileLibraries(const stdfs::path& folder, const std::vector<std::string>& names) {
    stdfs::create_directories(folder);
    for (const std::string& name : names)
        stdfs::copy_file(BuiltFile(HOSTILE_LIBRARY), folder / (name + ".dll"));
}

NativeFirst::NativeFirst(const std::string& exeName, const std::vector<std::string>& names,
                         const std::string& order)
    : settings_(exeName) {
    // The star is for libraries that are asked for with a folder.
    for (const std::string& name : names)
        for (const std::string& entry : {name, "*" + name})
            settings_.OverrideDll(entry, order);
}

std::set<std::string> HostileLoads(const stdfs::path& report, const stdfs::path& program) {
    std::set<std::string> names;
    if (!stdfs::exists(report)) return names;
    std::wistringstream lines(ReadWide(report));
    for (std::wstring library, loader;
         std::getline(lines, library, L'\t') && std::getline(lines, loader);)
        if (stdfs::equivalent(loader, program)) names.insert(LowerStem(library));
    return names;
}

}  // namespace launcher::test
