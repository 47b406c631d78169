// Every file and folder below inst, which are what a copy is made of: names, lengths, rights, links
// and leftovers; and of what is beside it, the names.

#include <windows.h>

#include <unordered_map>
#include <vector>

#include "fs/encoding.h"
#include "mediatool/base/files.h"
#include "mediatool/base/names.h"
#include "mediatool/validate/checks.h"

namespace launcher::mediatool {
namespace {

// C:\Users\NAME\AppData\Local\Temp, of the longest user name, which has 20 characters.
constexpr std::size_t kUsualTempLength = 48;
constexpr std::size_t kUuidLength = 36;

// False where batch scripts see UTF-8 on this machine anyway.
bool IsOutsideOemCodePage(const std::string& name) {
    if (GetOEMCP() == CP_UTF8) return false;
    const std::wstring wide = ToWide(name);
    BOOL replaced = FALSE;
    WideCharToMultiByte(CP_OEMCP, WC_NO_BEST_FIT_CHARS, wide.data(), static_cast<int>(wide.size()),
                        nullptr, 0, nullptr, &replaced);
    return replaced != FALSE;
}

class Tree {
  public:
    Tree(const Subject& subject, Findings& out)
        : subject_(subject),
          out_(out),
          copyLength_((subject.temp.empty() ? kUsualTempLength : WideLength(subject.temp)) + 1 +
                      kUuidLength) {}

    void Check(const Path& folder) {
        const auto entries = List(folder);
        if (!entries) {
            out_.Add("folder-unreadable", folder);
            return;
        }
        CheckCapitals(folder, *entries);
        for (const Entry& entry : *entries) {
            ++count_;
            if (subject_.progress) subject_.progress(count_);
            CheckEntry(folder, entry);
        }
    }

    // What is beside inst: not copied but for a few files, which have a check of their own.
    void CheckRoot() {
        const std::vector<Entry> entries = EntriesOf(subject_.Media());
        CheckCapitals(subject_.Media(), entries);
        for (const Entry& entry : entries)
            CheckKind(subject_.Media().Text() + "\\" + entry.name, entry);
    }

  private:
    void CheckEntry(const Path& folder, const Entry& entry) {
        // Not normalised: a name may be one that Windows would change.
        const std::string path = folder.Text() + "\\" + entry.name;
        CheckName(path, entry);
        CheckKind(path, entry);
        CheckLength(path, entry);
        if (entry.isLink)
            CheckLink(path, entry);
        else if (entry.isFolder)
            Check(Path(path));
        else if (!HasItsOwnCheck(path) && !CanBeRead(path) && MayAdd(unreadable_))
            out_.Add("file-unreadable", path);
    }

    bool HasItsOwnCheck(const std::string& path) const {
        return subject_.HasFlavour(&Flavour::installer, path) ||
               SameName(Join(subject_.Media(), kLauncherName).Text(), path) ||
               SameName(CountFileIn(subject_.Media()).Text(), path);
    }

    void CheckName(const std::string& path, const Entry& entry) {
        const bool hasExtension = entry.name.find('.') != std::string::npos;
        if (IsReservedName(entry.name))
            out_.AddFirst({{hasExtension, "name-reserved/with-extension"}, {true, "name-reserved"}},
                          Path(path), {entry.name});
        if (EndsInDotOrBlank(entry.name)) out_.Add("name-ends-in-dot-or-blank", path);
        if (IsOutsideOemCodePage(entry.name) && MayAdd(outsideOem_))
            out_.Add("name-outside-oem-code-page", path);
    }

    // Discs keep two names apart that are one to Windows.
    void CheckCapitals(const Path& folder, const std::vector<Entry>& entries) {
        std::unordered_map<std::string, const Entry*> names;
        for (const Entry& entry : entries) {
            const auto [other, isNew] = names.try_emplace(InLowerCase(entry.name), &entry);
            if (!isNew && MayAdd(capitals_))
                out_.Add("name-differs-in-case", Join(folder, entry.name), {other->second->name});
        }
    }

    // What no medium should carry, whatever its name.
    void CheckKind(const std::string& path, const Entry& entry) {
        if (entry.isFolder || entry.isLink) return;
        if (IsLeftover(entry.name) && MayAdd(leftovers_)) out_.Add("leftover", path, {entry.name});
        if (entry.size == 0 && IsProgramName(entry.name) && !HasItsOwnCheck(path) && MayAdd(empty_))
            out_.Add("program-empty", path, {entry.name});
    }

    void CheckLength(const std::string& path, const Entry& entry) {
        const std::size_t length =
            copyLength_ + WideLength(path) - WideLength(subject_.Media().Text());
        const std::size_t most = entry.isFolder ? kLongestFolder : kLongestPath;
        if (length <= most || !MayAdd(tooLong_)) return;
        out_.AddFirst({{subject_.view.Copies(), "path-too-long-in-copy/copied"},
                       {subject_.IsNeverCopied(), "path-too-long-in-copy/never-copied"},
                       {true, "path-too-long-in-copy"}},
                      Path(path),
                      {std::to_string(length), std::to_string(most),
                       AreLongPathsEnabled() ? ", as they are here" : ""});
    }

    void CheckLink(const std::string& path, const Entry& entry) {
        const std::optional<FileIdentity> target = IdentityOf(path);
        if (!target)
            out_.Add("link-broken", path);
        else if (LeadsUp(path, *target))
            out_.Add("link-loop", path);
        else
            out_.Add("link", path, {entry.isFolder ? "folder" : "file"});
    }

    bool LeadsUp(const std::string& path, const FileIdentity& target) const {
        for (Path folder = Parent(Path(path)); !IsEmpty(folder); folder = Parent(folder))
            if (IdentityOf(folder.Text()) == target) return true;
        return false;
    }

    static bool MayAdd(std::size_t& count) { return ++count <= kFindingsOfOneKind; }

    const Subject& subject_;
    Findings& out_;
    std::size_t copyLength_;  // characters of the path of the folder that the medium is copied to
    std::size_t count_ = 0;
    std::size_t outsideOem_ = 0;
    std::size_t tooLong_ = 0;
    std::size_t unreadable_ = 0;
    std::size_t leftovers_ = 0;
    std::size_t capitals_ = 0;
    std::size_t empty_ = 0;
};

}  // namespace

void CheckTree(const Subject& subject, Findings& out) {
    Tree tree(subject, out);
    tree.CheckRoot();
    if (IsFolder(subject.Inst())) tree.Check(subject.Inst());
    // Only ASCII has as many bytes in UTF-8 as characters.
    if (WideLength(subject.temp) != subject.temp.size())
        out.Add("temp-outside-oem-code-page", subject.temp);
}

}  // namespace launcher::mediatool
