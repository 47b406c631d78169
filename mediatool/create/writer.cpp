#include "mediatool/create/writer.h"

#include <windows.h>

#include <set>

#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/create/new_file.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

constexpr char kMarkText[] =
    "mediatool create has not written this set to its end. Run it again, with the same arguments: "
    "it goes on where it stopped.\r\n";

// The attributes of its source that a copy has as well.
constexpr DWORD kCopiedAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                    FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;

}  // namespace

FileHandle HoldMark(const Path& mark, bool isThere) {
    FileHandle held(CreateFileW(Extended(mark.Text()).c_str(), GENERIC_WRITE, FILE_SHARE_READ,
                                nullptr, isThere ? OPEN_EXISTING : CREATE_NEW,
                                FILE_ATTRIBUTE_NORMAL, nullptr));
    if (held) return held;
    const DWORD error = GetLastError();
    if (error == ERROR_SHARING_VIOLATION || error == ERROR_FILE_EXISTS)
        throw Refused("Another mediatool is writing this set: it has " + Quoted(mark) + " open.");
    RefuseFor(mark, "written");
}

Writer::Writer(const Plan& plan) : mark_(plan.Mark()), wasMarked_(plan.resumes) {
    try {
        MakeFolder(plan.VolumeOne());
        Mark();
    } catch (...) {
        TakeBack();  // no destructor runs
        throw;
    }
    if (!wasMarked_) return;
    std::set<std::string> folders;
    for (const PlannedFile& file : plan.files)
        if (folders.insert(Parent(file.path).Text()).second)
            Remove(Join(Parent(file.path), kUnfinishedFile));
}

void Writer::Mark() {
    held_ = HoldMark(mark_, wasMarked_);
    if (wasMarked_) return;
    made_.push_back(mark_);
    DWORD written = 0;
    if (!WriteFile(held_.Get(), kMarkText, sizeof kMarkText - 1, &written, nullptr))
        RefuseFor(mark_, "written");
}

void Writer::MakeFolder(const Path& folder) {
    if (IsEmpty(folder) || folder.Text() == lastFolder_) return;
    if (!IsFolder(folder)) {
        MakeFolder(Parent(folder));
        if (!CreateDirectoryW(Extended(folder.Text()).c_str(), nullptr)) RefuseFor(folder, "made");
        made_.push_back(folder);
    }
    lastFolder_ = folder.Text();
}

void Writer::Write(const PlannedFile& file, const std::string& content) {
    MakeFolder(Parent(file.path));
    NewFile text(file.path);
    text.Add(content);
    GiveName(text, file);
}

// Not by CopyFileW: the bytes are wanted for the checksum, and what a download has beside its bytes
// (the mark of the web) belongs on no medium.
void Writer::Copy(const PlannedFile& file, const std::function<void(std::string_view)>& take) {
    MakeFolder(Parent(file.path));
    NewFile copy(file.path, file.attributes & kCopiedAttributes, file.source, "copied");
    const auto both = [&](std::string_view bytes) {
        copy.Add(bytes);
        take(bytes);
    };
    ReadWhole(file.source, both, "copied");
    copy.SetModified(file.modified);
    GiveName(copy, file);
}

void Writer::GiveName(NewFile& whole, const PlannedFile& file) {
    whole.GiveName(file.fate != Fate::New);
    if (file.fate == Fate::New)
        made_.push_back(file.path);
    else
        ++replaced_;
}

void Writer::Finish() {
    made_.clear();
    replaced_ = 0;
    held_.Reset();
    if (!Remove(mark_)) RefuseFor(mark_, "removed");
}

std::string Writer::TakeBack() {
    std::string stays;
    if (replaced_ > 0)
        stays += " " + Counted(replaced_, "file") + " written over before " +
                 (replaced_ == 1 ? "stays" : "stay") + " so.";
    bool keepsMark = replaced_ > 0 || wasMarked_;
    held_.Reset();
    // The mark comes after all files, because it was made before them.
    for (auto path = made_.rbegin(); path != made_.rend(); ++path) {
        if (keepsMark && path->Text() == mark_.Text()) continue;
        const bool isFolder = IsFolder(*path);
        if (Remove(*path) || isFolder) continue;
        keepsMark = true;
        stays += " " + Quoted(*path) + " could not be taken back.";
    }
    made_.clear();
    if (keepsMark)
        stays += " " + Quoted(mark_) + " stays until the same create has run to its end.";
    return stays;
}

}  // namespace launcher::mediatool
