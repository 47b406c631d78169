// Every file and folder below inst, which are what a copy is made of: names, lengths, rights and
// links.

#include <windows.h>

#include <algorithm>
#include <vector>

#include "fs/encoding.h"
#include "media/folder_names.h"
#include "mediatool/base/files.h"
#include "mediatool/base/names.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

// The longest user name has 20 characters.
constexpr char kUsualTemp[] = "C:\\Users\\12345678901234567890\\AppData\\Local\\Temp";
constexpr std::size_t kUuidLength = 36;
constexpr std::size_t kFindingsOfOneKind = 5;

// False where batch scripts see UTF-8 on this machine anyway.
bool IsOutsideOemCodePage(const std::string& name) {
    if (GetOEMCP() == CP_UTF8) return false;
    const std::wstring wide = ToWide(name);
    BOOL replaced = FALSE;
    WideCharToMultiByte(CP_OEMCP, WC_NO_BEST_FIT_CHARS, wide.data(), static_cast<int>(wide.size()),
                        nullptr, 0, nullptr, &replaced);
    return replaced != FALSE;
}

bool IsAscii(const std::string& text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<signed char>(c) >= 0; });
}

class Tree {
  public:
    Tree(const Subject& subject, Findings& out)
        : subject_(subject),
          out_(out),
          root_(subject.Media().Text() + "\\"),
          copyRoot_(WideLength(subject.temp.empty() ? kUsualTemp : Path(subject.temp).Text()) + 2 +
                    kUuidLength) {}

    void Check(const Path& folder) {
        const auto entries = List(folder);
        if (!entries) {
            out_.Error("folder-unreadable", folder.Text(), "The folder cannot be listed.",
                       "A copy of the media has an empty folder in its place.",
                       "Give everybody the right to read it.");
            return;
        }
        for (const Entry& entry : *entries) {
            ++count_;
            if (subject_.progress) subject_.progress(count_);
            CheckEntry(folder, entry);
        }
    }

  private:
    void CheckEntry(const Path& folder, const Entry& entry) {
        // Not normalised: a name may be one that Windows would change.
        const std::string path = folder.Text() + "\\" + entry.name;
        CheckName(path, entry);
        CheckLength(path, entry);
        if (entry.isLink)
            CheckLink(path, entry);
        else if (entry.isFolder)
            Check(Path(path));
        else if (!CanBeRead(path))
            ReportUnreadable(path);
    }

    // Of the installers and the count file that is said elsewhere.
    void ReportUnreadable(const std::string& path) {
        const auto names = [&path](const Finding& finding) {
            return finding.id.ends_with("-unreadable") && SameName(finding.file, path);
        };
        if (std::ranges::any_of(out_.Sorted(), names) || !MayAdd(unreadable_)) return;
        out_.Error("file-unreadable", path, "The file cannot be read.",
                   "A copy of the media fails, and so may the installation.",
                   "Give everybody the right to read it, and close the program that has it open.");
    }

    void CheckName(const std::string& path, const Entry& entry) {
        if (IsReservedName(entry.name))
            out_.Error("name-reserved", path, entry.name + " is the name of a device.",
                       "Windows opens the device in place of the file.", "Give it another name.");
        if (EndsInDotOrBlank(entry.name))
            out_.Error("name-ends-in-dot-or-blank", path, "The name ends with a dot or a blank.",
                       "Windows drops it and does not find the file.", "Give it another name.");
        if (IsOutsideOemCodePage(entry.name) && MayAdd(outsideOem_))
            out_.Note("name-outside-oem-code-page", path,
                      "The name has characters that the console's code page lacks.",
                      "remove.bat removes the file with its folder, but no batch script can name "
                      "it.",
                      "Nothing, unless a script of yours names it.");
    }

    void CheckLength(const std::string& path, const Entry& entry) {
        const std::size_t length = copyRoot_ + WideLength(path) - WideLength(root_);
        const std::size_t most = entry.isFolder ? kLongestFolder : kLongestPath;
        if (length <= most || !MayAdd(tooLong_)) return;
        const std::string what = "In a copy, the path would have " + std::to_string(length) +
                                 " characters; Windows takes " + std::to_string(most) + ".";
        const std::string action = "Shorten the names of the file or of its folders.";
        if (subject_.view.copies)
            out_.Error("path-too-long-in-copy", path, what,
                       "This media is copied to the temporary folder before the installer starts, "
                       "and the copy fails for users with long names.",
                       action);
        else
            out_.Warning("path-too-long-in-copy", path, what,
                         "A copy to the temporary folder, made when volumes are missing, would "
                         "fail for users with long names.",
                         action);
    }

    void CheckLink(const std::string& path, const Entry& entry) {
        const std::optional<FileIdentity> target = IdentityOf(path);
        const char* const action = "Put the file or folder itself in its place.";
        if (!target)
            out_.Error("link-broken", path, "The link leads nowhere.",
                       "The file is missing, and a copy of the media fails or lacks it.", action);
        else if (LeadsUp(path, *target))
            out_.Error("link-loop", path, "The link leads to a folder that it is in.",
                       "A copy of the media never ends.", "Remove the link.");
        else
            out_.Warning(
                "link", path,
                entry.isFolder ? "This is a link to a folder." : "This is a link to a file.",
                "Discs and archives may carry the link without its target; a copy follows "
                "it.",
                action);
    }

    bool LeadsUp(const std::string& path, const FileIdentity& target) const {
        for (Path folder = Parent(Path(path)); !IsEmpty(folder); folder = Parent(folder))
            if (IdentityOf(folder.Text()) == target) return true;
        return false;
    }

    // A whole tree of bad names is one mistake, not a thousand.
    static bool MayAdd(std::size_t& count) { return ++count <= kFindingsOfOneKind; }

    const Subject& subject_;
    Findings& out_;
    std::string root_;
    std::size_t copyRoot_;  // characters of the temporary folder's name, last backslash included
    std::size_t count_ = 0;
    std::size_t outsideOem_ = 0;
    std::size_t tooLong_ = 0;
    std::size_t unreadable_ = 0;
};

}  // namespace

void CheckTree(const Subject& subject, Findings& out) {
    const Path inst = Join(subject.Media(), kInstFolder);
    if (const auto entry = Look(inst); entry && entry->isFolder) Tree(subject, out).Check(inst);
    if (!IsAscii(subject.temp))
        out.Warning("temp-outside-oem-code-page", subject.temp,
                    "The temporary folder's name has characters outside ASCII.",
                    "remove.bat names it in UTF-8, but the command processor reads the console's "
                    "code page: the copy of the installer stays.",
                    "Set TEMP to a folder with a plain name before the launcher starts.");
}

}  // namespace launcher::mediatool
