#include "mediatool/dry_run/rehearsal/process_start.h"

#include <windows.h>

#include <vector>

#include "fs/encoding.h"
#include "fs/environment.h"
#include "fs/open_file.h"
#include "mediatool/base/files.h"
#include "mediatool/dry_run/rehearsal/rehearsal.h"
#include "mediatool/media/program_file.h"

namespace launcher::mediatool {
namespace {

// The programs that a command line may mean, in the order in which Windows tries them: what stands
// in quotes; without quotes the text up to each blank, as the program's path may hold some.
std::vector<std::wstring> Candidates(const std::wstring& line) {
    if (line.starts_with(L'"')) return {line.substr(1, line.find(L'"', 1) - 1)};
    constexpr const wchar_t* kBlanks = L" \t";
    std::vector<std::wstring> candidates;
    for (std::size_t end = line.find_first_of(kBlanks, 1); end != std::wstring::npos;
         end = line.find_first_of(kBlanks, end + 1))
        candidates.push_back(line.substr(0, end));
    candidates.push_back(line);
    return candidates;
}

// Where the launcher's process would look for a program that is named without a folder.
std::vector<std::wstring> SearchFolders() {
    wchar_t system[MAX_PATH] = {};
    wchar_t windows[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    GetWindowsDirectoryW(windows, MAX_PATH);
    const std::string launcher = Parent(Path(CurrentRehearsal()->machine.launcherPath)).Text();
    std::vector<std::wstring> folders = {ToWide(launcher) + L"\\", L".", system,
                                         windows + std::wstring(L"\\system"), windows};
    const std::wstring path = ToWide(GetEnvVar("PATH")) + L";";
    std::size_t start = 0;
    for (std::size_t end = path.find(L';'); end != std::wstring::npos;
         start = end + 1, end = path.find(L';', start))
        if (end > start) folders.push_back(path.substr(start, end - start));
    return folders;
}

// Relative to the folders that are searched.
bool IsSearchedFor(const std::wstring& name) {
    return !name.starts_with(L'\\') && !name.starts_with(L'/') && name.find(L':', 1) != 1;
}

// Relative to the current folder alone.
bool IsDotRelative(const std::wstring& name) {
    const std::size_t dots = name.find_first_not_of(L'.');
    return (dots == 1 || dots == 2) && (name[dots] == L'\\' || name[dots] == L'/');
}

bool IsInCopy(const std::wstring& path) {
    return path.find(ToWide(kPretendedUuid)) != std::wstring::npos;
}

struct Judgement {
    bool found;  // nothing else is tried then
    DWORD error;
};

// For what is in the copy, or would be.
Judgement JudgeInCopy(const Path& program) {
    const PretendedCopy& copy = CurrentRehearsal()->journal.copy;
    const auto file = copy.contents.find(CopyKey(program));
    if (file != copy.contents.end()) return {true, ImageError(ToWide(file->second.source))};
    if (copy.HasFolder(program)) return {false, ERROR_ACCESS_DENIED};
    if (copy.HasFolder(Parent(program))) return {false, ERROR_FILE_NOT_FOUND};
    return {false, ERROR_PATH_NOT_FOUND};
}

Judgement JudgeInCopysFolder(const std::wstring& folder, const std::wstring& name) {
    const bool hasExtension = FileName(Path(ToNarrow(name.c_str()))).find('.') != std::string::npos;
    const std::wstring program = folder + L'\\' + name + (hasExtension ? L"" : L".exe");
    return JudgeInCopy(Path(ToNarrow(program.c_str())));
}

// The path of what has that name in a folder; empty for nothing, and for what lies too far down.
Path FoundIn(const std::wstring& folder, const std::wstring& name) {
    wchar_t found[MAX_PATH] = {};
    const DWORD length =
        SearchPathW(folder.c_str(), name.c_str(), L".exe", MAX_PATH, found, nullptr);
    return length > 0 && length < MAX_PATH ? Path(ToNarrow(found)) : Path();
}

// A folder of that name is no program, but ends the search.
Judgement JudgeSearched(const std::wstring& name) {
    using Folders = std::vector<std::wstring>;
    for (const std::wstring& folder : IsDotRelative(name) ? Folders{L"."} : SearchFolders()) {
        if (IsInCopy(folder)) {
            const Judgement inCopy = JudgeInCopysFolder(folder, name);
            if (inCopy.found) return inCopy;
        }
        const Path found = FoundIn(folder, name);
        if (IsEmpty(found)) continue;
        if (IsFolder(found)) break;
        return {true, ImageError(ToWide(found.Text()))};
    }
    return {false, ERROR_FILE_NOT_FOUND};
}

Judgement Judge(const std::wstring& name) {
    if (IsInCopy(name)) return JudgeInCopy(Path(ToNarrow(name.c_str())));
    if (IsSearchedFor(name)) return JudgeSearched(name);
    const Path found = FoundIn(L".", name);
    if (!IsEmpty(found) && !IsFolder(found)) return {true, ImageError(ToWide(found.Text()))};
    if (IsTooLong(name.size(), kLongestPath)) return {false, ERROR_PATH_NOT_FOUND};
    // The reason is that of an attempt to open it: a folder cannot be.
    const FileHandle file = OpenSharedFile(name, GENERIC_READ, OPEN_EXISTING);
    return {false, file ? DWORD{ERROR_FILE_NOT_FOUND} : GetLastError()};
}

// What `line` is to the process whose program is its beginning up to `end`.
std::wstring WithQuotes(const std::wstring& line, std::size_t end) {
    return L'"' + line.substr(0, end) + L'"' + line.substr(end);
}

}  // namespace

ProcessStart ForeseeStart(const std::string& commandLine) {
    const std::wstring line = ToWide(commandLine);
    const std::vector<std::wstring> candidates = Candidates(line);
    DWORD first = ERROR_SUCCESS;
    for (const std::wstring& candidate : candidates) {
        const Judgement judgement = Judge(candidate);
        if (judgement.found) {
            const std::wstring given =
                candidate == candidates.front() ? line : WithQuotes(line, candidate.size());
            if (judgement.error == ERROR_SUCCESS && given.size() > kLongestCommandLine)
                return {ERROR_FILENAME_EXCED_RANGE, {}};
            return {judgement.error, ToNarrow(given.c_str())};
        }
        if (first == ERROR_SUCCESS) first = judgement.error;
    }
    return {first, {}};
}

}  // namespace launcher::mediatool
