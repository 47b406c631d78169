// Names that a disc cut to 8.3, of which nothing can be found: what else would be said of files
// that are missing has this one reason.

#include "mediatool/base/files.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

constexpr std::size_t kFewest = 2;  // one alone is a slip of somebody's

// "setup_no.exe" for "setup_noUAC.exe"
std::string CutName(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    return name.substr(0, dot).substr(0, 8) + name.substr(dot).substr(0, 4);
}

}  // namespace

bool CheckCutNames(const Subject& subject, Findings& out) {
    std::vector<Path> files;
    for (const std::string name : kMediaEntries)
        if (name != kInstFolder) files.push_back(Join(subject.Media(), name));
    for (const FlavourHere& flavour : subject.flavours) {
        files.push_back(flavour.Exe());
        files.push_back(flavour.Marker());
    }
    std::erase_if(files, [](const Path& file) {
        return Look(file) || !Look(Join(Parent(file), CutName(FileName(file))));
    });
    if (files.size() < kFewest) return false;
    const std::string name = FileName(files.front());
    out.Add("names-cut-short", Join(Parent(files.front()), CutName(name)), {name});
    return true;
}

}  // namespace launcher::mediatool
