#include "mediatool/create/writer.h"

#include <windows.h>

#include <set>

#include "fs/owners.h"
#include "mediatool/base/failures.h"
#include "mediatool/base/files.h"
#include "mediatool/base/sentences.h"
#include "mediatool/media/unfinished.h"

namespace launcher::mediatool {
namespace {

constexpr char kMarkText[] =
    "mediatool create has not written this set to its end. Run it again, with the same arguments: "
    "it goes on where it stopped.\r\n";

// What a copy has of its source's.
constexpr DWORD kCopiedAttributes = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN |
                                    FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;

// A virus scanner that looks at a new file keeps it from being renamed or deleted for a moment.
// Tries until nobody holds it, two seconds at most; the last reason is in GetLastError().
template <class Attempt>
bool WithPatience(const Attempt& attempt) {
    constexpr int kAttempts = 20;
    constexpr DWORD kBetween = 100;  // milliseconds
    for (int i = 1; !attempt(); ++i) {
        const DWORD error = GetLastError();
        const bool isHeld = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED;
        if (!isHeld || i == kAttempts) return false;
        Sleep(kBetween);
    }
    return true;
}

// A file, read-only or not, or an empty folder.
bool Remove(const Path& path) {
    const std::wstring name = Extended(path.Text());
    SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (IsFolder(path)) return RemoveDirectoryW(name.c_str()) != FALSE;
    return WithPatience([&name] { return DeleteFileW(name.c_str()) != FALSE; });
}

FILETIME FileTime(std::uint64_t units) {
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

}  // namespace

// A file under its temporary name. A failure is told of `blamed`, as what cannot be done with it.
class NewFile {
  public:
    NewFile(const Path& path, DWORD attributes, const Path& blamed, const char* what)
        : path_(path),
          temporary_(Join(Parent(path), kUnfinishedFile)),
          blamed_(blamed),
          what_(what),
          file_(Open(attributes)) {
        // What a run that was killed has left.
        if (!file_ && GetLastError() == ERROR_FILE_EXISTS && Remove(temporary_))
            file_ = Open(attributes);
        if (!file_) RefuseFor(blamed_, what_);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        file_.Reset();
        if (!isWhole_) Remove(temporary_);
    }

    void Add(std::string_view bytes) {
        DWORD written = 0;
        if (!WriteFile(file_.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written,
                       nullptr))
            RefuseFor(blamed_, what_);
    }

    void SetModified(std::uint64_t time) {
        const FILETIME modified = FileTime(time);
        if (!SetFileTime(file_.Get(), nullptr, nullptr, &modified)) RefuseFor(blamed_, what_);
    }

    // Nothing waits for the disk here: what Windows has taken survives the end of this process,
    // and to wait once for each of 50,000 files would take longer than to copy them.
    void GiveName() {
        file_.Reset();
        const std::wstring from = Extended(temporary_.Text());
        const std::wstring to = Extended(path_.Text());
        if (!WithPatience([&] {
                return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE;
            }))
            RefuseFor(blamed_, what_);
        isWhole_ = true;
    }

  private:
    FileHandle Open(DWORD attributes) const {
        return FileHandle(CreateFileW(Extended(temporary_.Text()).c_str(), GENERIC_WRITE, 0,
                                      nullptr, CREATE_NEW, attributes, nullptr));
    }

    const Path& path_;
    Path temporary_;
    const Path& blamed_;
    const char* what_;
    FileHandle file_;
    bool isWhole_ = false;
};

void WriteUnderTemporaryName(const Path& file, const std::string& content) {
    NewFile text(file, FILE_ATTRIBUTE_NORMAL, file, "written");
    text.Add(content);
    text.GiveName();
}

Writer::Writer(const Plan& plan) : mark_(plan.Mark()), wasMarked_(plan.resumes) {
    try {
        MakeFolder(plan.VolumeOne());
        if (!wasMarked_) Mark();
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
    made_.push_back(mark_);
    const FileHandle file(CreateFileW(Extended(mark_.Text()).c_str(), GENERIC_WRITE,
                                      FILE_SHARE_READ, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL,
                                      nullptr));
    DWORD written = 0;
    if (!file || !WriteFile(file.Get(), kMarkText, sizeof kMarkText - 1, &written, nullptr))
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
    NewFile text(file.path, FILE_ATTRIBUTE_NORMAL, file.path, "written");
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
    whole.GiveName();
    if (file.fate == Fate::New)
        made_.push_back(file.path);
    else
        ++replaced_;
}

void Writer::Finish() {
    made_.clear();
    replaced_ = 0;
    if (!Remove(mark_)) RefuseFor(mark_, "removed");
    wasMarked_ = false;
}

std::string Writer::TakeBack() {
    std::string stays;
    if (replaced_ > 0)
        stays += " " + Counted(replaced_, "file") + " written over before " +
                 (replaced_ == 1 ? "stays" : "stay") + " so.";
    const bool keepsMark = replaced_ > 0 || wasMarked_;
    for (auto path = made_.rbegin(); path != made_.rend(); ++path) {
        if (keepsMark && path->Text() == mark_.Text()) continue;
        const bool isFolder = IsFolder(*path);
        if (!Remove(*path) && !isFolder) stays += " " + Quoted(*path) + " could not be taken back.";
    }
    made_.clear();
    replaced_ = 0;
    if (keepsMark)
        stays += " " + Quoted(mark_) + " stays until the same create has run to its end.";
    return stays;
}

}  // namespace launcher::mediatool
