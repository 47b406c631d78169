#include "tests/launcher/copy/media_tree.h"

#include <algorithm>
#include <filesystem>

namespace launcher::test {

namespace stdfs = std::filesystem;

std::string MakeMedia(const TemporaryFolder& folder, const std::string& name) {
    folder.Write(name + "/inst/common/win_b64.installos");
    folder.Write(name + "/inst/win_b64/code/bin/ZEPInsAppliGUI.exe", "installer");
    folder.MakeDir(name + "/inst/win_b64/nothing");
    for (const std::string& entry : kRequiredEntries)
        if (entry != "inst") folder.Write(name + "/" + entry, entry);
    folder.Write(name + "/ReadMe_Windows.txt", "not copied");
    folder.Write(name + "/2/setup.exe", "not copied");
    return folder.Text(name);
}

std::vector<std::string> TreeOf(const std::string& folder) {
    const stdfs::path root = FromUtf8(folder);
    std::vector<std::string> tree;
    if (!stdfs::exists(root)) return tree;
    for (const auto& entry : stdfs::recursive_directory_iterator(root)) {
        const std::string name = ToUtf8(entry.path().lexically_relative(root));
        if (!entry.is_directory())
            tree.push_back(name + ": " + ReadFile(entry.path()));
        else if (stdfs::is_empty(entry.path()))
            tree.push_back(name);
    }
    std::sort(tree.begin(), tree.end());
    return tree;
}

std::vector<std::string> CopiedTree() {
    return {"StartTUI.exe: StartTUI.exe",
            "inst\\common\\win_b64.installos: ",
            "inst\\win_b64\\code\\bin\\ZEPInsAppliGUI.exe: installer",
            "inst\\win_b64\\nothing",
            "media.db: media.db",
            "media.xml: media.xml",
            "meta.TOCxml: meta.TOCxml",
            "setup.exe: setup.exe",
            "setup_noUAC.exe: setup_noUAC.exe"};
}

}  // namespace launcher::test
