#include "tests/soak/copied_folder.h"

#include <set>

#include "tests/support/temporary_folder.h"

namespace launcher::soak {

namespace stdfs = std::filesystem;

namespace {

constexpr char kScript[] = "remove.bat";

using Names = std::set<stdfs::path>;

// Files and folders; folders that hold nothing count too.
Names NamesBelow(const stdfs::path& folder) {
    Names names;
    if (!stdfs::exists(folder)) return names;
    for (const auto& entry : stdfs::recursive_directory_iterator(folder))
        names.insert(entry.path().lexically_relative(folder));
    return names;
}

Names InstallersPart(const test::Media& media) {
    Names names = {"inst",      "meta.TOCxml",  "media.xml",      "media.db",
                   "setup.exe", "StartTUI.exe", "setup_noUAC.exe"};
    for (const stdfs::path& name : NamesBelow(media.Root() / "inst"))
        names.insert("inst" / name);
    return names;
}

// The script as it must be: it removes the installer until it is gone, and then the folder.
std::string Script(const std::string& copy) {
    return ":begin\r\nrmdir /Q /S \"" + copy + "\\inst\" 1>nul 2>nul\r\nif exist \"" + copy +
           "\\inst\" goto begin\r\nrmdir /Q /S \"" + copy + "\\\" 1>nul 2>nul\r\n";
}

bool SameContent(const stdfs::path& left, const stdfs::path& right) {
    if (stdfs::is_directory(left) || stdfs::is_directory(right))
        return stdfs::is_directory(left) && stdfs::is_directory(right);
    return test::ReadFile(left) == test::ReadFile(right);
}

}  // namespace

std::vector<std::string> CopyDifferences(const test::Media& media, const stdfs::path& copy,
                                         bool withScript) {
    std::vector<std::string> differences;
    const Names wanted = InstallersPart(media);
    const Names found = NamesBelow(copy);
    for (const stdfs::path& name : wanted) {
        if (!found.contains(name))
            differences.push_back("not in the copy: " + test::ToUtf8(name));
        else if (!SameContent(media.Root() / name, copy / name))
            differences.push_back("another content in the copy: " + test::ToUtf8(name));
    }
    for (const stdfs::path& name : found)
        if (!wanted.contains(name) && name != kScript)
            differences.push_back("only in the copy: " + test::ToUtf8(name));
    if (found.contains(kScript) != withScript)
        differences.push_back(withScript ? "no script" : "a script");
    else if (withScript && test::ReadFile(copy / kScript) != Script(test::ToUtf8(copy)))
        differences.push_back("another script");
    return differences;
}

}  // namespace launcher::soak
